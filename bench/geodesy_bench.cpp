// Distances, projections and coordinate text beside their peers.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "dorvutil/geometry.h"

#ifdef BENCH_GEOGRAPHICLIB
#include <GeographicLib/Geodesic.hpp>
#endif
#ifdef BENCH_PROJ
#include <proj.h>
#endif

namespace {

using Point = dorvutil::TOrvPoint<std::int32_t>;

constexpr std::size_t kPoints = 1024;  // a power of two

// Pairs of points up to some 2 km apart, as the vertices of streets are, all over the inhabited latitudes.
struct Pair {
    Point from;
    Point to;
};
const std::vector<Pair>& Pairs() {
    static const std::vector<Pair> pairs = [] {
        std::mt19937 random(1);
        std::uniform_int_distribution<std::int32_t> lon(-179'000'000, 179'000'000), lat(-60'000'000, 70'000'000),
            step(-20'000, 20'000);
        std::vector<Pair> made(kPoints);
        for (Pair& pair : made) {
            pair.from = {lon(random), lat(random)};
            pair.to = pair.from + Point{step(random), step(random)};
        }
        return made;
    }();
    return pairs;
}

// All of them, so that the cost of measuring does not count.
template <class Measure>
void Distances(benchmark::State& state, Measure measure) {
    const std::vector<Pair>& pairs = Pairs();
    for (auto _ : state) {
        double sum = 0;
        for (const Pair& pair : pairs) sum += measure(pair);
        benchmark::DoNotOptimize(sum);
    }
}

double Fast(const Pair& pair) { return dorvutil::GC_DistFast(pair.from, pair.to, dorvutil::DT_METERS); }
double Near(const Pair& pair) {
    return dorvutil::GC_DistNear(pair.from.x, pair.from.y, pair.to.x, pair.to.y, dorvutil::DT_METERS);
}

// Both peers take degrees.
double Haversine(double lat1, double lon1, double lat2, double lon2) {
    constexpr double kRadians = std::numbers::pi / 180;
    constexpr double kEarthDiameter = 2 * 6371008.8;
    const double sinLat = std::sin((lat2 - lat1) * kRadians / 2);
    const double sinLon = std::sin((lon2 - lon1) * kRadians / 2);
    const double cosines = std::cos(lat1 * kRadians) * std::cos(lat2 * kRadians);
    return kEarthDiameter * std::asin(std::sqrt(sinLat * sinLat + cosines * sinLon * sinLon));
}
double LibmHaversine(const Pair& pair) {
    return Haversine(pair.from.y / 1e6, pair.from.x / 1e6, pair.to.y / 1e6, pair.to.x / 1e6);
}

#ifdef BENCH_GEOGRAPHICLIB
double Ellipsoidal(const Pair& pair) {
    double meters = 0;
    GeographicLib::Geodesic::WGS84().Inverse(pair.from.y / 1e6, pair.from.x / 1e6, pair.to.y / 1e6, pair.to.x / 1e6,
                                             meters);
    return meters;
}
#endif

// Places of Great Britain as references of six characters each.
struct Reference {
    char m_easting[8];
    char m_northing[8];
};
const std::vector<Reference>& References() {
    static const std::vector<Reference> references = [] {
        std::mt19937 random(2);
        std::vector<Reference> made(kPoints);
        for (Reference& reference : made) {
            std::snprintf(reference.m_easting, 8, "%06u", static_cast<unsigned>(200'000 + random() % 400'000));
            std::snprintf(reference.m_northing, 8, "%06u", static_cast<unsigned>(random() % 900'000));
        }
        return made;
    }();
    return references;
}

void Grid(benchmark::State& state) {
    const std::vector<Reference>& references = References();
    std::size_t i = 0;
    for (auto _ : state) {
        const Reference& reference = references[i++ % kPoints];
        std::int32_t x = 0, y = 0;
        dorvutil::StrEN_to_LatLon(reference.m_easting, reference.m_northing, &x, &y);
        benchmark::DoNotOptimize(x + y);
    }
}

// Points of North America in degrees, and what they are projected to.
struct Projected {
    double m_lon, m_lat, m_x, m_y;
};
const std::vector<Projected>& ProjectedPoints() {
    static const std::vector<Projected> points = [] {
        std::mt19937 random(3);
        std::uniform_real_distribution<double> lon(-125, -67), lat(25, 60);
        const dorvutil::PrjAlber projection;
        std::vector<Projected> made(kPoints);
        for (Projected& point : made) {
            point.m_lon = lon(random);
            point.m_lat = lat(random);
            projection.LongLat2Albers(point.m_lon, point.m_lat, point.m_x, point.m_y);
        }
        return made;
    }();
    return points;
}

void AlbersForward(benchmark::State& state) {
    const dorvutil::PrjAlber projection;
    const std::vector<Projected>& points = ProjectedPoints();
    std::size_t i = 0;
    for (auto _ : state) {
        const Projected& point = points[i++ % kPoints];
        double x = 0, y = 0;
        projection.LongLat2Albers(point.m_lon, point.m_lat, x, y);
        benchmark::DoNotOptimize(x + y);
    }
}

void AlbersInverse(benchmark::State& state) {
    const dorvutil::PrjAlber projection;
    const std::vector<Projected>& points = ProjectedPoints();
    std::size_t i = 0;
    for (auto _ : state) {
        const Projected& point = points[i++ % kPoints];
        double lon = 0, lat = 0;
        projection.Albers2LongLat(point.m_x, point.m_y, lon, lat);
        benchmark::DoNotOptimize(lon + lat);
    }
}

#ifdef BENCH_PROJ
// A projection of PROJ for one benchmark.
class Proj {
public:
    explicit Proj(const char* definition)
        : m_context(proj_context_create()), m_projection(proj_create(m_context, definition)) {}
    ~Proj() {
        proj_destroy(m_projection);
        proj_context_destroy(m_context);
    }
    Proj(const Proj&) = delete;
    Proj& operator=(const Proj&) = delete;
    PJ_COORD Convert(PJ_DIRECTION direction, double x, double y) const {
        return proj_trans(m_projection, direction, proj_coord(x, y, 0, 0));
    }

private:
    PJ_CONTEXT* m_context;
    PJ* m_projection;
};

constexpr char kBritishTmerc[] =
    "+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000 +ellps=airy +units=m";
constexpr char kNorthAmerica[] =
    "+proj=aea +lat_1=29.5 +lat_2=45.5 +lat_0=45 +lon_0=-96 +R=20041009.53681 +x_0=4532500 +y_0=2802000";

void GridProj(benchmark::State& state, const std::string& definition) {
    const Proj projection(definition.c_str());
    const std::vector<Reference>& references = References();
    std::size_t i = 0;
    for (auto _ : state) {
        const Reference& reference = references[i++ % kPoints];
        const PJ_COORD at = projection.Convert(PJ_INV, std::atoi(reference.m_easting), std::atoi(reference.m_northing));
        const auto x = static_cast<std::int32_t>(proj_todeg(at.lp.lam) * 1e6);
        const auto y = static_cast<std::int32_t>(proj_todeg(at.lp.phi) * 1e6);
        benchmark::DoNotOptimize(x + y);
    }
}

void AlbersProj(benchmark::State& state, PJ_DIRECTION direction) {
    const Proj projection(kNorthAmerica);
    const std::vector<Projected>& points = ProjectedPoints();
    std::size_t i = 0;
    for (auto _ : state) {
        const Projected& point = points[i++ % kPoints];
        if (direction == PJ_FWD) {
            const PJ_COORD at = projection.Convert(PJ_FWD, proj_torad(point.m_lon), proj_torad(point.m_lat));
            benchmark::DoNotOptimize(at.xy.x + at.xy.y);
        } else {
            const PJ_COORD at = projection.Convert(PJ_INV, point.m_x, point.m_y);
            benchmark::DoNotOptimize(proj_todeg(at.lp.lam) + proj_todeg(at.lp.phi));
        }
    }
}
#endif

// Pairs as people type them.
const std::vector<std::string>& Texts() {
    static const std::vector<std::string> texts = [] {
        std::vector<std::string> made;
        for (const Pair& pair : Pairs()) {
            char text[64];
            std::snprintf(text, sizeof text, "%.6f, %.6f", pair.from.y / 1e6, pair.from.x / 1e6);
            made.emplace_back(text);
        }
        return made;
    }();
    return texts;
}

void Parse(benchmark::State& state) {
    const std::vector<std::string>& texts = Texts();
    std::size_t i = 0;
    for (auto _ : state) {
        std::int32_t x = 0, y = 0;
        if (!dorvutil::IsStrLatLong(texts[i++ % kPoints].c_str(), &x, &y)) state.SkipWithError("not read");
        benchmark::DoNotOptimize(x + y);
    }
}

void ParseSscanf(benchmark::State& state) {
    const std::vector<std::string>& texts = Texts();
    std::size_t i = 0;
    for (auto _ : state) {
        double lat = 0, lon = 0;
        if (std::sscanf(texts[i++ % kPoints].c_str(), "%lf , %lf", &lat, &lon) != 2) state.SkipWithError("not read");
        benchmark::DoNotOptimize(static_cast<std::int32_t>(lon * 1e6) + static_cast<std::int32_t>(lat * 1e6));
    }
}

void Format(benchmark::State& state) {
    const std::vector<Pair>& pairs = Pairs();
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(dorvutil::ConvertLatLon(pairs[i++ % kPoints].from, ", "));
}

void FormatSnprintf(benchmark::State& state) {
    const std::vector<Pair>& pairs = Pairs();
    std::size_t i = 0;
    for (auto _ : state) {
        const Point& at = pairs[i++ % kPoints].from;
        char text[64];
        std::snprintf(text, sizeof text, "%0.6f%c, %0.6f%c", std::abs(at.y) / 1e6, at.y < 0 ? 'S' : 'N',
                      std::abs(at.x) / 1e6, at.x < 0 ? 'W' : 'E');
        benchmark::DoNotOptimize(text);
    }
}

BENCHMARK_CAPTURE(Distances, fast, Fast)->Name("1,024 distances in the plane, GC_DistFast|dorvutil");
BENCHMARK_CAPTURE(Distances, fast_libm, LibmHaversine)
    ->Name("1,024 distances in the plane, GC_DistFast|haversine with libm");
BENCHMARK_CAPTURE(Distances, near, Near)->Name("1,024 distances by the haversine, GC_DistNear|dorvutil");
BENCHMARK_CAPTURE(Distances, near_libm, LibmHaversine)
    ->Name("1,024 distances by the haversine, GC_DistNear|haversine with libm");
#ifdef BENCH_GEOGRAPHICLIB
BENCHMARK_CAPTURE(Distances, fast_geodesic, Ellipsoidal)
    ->Name("1,024 distances in the plane, GC_DistFast|GeographicLib");
BENCHMARK_CAPTURE(Distances, near_geodesic, Ellipsoidal)
    ->Name("1,024 distances by the haversine, GC_DistNear|GeographicLib");
#endif
BENCHMARK(Grid)->Name("British grid reference to latitude and longitude|dorvutil");
BENCHMARK(AlbersForward)->Name("Albers projection of a position|dorvutil");
BENCHMARK(AlbersInverse)->Name("Albers projection, the way back|dorvutil");
#ifdef BENCH_PROJ
BENCHMARK_CAPTURE(GridProj, exact, std::string(kBritishTmerc))
    ->Name("British grid reference to latitude and longitude|PROJ");
BENCHMARK_CAPTURE(GridProj, approximate, std::string(kBritishTmerc) + " +approx")
    ->Name("British grid reference to latitude and longitude|PROJ, approximate series");
BENCHMARK_CAPTURE(AlbersProj, forward, PJ_FWD)->Name("Albers projection of a position|PROJ");
BENCHMARK_CAPTURE(AlbersProj, inverse, PJ_INV)->Name("Albers projection, the way back|PROJ");
#endif
BENCHMARK(Parse)->Name("coordinate pair from text|dorvutil");
BENCHMARK(ParseSscanf)->Name("coordinate pair from text|sscanf");
BENCHMARK(Format)->Name("coordinate pair to text|dorvutil");
BENCHMARK(FormatSnprintf)->Name("coordinate pair to text|snprintf");

}  // namespace
