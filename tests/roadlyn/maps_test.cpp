// What the commands on maps read and compute.
#include <gtest/gtest.h>

#include <cmath>

#include "country_map.h"
#include "country_names.h"
#include "input_error.h"
#include "line_thinning.h"
#include "road_snap.h"
#include "roadlyn/test_folder.h"
#include "shape_file.h"
#include "svg.h"

namespace roadlyn {
namespace {

class Maps : public FolderTest {
protected:
    template <class Read>
    std::string FaultOf(const std::string& text, Read read) const {
        Write("map", text);
        try {
            read(At("map"));
        } catch (const InputError& error) {
            return std::string(error.what()).substr(At("map").size());
        }
        return "";
    }
};

TEST_F(Maps, FaultsNameLineAndPoint) {
    const struct {
        const char* text;
        const char* error;
    } kShapes[] = {
        {"id\tpoints\nr\t1,2;3,4\n", ""},
        {"id\tpoints\nr\t1,2\n", ":2: line 'r' has only one point"},
        {"id\tpoints\n", ":1: no line follows the header line"},
        {"id\tpoints\nr\t1,2;3,4;\n", ""},
        {"id\tpoints\nr\t1,2;;3,4\n", ":2: point 2 is not LON,LAT in millionths of a degree within the globe"},
        {"id\tpoints\nr\t1,2;3\n", ":2: point 2 is not LON,LAT in millionths of a degree within the globe"},
        {"id\tpoints\nr\t1,2;3,90000001\n", ":2: point 2 is not LON,LAT in millionths of a degree within the globe"},
        {"id\tpoints\nr\t180000001,0;0,0\n", ":2: point 1 is not LON,LAT in millionths of a degree within the globe"},
        {"id\tpoints\nr\t1.5,2;3,4\n", ":2: point 1 is not LON,LAT in millionths of a degree within the globe"},
        {"lat_e6\tlon_e6\n1\t2\n", ": the track has only one point"},
        {"lat_e6\tlon_e6\n1\t2\n90000001\t2\n", ":3: lat_e6 90000001 is outside -90000000 to 90000000"},
        {"lat_e6\n1\n", ":1: the header line has no column 'lon_e6'"},
    };
    for (const auto& c : kShapes) EXPECT_EQ(FaultOf(c.text, ReadShapeFile), c.error) << c.text;

    const std::string header = "country\tiso_num\tkind\tpoints\n";
    const struct {
        const char* rings;
        const char* error;
    } kRings[] = {
        {"A\t004\touter\t0,0;9,0;9,9;0,0\n", ""},
        {"A\t-\touter\t0,0;9,0;9,9;0,1\n", ":2: the ring is open: its last point is not its first"},
        {"A\t-\touter\t0,0;9,0;0,0\n", ":2: the ring has fewer than four points"},
        {"A\t-\tinner\t0,0;9,0;9,9;0,0\n", ":2: a hole without an outer ring of its country before it"},
        {"A\t-\trim\t0,0;9,0;9,9;0,0\n", ":2: kind 'rim' is neither outer nor inner"},
        {"A\tx\touter\t0,0;9,0;9,9;0,0\n", ":2: iso_num 'x' is not a whole number"},
        {"", ":1: no ring follows the header line"},
    };
    for (const auto& c : kRings) {
        EXPECT_EQ(FaultOf(header + c.rings, [](const std::string& path) { CountryMap map(path); }), c.error) << c.rings;
    }
}

TEST_F(Maps, AHoleBelongsToWhoeverFillsIt) {
    Write("map",
          "country\tiso_num\tkind\tpoints\n"
          "Outer\t710\touter\t0,0;100,0;100,100;0,100;0,0\nOuter\t710\tinner\t40,40;60,40;60,60;40,60;40,40\n"
          "Inner\t426\touter\t40,40;50,40;50,60;40,60;40,40\nIsles\t-\touter\t200,0;210,0;210,10;200,10;200,0\n"
          "Isles\t-\touter\t220,0;230,0;230,10;220,10;220,0\n");
    const CountryMap map(At("map"));
    const struct {
        Point at;
        const char* country;
    } kCases[] = {{{10, 10}, "Outer"}, {{45, 50}, "Inner"}, {{55, 50}, ""},
                  {{205, 5}, "Isles"}, {{225, 5}, "Isles"}, {{150, 50}, ""}};
    for (const auto& c : kCases) {
        const CountryMap::Country* const found = map.Find(c.at);
        EXPECT_EQ(found ? found->name : "", c.country) << c.at.x;
    }
    EXPECT_EQ(CountryNumber("ZA"), 710);
    EXPECT_EQ(CountryNumber("XK"), 0);
}

TEST_F(Maps, TheNearestRoadIsNearestInMetres) {
    // At 60 degrees north a unit of longitude is half as long as one of latitude.
    Write("map",
          "road_id\tname\tpoints\nnorth\t\t10000000,60001500;10010000,60001500\n"
          "east\tEast Street\t10002000,60000000;10002000,60000100\nfar\t\t0,0;1000,0\n");
    const std::vector<Shape> roads = ReadShapeFile(At("map"));
    const Snapped snapped = SnapToRoads(roads, {10000000, 60000050});
    EXPECT_EQ(roads[snapped.road].name, "East Street");
    EXPECT_EQ(snapped.at, (Point{10002000, 60000050}));
    EXPECT_NEAR(snapped.metres, 111.2, 0.5);
    EXPECT_NEAR(snapped.fraction, 0.5, 0.01);
    EXPECT_EQ(snapped.side, -1);
    EXPECT_EQ(SnapToRoads(roads, {10003000, 60000050}).side, 1);
    EXPECT_GT(SnapToRoads(roads, {1000000, 0}).overshoot, 100'000);
}

TEST_F(Maps, ThinningReportsWhatItLeft) {
    const std::vector<Point> line = {{0, 0}, {1000, 10}, {2000, 0}, {3000, 500}, {4000, 0}};
    ThinningRules rules;
    rules.maxArea = 20000;
    rules.errorRatio = 1e9;
    const std::vector<Point> thinned = ThinLine(line, rules);
    EXPECT_EQ(thinned, (std::vector<Point>{{0, 0}, {2000, 0}, {3000, 500}, {4000, 0}}));
    EXPECT_NEAR(LargestDeviation(line, thinned), 1.112, 0.01);
    rules.locked = {1};
    EXPECT_EQ(ThinLine(line, rules), line);
}

TEST_F(Maps, APictureKeepsNorthUpAndShapesTrue) {
    SvgMap map({10'000'000, 60'000'000, 10'020'000, 60'010'000}, 108);
    map.Circle({10'000'000, 60'010'000}, 1, "a");
    map.Legend("<&>", "red");
    EXPECT_TRUE(map.Shows({9'000'000, 60'005'000, 10'000'000, 60'005'000}));
    EXPECT_FALSE(map.Shows({9'000'000, 60'005'000, 9'990'000, 60'005'000}));
    WriteSvg(At("map.svg"), map);
    const std::string svg = ReadWholeFile(At("map.svg"));
    // Twice as many units from west to east as from south to north, each half as long.
    EXPECT_NE(svg.find("width=\"108.0\" height=\"108.0\""), std::string::npos) << svg.substr(0, 200);
    EXPECT_NE(svg.find("cx=\"4.0\" cy=\"4.0\""), std::string::npos) << svg;
    EXPECT_NE(svg.find("&lt;&amp;>"), std::string::npos);
    EXPECT_NE(svg.find(">200 m</text>"), std::string::npos) << svg;
}

}  // namespace
}  // namespace roadlyn
