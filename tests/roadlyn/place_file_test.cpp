#include "place_file.h"

#include <gtest/gtest.h>

#include "input_error.h"

namespace roadlyn {
namespace {

const std::string kHeader = "name\tcountry\tadmin1\tlat_e6\tlon_e6\tpopulation\n";
const std::string kRow = "Aarhus\tDK\tCentral Jutland\t56156740\t10210760\t237551\n";

bool GoOn(unsigned) { return true; }

std::string ErrorOf(const std::string& text) {
    try {
        ParsePlaces("p.tsv", text, GoOn);
    } catch (const InputError& error) {
        return error.what();
    }
    return "none";
}

TEST(PlaceFile, DamageIsNamedWithFileLineAndReason) {
    const struct {
        const char* name;
        std::string text;
        const char* error;
    } cases[] = {
        {"empty", "", "p.tsv: the file is empty"},
        {"header only", kHeader, "p.tsv:1: no place follows the header line"},
        {"no column", "name\tcountry\tadmin1\tlat_e6\tlon_e6\n" + kRow,
         "p.tsv:1: the header line has no column 'population'"},
        {"column twice", "name\tname\tcountry\tadmin1\tlat_e6\tlon_e6\tpopulation\n",
         "p.tsv:1: column 'name' occurs twice in the header line"},
        {"too few fields", kHeader + kRow + "Aarhus\tDK\n",
         "p.tsv:3: wrong number of columns: 2 where the header line has 6"},
        {"blank line", kHeader + kRow + "\n" + kRow, "p.tsv:3: wrong number of columns: 1 where the header line has 6"},
        {"latitude too far", kHeader + "A\tDK\t\t90000001\t0\t0\n",
         "p.tsv:2: lat_e6 90000001 is outside -90000000 to 90000000"},
        {"longitude too far", kHeader + "A\tDK\t\t0\t-180000001\t0\n",
         "p.tsv:2: lon_e6 -180000001 is outside -180000000 to 180000000"},
        {"number beyond 64 bits", kHeader + "A\tDK\t\t0\t0\t99999999999999999999\n",
         "p.tsv:2: population 99999999999999999999 is outside 0 to 2147483647"},
        {"negative population", kHeader + "A\tDK\t\t0\t0\t-1\n", "p.tsv:2: population -1 is outside 0 to 2147483647"},
        {"fraction", kHeader + "A\tDK\t\t1.5\t0\t0\n", "p.tsv:2: lat_e6 '1.5' is not a whole number"},
        {"no number", kHeader + "A\tDK\t\t\t0\t0\n", "p.tsv:2: lat_e6 '' is not a whole number"},
        {"bad UTF-8", kHeader + kRow + "M\xFCnster\tDE\t\t0\t0\t0\n", "p.tsv:3: invalid UTF-8"},
        {"surrogate", kHeader + "\xED\xA0\x80\tDE\t\t0\t0\t0\n", "p.tsv:2: invalid UTF-8"},
        {"overlong", kHeader + "\xC0\xAF\tDE\t\t0\t0\t0\n", "p.tsv:2: invalid UTF-8"},
        {"cut off at the end", kHeader + kRow + "A\tDE\t\t0\t0\t\xC3", "p.tsv:3: invalid UTF-8"},
        {"NUL", kHeader + std::string("A\0B\tDE\t\t0\t0\t0\n", 13), "p.tsv:2: NUL byte"},
        {"escape", kHeader + "A\x1B[2J\tDE\t\t0\t0\t0\n", "p.tsv:2: control character"},
        {"no name", kHeader + "\tDE\t\t0\t0\t0\n", "p.tsv:2: the name is empty"},
        {"country", kHeader + "A\tDEU\t\t0\t0\t0\n", "p.tsv:2: country 'DEU' is not a code of two letters"},
        {"endless name", kHeader + std::string(70000, 'a') + "\tDE\t\t0\t0\t0\n",
         "p.tsv:2: the name is longer than 65535 bytes"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ErrorOf(c.text), c.error);
    }
}

TEST(PlaceFile, MissingFileAndFolderAreErrors) {
    EXPECT_THROW(ReadPlaceFile("/nonexistent/places.tsv", GoOn), InputError);
    EXPECT_THROW(ReadPlaceFile("/", GoOn), InputError);
}

TEST(PlaceFile, ColumnsMayComeInAnyOrderAmongOthers) {
    const std::string bom = "\xEF\xBB\xBF";
    const PlaceTable table = ParsePlaces("p.tsv",
                                         bom +
                                             "id\tpopulation\tlon_e6\tlat_e6\tadmin1\tcountry\tname\r\n"
                                             "7\t12\t-180000000\t90000000\tZealand\tDK\tKøge\r\n"
                                             "8\t0\t1\t-1\tZealand\t\tX",
                                         GoOn);
    ASSERT_EQ(table.Count(), 2u);
    EXPECT_EQ(table.Name(0u), "Køge");
    EXPECT_EQ(table.Country(table.At(0)), "DK");
    EXPECT_EQ(table.Country(table.At(1)), "");
    EXPECT_EQ(table.Admin1(table.At(1)), "Zealand");
    EXPECT_EQ(table.At(0).lonE6, -180'000'000);
    EXPECT_EQ(table.At(0).latE6, 90'000'000);
    EXPECT_EQ(table.At(0).population, 12);
}

TEST(PlaceFile, DisplayOrderIsRelevanceThenLeadingNumberThenText) {
    PlaceTable table = ParsePlaces("p.tsv",
                                   kHeader +
                                       "b\tDK\t\t0\t0\t5\n12 b\tDK\t\t0\t0\t5\n2 b\tDK\t\t0\t0\t5\n"
                                       "-1 z\tDK\t\t0\t0\t5\nZ\tDK\t\t0\t0\t5\nsmall\tDK\t\t0\t0\t4\n",
                                   GoOn);
    table.SortForDisplay();
    std::string order;
    for (std::uint32_t row = 0; row < table.Count(); ++row) order += std::string(table.Name(row)) + ",";
    EXPECT_EQ(order, "-1 z,Z,b,2 b,12 b,small,");
}

TEST(PlaceFile, DeliveredPlacesLoad) {
    const PlaceTable table = ReadPlaceFile(DORVUTIL_DATA_DIR "/places.tsv", GoOn);
    EXPECT_EQ(table.Count(), 24'323u);
}

}  // namespace
}  // namespace roadlyn
