#include "photo_report.h"

#include <gtest/gtest.h>

#include <sstream>

#include "input_error.h"
#include "roadlyn/test_folder.h"

namespace roadlyn {
namespace {

const std::string kPhotos = DORVUTIL_DATA_DIR "/photos/";

std::string Written(const PhotoFacts& facts, bool tsv) {
    std::ostringstream out;
    WritePhoto(out, "a\tb.jpg", facts, tsv);
    return out.str();
}

TEST(PhotoReport, ShowsSignsLettersAndTheCommandToPaste) {
    const PhotoFacts south = ReadPhoto(kPhotos + "ii-sw-exiv2.jpg");
    EXPECT_EQ(Written(south, false),
              "a?b.jpg: -33.865000, -70.670000 (33.865000 S, 70.670000 W), 'Café à Ñuñoa'\n"
              "  roadlyn where -33.865000,-70.670000\n");
    EXPECT_EQ(Written(south, true), "a?b.jpg\t-33865000\t-70670000\tS\tW\tCafé à Ñuñoa\n");
    const PhotoFacts none = ReadPhoto(kPhotos + "ii-nogps-exiftool.jpg");
    EXPECT_EQ(Written(none, false), "a?b.jpg: no position, 'No position here'\n");
    EXPECT_EQ(Written(none, true), "a?b.jpg\t\t\t\t\tNo position here\n");
}

TEST(PhotoReport, TellsNoPositionWithoutAHemisphereOrOffTheEarth) {
    const std::string untold = "no position: its hemisphere is not told", nowhere = "no position: its numbers are no";
    const std::pair<dorvutil::JpegExifInfo, std::string> cases[] = {
        {{90, 180, 'S', 'W', ""}, "-90.000000, -180.000000 (90.000000 S, 180.000000 W)\n"},
        {{0, 0.0000001, 'S', 'W', ""}, "0.000000, 0.000000 (0.000000 S, 0.000000 W)\n"},
        {{0, 0, 0, 0, "\x1B[2J"}, "no position, '?[2J'\n"},
        {{1, 2, 'N', 0, ""}, untold},
        {{0, 1e300, 'N', 'E', ""}, nowhere},
        {{-1, 0, 'N', 'E', ""}, nowhere}};
    for (const auto& [info, expected] : cases) {
        const std::string text = Written(FactsOf(info), false);
        EXPECT_EQ(text.rfind("a?b.jpg: " + expected, 0), 0u) << text;
    }
}

using PhotoFaults = FolderTest;

TEST_F(PhotoFaults, NameTheFileAndTheReason) {
    Write("3", "");
    Write("4", "\xFF\xD8\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xD9");
    Write("5", std::string("\xFF\xD8\xFF\xE0\0\1", 6));
    for (const char* const fault : {"2: cannot be opened", "3: not a JPEG file", "4: damaged: more than six fill bytes",
                                    "5: damaged: a segment shorter than its own length"}) {
        try {
            ReadPhoto(At(std::string(fault, 1)));
            ADD_FAILURE() << fault;
        } catch (const InputError& error) {
            EXPECT_EQ(std::string(error.what()).rfind(At(fault), 0), 0u) << error.what();
        }
    }
}

}  // namespace
}  // namespace roadlyn
