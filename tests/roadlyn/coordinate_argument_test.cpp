#include "coordinate_argument.h"

#include <gtest/gtest.h>

#include "grid_reference.h"
#include "input_error.h"

namespace roadlyn {
namespace {

template <class Read>
std::string ErrorOf(const Read& read) {
    try {
        read();
    } catch (const InputError& error) {
        return error.what();
    }
    return "read";
}

TEST(CoordinateArgument, ReadsWhatPeopleType) {
    for (const char* const text :
         {"51.508334,-0.125", "51.508334N,0.125W", "0.125w; 51.508334n", "51.508334\u00B0 N, 0.125\u00B0 W"})
        EXPECT_EQ(ReadCoordinate("A", 0, text), (dorvutil::TOrvPoint<std::int32_t>{-125000, 51508334})) << text;
    EXPECT_EQ(ReadCoordinate("A", 0, "51\u00B030'30\"N, 000\u00B007'30\"W"),
              ReadCoordinate("A", 0, "513030N,0000730W"));
    EXPECT_EQ(ReadCoordinate("A", 0, "-90.0,180.0").y, -90'000'000);
}

TEST(CoordinateArgument, SaysWhatIsWrongWithTheRest) {
    const struct {
        const char *text, *error;
    } kCases[] = {
        {"51.5", "no comma between latitude and longitude"},
        {"", "no comma between latitude and longitude"},
        {"abc,7.0", "no number at character 1"},
        {"51.5, ?7.0", "no number at character 7"},
        {"51.5,", "no number at character 6"},
        {"51,7", "numbers without N, S, E and W need a decimal point each, as in 51.0,7.0"},
        {"51.5N,7.0", "one number needs N or S behind it and the other E or W"},
        {"90.000001,7.0",
         "the latitude lies beyond the pole (packed degrees, minutes and seconds need 6 to 8 digits in both numbers)"},
        {"51.5,-180.1", "the longitude lies beyond 180 degrees"},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(ErrorOf([&] { ReadCoordinate("LAT,LON", 3, c.text); }),
                  "LAT,LON:3: '" + std::string(c.text) + "': " + c.error);
    EXPECT_EQ(ErrorOf([] { ReadCoordinate("A", 0, "x"); }), "A: 'x': no comma between latitude and longitude");
}

using Words = std::vector<std::string>;

TEST(GridReference, ReadsLettersAndMetres) {
    const std::pair<Words, GridSquare> kCases[] = {
        {{"TQ300805"}, {530000, 180500, 100}},    {{"tq", "300", "805"}, {530000, 180500, 100}},
        {{"TQ 30 80"}, {530000, 180000, 1000}},   {{"SV"}, {0, 0, 100000}},
        {{"HU1234512345"}, {412345, 1112345, 1}}, {{"530000", "1180500"}, {530000, 1180500, 1}}};
    for (const auto& [words, square] : kCases) EXPECT_EQ(ReadGridReference(words), square) << words[0];
}

TEST(GridReference, SaysWhatIsWrong) {
    const std::pair<Words, const char*> kCases[] = {
        {{"ZZ12"}, "'ZZ12': no such square"},
        {{"TQ123"}, "'TQ123': needs an even number of digits, up to ten"},
        {{"TQ123456123456"}, "'TQ123456123456': needs an even number of digits, up to ten"},
        {{"TQ-1+1"}, "'TQ-1+1': not two letters and digits"},
        {{"530000"}, "'530000': needs two letters and digits, or an easting and a northing"},
        {{"530000", "18o500"}, "'18o500': not a whole number of metres"},
        {{"99999999999", "1"}, "'99999999999': outside the grid, 0 to 999999"},
        {{"1", "-1"}, "'-1': outside the grid, 0 to 1499999"},
    };
    for (const auto& [words, error] : kCases)
        EXPECT_EQ(ErrorOf([&w = words] { ReadGridReference(w); }), std::string("REFERENCE: ") + error);
}

}  // namespace
}  // namespace roadlyn
