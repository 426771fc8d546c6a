// Photos: any file ends with one of the results, finite angles and a title in UTF-8, and a parser can be used again.
#include <cmath>

#include "dorvutil/system/jpeg_exif.h"
#include "dorvutil/text/encoding.h"
#include "fuzz_support.h"
#include "scratch_file.h"

namespace dorvutil::fuzz {
namespace {

// A JPEG file whose only segment before the picture is this EXIF block.
std::string PhotoWith(std::string_view block) {
    static constexpr std::size_t kMost = 65525;
    block = block.substr(0, kMost);
    const std::size_t length = block.size() + 8;
    std::string file = "\xFF\xD8\xFF\xE1";
    file += static_cast<char>(length >> 8);
    file += static_cast<char>(length & 0xFF);
    file.append("Exif\0\0", 6);
    file += block;
    return file + "\xFF\xD9";
}

bool IsUtf8(const ORVustring& text) {
    std::vector<char16_t> units(text.length() + std::size_t{1});
    ORVConvertUTF8toUTF16(text.c_str(), text.length(), units.data(), text.length() + 1);
    const std::uint32_t n = GetNumUnitsNeededForUTF16(text.c_str(), text.length());
    std::vector<char> back(std::size_t{3} * n + 1);
    return ORVConvertUTF16toUTF8(units.data(), n, back.data(), 3 * n + 1) &&
           std::string_view(back.data()) == std::string_view(text.c_str(), text.length());
}

void CheckInfo(const JpegExifInfo& info) {
    FUZZ_CHECK(std::isfinite(info.m_latitude) && std::isfinite(info.m_longitude));
    FUZZ_CHECK(IsUtf8(info.m_title));
}

void Check(const ScratchFile& scratch, std::string_view content) {
    scratch.Write(content);
    CJpegExifParser parser;
    JpegExifInfo info, again;
    again.m_latitudeRef = 'x';
    again.m_title = "what was there before";
    const std::int32_t result = parser.ParseJpegExif(scratch.Path(), info);
    FUZZ_CHECK(result == 0 || (result >= -6 && result <= -3));
    const bool isJpeg = content.substr(0, 2) == "\xFF\xD8";
    FUZZ_CHECK(content.size() < 2 || isJpeg == (result != -3));
    CheckInfo(info);
    FUZZ_CHECK(parser.ParseJpegExif(scratch.Path(), again) == result);
    FUZZ_CHECK(again.m_latitude == info.m_latitude && again.m_longitude == info.m_longitude);
    FUZZ_CHECK(again.m_latitudeRef == info.m_latitudeRef && again.m_longitudeRef == info.m_longitudeRef);
    FUZZ_CHECK(again.m_title == info.m_title);
}

}  // namespace

// 'f' and a file, or another letter and an EXIF block.
void TestInput(Input& input) {
    static const ScratchFile scratch("exif");
    const bool isFile = input.Byte() == 'f';
    const std::string_view rest = input.Rest();
    if (isFile)
        Check(scratch, rest);
    else
        Check(scratch, PhotoWith(rest));
}

}  // namespace dorvutil::fuzz
