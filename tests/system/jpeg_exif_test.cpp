#include "dorvutil/system/jpeg_exif.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <string>

#include "memory/failing_heap.h"
#include "system/scratch.h"

namespace dorvutil {
namespace {

using namespace std::string_literals;
using testing_support::Scratch;

const std::string kPhotos = DORVUTIL_DATA_DIR "/photos/";
const std::string kStart = "\xFF\xD8";
const std::string kNoPosition = "-\t-\t-\t-\t", kNone = kNoPosition + "-", kFound = "51.5\tN\t0.125\tE\t-";

std::string Angle(double degrees, char letter) {
    std::ostringstream text;
    if (degrees != 0 || letter) text << std::setprecision(15) << degrees;
    return (text.str().empty() ? "-" : text.str()) + "\t" + (letter ? letter : '-') + "\t";
}

// The failure, or what was found in the columns of photos.tsv.
std::string Parse(const std::string& path) {
    JpegExifInfo info;
    info.m_title = "not cleared";
    const std::int32_t code = CJpegExifParser().ParseJpegExif(path.c_str(), info);
    const std::string title = info.m_title.c_str(), all = Angle(info.m_latitude, info.m_latitudeRef) +
                                                          Angle(info.m_longitude, info.m_longitudeRef) +
                                                          (title.empty() ? "-" : title);
    return code == 0 ? all : std::to_string(code) + (all == kNone ? "" : all);
}

std::string ParseBytes(const std::string& bytes) {
    static const Scratch scratch;
    return Parse(scratch.Write("photo.jpg", bytes));
}

std::string Segment(unsigned marker, const std::string& content) {
    const std::size_t length = content.size() + 2;
    return {'\xFF', static_cast<char>(marker), static_cast<char>(length >> 8), static_cast<char>(length)};
}
std::string Whole(unsigned marker, const std::string& content) { return Segment(marker, content) + content; }
std::string Photo(const std::string& block) { return kStart + Whole(0xE1, "Exif\0\0"s + block) + "\xFF\xD9"; }

std::string Repeat(const std::string& text, int times) { return times == 0 ? "" : text + Repeat(text, times - 1); }

std::string Number(bool big, std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> 8 * (big ? bytes - 1 - i : i));
    return text;
}
std::string Entry(bool big, std::uint32_t tag, std::uint32_t type, std::uint32_t count, const std::string& value) {
    return Number(big, tag, 2) + Number(big, type, 2) + Number(big, count, 4) + value;
}

// Directory at 8 with a GPS directory at 26, whose entries are at 28, 40, 52 and 64 and angles at 80 and 104.
std::string GpsBlock(bool big) {
    const auto n = [big](std::uint32_t value, int bytes = 4) { return Number(big, value, bytes); };
    std::string block = (big ? "MM" : "II") + n(42, 2) + n(8) + n(1, 2) + Entry(big, 34853, 4, 1, n(26)) + n(0);
    block += n(4, 2) + Entry(big, 1, 2, 2, "N\0\0\0"s) + Entry(big, 2, 5, 3, n(80)) + Entry(big, 3, 2, 2, "E\0\0\0"s) +
             Entry(big, 4, 5, 3, n(104)) + n(0);
    for (const std::uint32_t part : {51u, 1u, 30u, 1u, 0u, 1u, 0u, 1u, 15u, 2u, 0u, 1u}) block += n(part);
    return block;
}

TEST(JpegExif, ReadsWhatOtherProgramsWrote) {
    std::ifstream table(kPhotos + "photos.tsv");
    std::string line;
    int read = 0;
    for (std::getline(table, line); std::getline(table, line); ++read) {
        const std::string file = line.substr(0, line.find('\t'));
        const bool isJpeg = file != "picture.png" && file != "empty.jpg";
        EXPECT_EQ(Parse(kPhotos + file), isJpeg ? line.substr(file.size() + 1) : "-3") << file;
    }
    EXPECT_EQ(read, 6);
    EXPECT_TRUE(Parse(kPhotos + "none.jpg") == "-2" && Parse(kPhotos) == "-2");
    JpegExifInfo info;
    info.m_title = (kPhotos + "mm-ne-exiftool.jpg").c_str();
    EXPECT_EQ(CJpegExifParser().ParseJpegExif(info.m_title, info), 0) << "a path in what is cleared";
    EXPECT_STREQ(info.m_title.c_str(), "Greenwich");
}

TEST(JpegExif, SegmentsEndTheReadingAsTheirMarkersSay) {
    const std::string exif = Photo(GpsBlock(true)).substr(2), behind(65533, 'x');
    const struct {
        const char* name;
        std::string bytes, expected;
    } cases[] = {
        {"one byte", "\xFF", "-3"},
        {"start alone", kStart, kNone},
        {"end without a length", kStart + "\xFF\xD9", kNone},
        {"no length", kStart + "\xFF\xE1\x01", kNone},
        {"six fill bytes", kStart + "\xFF\xFF\xFF\xFF\xFF" + exif, kFound},
        {"seven fill bytes", kStart + "\xFF\xFF\xFF\xFF\xFF\xFF" + exif, "-4"},
        {"length 1", kStart + "\xFF\xE0\0\1"s, "-5"},
        {"length 2", kStart + "\xFF\xE0\0\2\xFF\xE1\0\2"s + exif, kFound},
        {"largest segments, skipped and read", kStart + Whole(0xE2, behind) + Whole(0xE1, behind) + exif, kFound},
        {"skip beyond the end", kStart + Segment(0xE0, behind), kNone},
    };
    for (const auto& c : cases) EXPECT_EQ(ParseBytes(c.bytes), c.expected) << c.name;
    for (const unsigned marker : {0xD9u, 0xDAu, 0xDBu, 0xC4u, 0xC0u, 0xC2u, 0u}) {
        const bool ends = marker != 0xC2 && marker != 0;
        EXPECT_EQ(ParseBytes(kStart + Whole(marker, "") + exif), ends ? kNone : kFound) << marker;
    }
    for (std::size_t pad = 0; pad < 2200; pad += pad < 900 ? 50 : 1) {
        ASSERT_EQ(ParseBytes(kStart + Whole(0xE0, std::string(pad, '\xFF')) + exif), kFound) << pad;
    }
}

TEST(JpegExif, DirectoriesAreReadAsFarAsTheyAreSound) {
    const std::string noLatitude = "0\tN\t0.125\tE\t-";
    const auto angleType = [](std::uint32_t type) { return Number(true, type, 2); };
    const struct {
        const char* name;
        std::size_t at;
        std::string bytes, expected;
    } cases[] = {
        {"as it is", 0, "", kFound},
        {"neither byte order", 1, "I", kNone},
        {"not 42", 3, "+", kNone},
        {"first directory outside", 4, "\xFF\xFF\xFF\xF8", kNone},
        {"one entry too many", 9, "\x0A", kNone},
        {"links back", 25, "\x08", kFound},
        {"links outside", 22, "\xFF\xFF\xFF\xFF", kFound},
        {"GPS directory outside", 21, "\x80", kNone},
        {"GPS directory count beyond the block", 26, "\xFF\xFF", kFound},
        {"type 0", 42, angleType(0), noLatitude},
        {"type 13", 42, angleType(13), noLatitude},
        {"no rational", 42, angleType(9) + "\0\0\0\6"s, "0\tN\t-\t-\t-"},
        {"two rationals", 47, "\2", noLatitude},
        {"size that wraps to 24", 44, "\x20", noLatitude},
        {"count 65537", 45, "\1\0\1"s, noLatitude},
        {"ends behind the block", 51, "\x69", noLatitude},
        {"offset that wraps", 48, "\xFF\xFF\xFF\xF8", noLatitude},
        {"zero denominator", 87, "\0"s, "0.5\tN\t0.125\tE\t-"},
        {"unsigned", 80, "\x80\0\0\0\x80\0\0\0"s, "1.5\tN\t0.125\tE\t-"},
        {"signed", 42, angleType(10), kFound},
        {"no letter", 35, "\0"s, "51.5\t-\t0.125\tE\t-"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ParseBytes(Photo(GpsBlock(true).replace(c.at, c.bytes.size(), c.bytes))), c.expected) << c.name;
    }
    EXPECT_EQ(ParseBytes(Photo(GpsBlock(false))), kFound);
    EXPECT_EQ(ParseBytes(Photo(GpsBlock(true).replace(42, 2, angleType(10)).replace(80, 4, 4, '\xFF'))),
              "-0.5\tN\t0.125\tE\t-");
}

TEST(JpegExif, TitlesAreLittleEndianText) {
    const std::string lone = "\xEF\xBF\xBD";
    const struct {
        const char* name;
        std::string units, expected;
    } cases[] = {
        {"in the entry", "A\0\xE9\0"s, "A\xC3\xA9"},
        {"empty", "", ""},
        {"a byte", "A", ""},
        {"behind the zero", "A\0B\0\0\0C\0"s, "AB"},
        {"odd", "A\0B\0C\0D"s, "ABC"},
        {"pair", "\x3D\xD8\x97\xDE!\0"s, "\xF0\x9F\x9A\x97!"},
        {"low alone", "\x97\xDE!\0!\0"s, lone + "!!"},
        {"high alone", "\x3D\xD8\x3D\xD8"s, lone + lone},
        {"high at the end of the block", "A\0B\0\x3D\xD8"s, "AB" + lone},
        {"more than a text holds", Repeat("\x20\x20", 30000), Repeat("\xE2\x80\xA0", 21842)},
    };
    for (const auto& c : cases) {
        for (const bool big : {false, true}) {
            const auto n = [big](std::uint32_t value, int bytes = 4) { return Number(big, value, bytes); };
            std::string value = c.units.size() > 4 ? n(26) : (c.units + "ZZZZ").substr(0, 4);
            const std::string entry = Entry(big, 40091, 1, static_cast<std::uint32_t>(c.units.size()), value);
            const std::string block = (big ? "MM" : "II") + n(42, 2) + n(8) + n(1, 2) + entry + n(0) + c.units;
            EXPECT_EQ(ParseBytes(Photo(block)), kNoPosition + (c.expected.empty() ? "-" : c.expected)) << c.name;
        }
    }
}

// Five thousand entries, each leading back to their directory: the paths through it are beyond counting.
TEST(JpegExif, DirectoriesThatLeadToEachOtherEnd) {
    const auto block = [](const std::string& entry) {
        std::string bytes = "MM\0*\0\0\0\x08\x13\x88"s;
        for (int i = 0; i < 5000; ++i) bytes += entry;
        return bytes + "\0\0\0\x08"s;
    };
    EXPECT_EQ(ParseBytes(Photo(block(Entry(true, 34665, 4, 1, Number(true, 8, 4))))), kNone);
    EXPECT_EQ(ParseBytes(Photo(block(Entry(true, 34853, 4, 1, Number(true, 8, 4))))), kNone);
    std::string titles = block(Entry(true, 40091, 1, 40000, Number(true, 10, 4)));
    titles.replace(10 + 4999 * 12 + 11, 1, "\x10");
    EXPECT_EQ(ParseBytes(Photo(titles)).substr(8, 3), "\xE9\xAE\x9C") << "not the last of 5000 titles of one block";
    for (std::uint32_t links = 3; links < 6; ++links) {  // directories of no entry, the last one is the good one
        std::string chain = "II*\0\x08\0\0\0"s;
        for (std::uint32_t i = 1; i <= links; ++i) chain += Number(false, 0, 2) + Number(false, 8 + 6 * i, 4);
        chain += Number(false, 1, 2) + Entry(false, 40091, 1, 4, "A\0B\0"s);
        EXPECT_EQ(ParseBytes(Photo(chain)), kNoPosition + (links < 5 ? "AB" : "-")) << links;
    }
}

TEST(JpegExif, SurvivesDamagedFiles) {
    for (const char* const name : {"mm-ne-exiftool.jpg", "ii-sw-exiv2.jpg", "ii-nogps-exiftool.jpg"}) {
        std::ifstream file(kPhotos + name, std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(file)), {}), whole = Parse(kPhotos + name);
        const std::size_t block = bytes.find("Exif"), end = bytes.find("\xFF\xDB", block);
        ASSERT_TRUE(block != std::string::npos && end != std::string::npos);
        for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
            const std::string expected = cut < 2 ? "-3" : cut < end ? kNone : whole;
            ASSERT_EQ(ParseBytes(bytes.substr(0, cut)), expected) << name << " cut at " << cut;
        }
        for (std::size_t at = 0; at < end; ++at) {
            for (const std::string& damage : {"\0"s, "\xFF"s, "\x80"s, "\x7F"s, "\1"s, "\xFF\xFF\xFF\xFF"s,
                                              "\xFF\xFF\xFF\xF0"s, "\xF0\xFF\xFF\xFF"s, "\0\0\0\x80"s}) {
                const std::string result = ParseBytes(std::string(bytes).replace(at, damage.size(), damage));
                ASSERT_TRUE(result.find('\t') < result.size() || (result[0] == '-' && at < block))
                    << name << " damaged at " << at;
            }
        }
    }
}

TEST(JpegExif, SaysThatMemoryRanOut) {
    const std::string path = kPhotos + "mm-ne-exiftool.jpg", whole = Parse(path);
    bool ranOut = false;
    std::string result;
    for (int n = 1; n < 100 && result != whole; ++n) {
        const FailingHeap heap(n);
        result = Parse(path);
        ranOut = ranOut || result == "-6";
    }
    EXPECT_TRUE(ranOut && result == whole);
}

}  // namespace
}  // namespace dorvutil
