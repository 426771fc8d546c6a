// Polygons, polylines and thinning beside GEOS and Boost.Geometry, on the longest coast of the world and on stars.
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "dorvutil/geometry/polygon.h"
#include "dorvutil/geometry/polyline.h"
#include "dorvutil/geometry/thin_polyline.h"

#ifdef BENCH_BOOST
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/linestring.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#endif
#ifdef BENCH_GEOS
#include <geos_c.h>
#endif

namespace {

using Point = dorvutil::TOrvPoint<std::int32_t>;
using Line = std::vector<Point>;

constexpr std::size_t kPlaces = 64;  // points that are asked about in turn

// Simplifiers by distance and by area, set to leave about the same number of vertices.
constexpr double kTolerance = 50000;
constexpr double kMaxWeight = 1e10;
constexpr double kNoErrorLimit = 1e300;

const Line& LongestCoast() {
    static const Line coast = [] {
        Line line;
        std::ifstream file(DORVUTIL_DATA_DIR "/coast-50m.tsv");
        std::string row;
        std::getline(file, row);
        std::getline(file, row);
        const char* text = row.c_str() + row.rfind('\t') + 1;
        int used = 0;
        for (Point p; std::sscanf(text, "%d,%d%n", &p.x, &p.y, &used) == 2; text += used + (text[used] == ';'))
            line.push_back(p);
        return line;
    }();
    return coast;
}

// Copies of the coast, each beyond the one before and every second one backwards, so that the whole is one line that
// does not cross itself.
const Line& Coast(std::size_t n) {
    static std::map<std::size_t, Line> made;
    Line& line = made[n];
    const Line& coast = LongestCoast();
    for (std::size_t i = line.size(); i < n && !coast.empty(); ++i) {
        const std::size_t copy = i / coast.size();
        const std::size_t at = i % coast.size();
        Point p = coast[copy % 2 == 0 ? at : coast.size() - 1 - at];
        p.y += static_cast<std::int32_t>(copy) * 100'000'000;
        line.push_back(p);
    }
    return line;
}

// The start of the coast at a twentieth of its size: the steps of a road.
Line Road(std::size_t n) {
    Line road = Coast(n);
    for (Point& p : road) p = {p.x / 20, p.y / 20};
    return road;
}

Line Star(std::size_t n) {
    Line star;
    for (std::size_t i = 0; i < n; ++i) {
        const double angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(n);
        const double radius = 1e6 * (1 + 0.2 * std::sin(13 * angle) + 0.01 * std::sin(97 * angle));
        star.push_back(
            {static_cast<std::int32_t>(radius * std::cos(angle)), static_cast<std::int32_t>(radius * std::sin(angle))});
    }
    return star;
}

using Places = std::array<Point, kPlaces>;

Places PlacesAround() {
    Places places;
    std::mt19937 random(7);
    for (Point& p : places)
        p = {static_cast<std::int32_t>(random() % 2400000) - 1200000,
             static_cast<std::int32_t>(random() % 2400000) - 1200000};
    return places;
}

Places PlacesAlong(const Line& line) {
    Places places;
    for (std::size_t i = 0; i < kPlaces; ++i) places[i] = line[i * line.size() / kPlaces] + Point{3000, 5000};
    return places;
}

// Asks about all places in turn, one a turn of the loop; `found` counts the yeses of the last full round.
template <class Ask>
void InTurn(benchmark::State& state, Ask ask) {
    std::size_t found = 0;
    for (std::size_t i = 0; i < kPlaces; ++i) found += ask(i);
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ask(next));
        next = (next + 1) % kPlaces;
    }
    if (found == 0 || found == kPlaces) state.SkipWithError("all places on one side");
    state.counters["inside"] = static_cast<double>(found);
}

void InPolygon(benchmark::State& state) {
    const Line star = Star(static_cast<std::size_t>(state.range(0)));
    const Places places = PlacesAround();
    InTurn(state, [&](std::size_t i) {
        return dorvutil::IsPointInPoly(places[i].x, places[i].y, star.data(), static_cast<std::int32_t>(star.size()));
    });
}

template <bool kFast>
void Project(benchmark::State& state) {
    const Line line = Road(1000);
    const Places places = PlacesAlong(line);
    std::size_t next = 0;
    double sum = 0;
    for (auto _ : state) {
        Point at;
        double ratio = 0;
        int overshoot = 0;
        const auto n = static_cast<std::int32_t>(line.size());
        sum += kFast ? dorvutil::ProjectToPolylineFast(line.data(), n, places[next], at, ratio, overshoot)
                     : dorvutil::ProjectToPolyline2(line.data(), n, places[next], at, ratio, overshoot);
        benchmark::DoNotOptimize(ratio);
        next = (next + 1) % kPlaces;
    }
    if (sum == 0) state.SkipWithError("nothing projected");
}

template <bool kCheck>
void Thin(benchmark::State& state) {
    dorvutil::TVector<Point> in;
    for (const Point& p : Coast(static_cast<std::size_t>(state.range(0)))) in.Add(p);
    dorvutil::TVector<Point> out;
    for (auto _ : state) {
        dorvutil::ThinPolyLine thinner(kCheck, false);
        thinner.Thin(in, kMaxWeight, kNoErrorLimit, out);
    }
    if (out.Count() == 0) state.SkipWithError("no coast");
    state.counters["left"] = static_cast<double>(out.Count());
}

#ifdef BENCH_GEOS
struct Geos {
    Geos() { initGEOS(nullptr, nullptr); }
    ~Geos() { finishGEOS(); }
};

class Geometry {
public:
    explicit Geometry(GEOSGeometry* geometry) : m_geometry(geometry) {}
    Geometry(Geometry&& other) noexcept : m_geometry(std::exchange(other.m_geometry, nullptr)) {}
    ~Geometry() { GEOSGeom_destroy(m_geometry); }
    const GEOSGeometry* Get() const { return m_geometry; }

private:
    GEOSGeometry* m_geometry;
};

GEOSCoordSequence* Coordinates(const Line& line, bool closed) {
    const std::size_t n = line.size() + closed;
    GEOSCoordSequence* const all = GEOSCoordSeq_create(static_cast<unsigned>(n), 2);
    for (std::size_t i = 0; i < n; ++i) {
        const Point& p = line[i % line.size()];
        GEOSCoordSeq_setXY(all, static_cast<unsigned>(i), p.x, p.y);
    }
    return all;
}

std::vector<Geometry> GeosPoints(const Places& places) {
    std::vector<Geometry> points;
    for (const Point& p : places) points.emplace_back(GEOSGeom_createPointFromXY(p.x, p.y));
    return points;
}

void InPolygonGeos(benchmark::State& state) {
    const Geos geos;
    const Line star = Star(static_cast<std::size_t>(state.range(0)));
    const Geometry polygon(GEOSGeom_createPolygon(GEOSGeom_createLinearRing(Coordinates(star, true)), nullptr, 0));
    const std::vector<Geometry> points = GeosPoints(PlacesAround());
    InTurn(state, [&](std::size_t i) { return GEOSContains(polygon.Get(), points[i].Get()) == 1; });
}

void ProjectGeos(benchmark::State& state) {
    const Geos geos;
    const Line road = Road(1000);
    const Geometry line(GEOSGeom_createLineString(Coordinates(road, false)));
    const std::vector<Geometry> points = GeosPoints(PlacesAlong(road));
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(GEOSProject(line.Get(), points[next].Get()));
        next = (next + 1) % kPlaces;
    }
}

template <GEOSGeometry* (*kSimplify)(const GEOSGeometry*, double)>
void ThinGeos(benchmark::State& state) {
    const Geos geos;
    const Geometry line(GEOSGeom_createLineString(Coordinates(Coast(static_cast<std::size_t>(state.range(0))), false)));
    int left = 0;
    for (auto _ : state) {
        const Geometry thin(kSimplify(line.Get(), kTolerance));
        left = GEOSGeomGetNumPoints(thin.Get());
    }
    state.counters["left"] = left;
}
#endif

#ifdef BENCH_BOOST
namespace bg = boost::geometry;
using BoostPoint = bg::model::d2::point_xy<double>;

void InPolygonBoost(benchmark::State& state) {
    bg::model::polygon<BoostPoint> polygon;
    for (const Point& p : Star(static_cast<std::size_t>(state.range(0))))
        bg::append(polygon.outer(), BoostPoint(p.x, p.y));
    bg::correct(polygon);
    const Places places = PlacesAround();
    InTurn(state, [&](std::size_t i) { return bg::within(BoostPoint(places[i].x, places[i].y), polygon); });
}

void ThinBoost(benchmark::State& state) {
    bg::model::linestring<BoostPoint> line;
    for (const Point& p : Coast(static_cast<std::size_t>(state.range(0)))) line.emplace_back(p.x, p.y);
    std::size_t left = 0;
    for (auto _ : state) {
        bg::model::linestring<BoostPoint> thin;
        bg::simplify(line, thin, kTolerance);
        left = thin.size();
    }
    state.counters["left"] = static_cast<double>(left);
}
#endif

std::string Grouped(std::int64_t n) {
    std::string text = std::to_string(n);
    if (text.size() > 3) text.insert(text.size() - 3, ",");
    return text;
}

void Register(const std::string& work, const char* who, void (*run)(benchmark::State&), std::int64_t n,
              benchmark::TimeUnit unit) {
    benchmark::RegisterBenchmark((work + "|" + who).c_str(), run)->Arg(n)->Unit(unit);
}

const bool kRegistered = [] {
    for (const std::int64_t n : {100, 1000, 10000}) {
        const std::string work = "point in a polygon of " + Grouped(n) + " vertices";
        Register(work, "dorvutil", InPolygon, n, benchmark::kNanosecond);
#ifdef BENCH_GEOS
        Register(work, "GEOS", InPolygonGeos, n, benchmark::kNanosecond);
#endif
#ifdef BENCH_BOOST
        Register(work, "Boost.Geometry", InPolygonBoost, n, benchmark::kNanosecond);
#endif
    }
    for (const bool fast : {true, false}) {
        const std::string work = std::string("project to a road of 1,000 vertices, ") + (fast ? "fast" : "exact");
        Register(work, "dorvutil", fast ? Project<true> : Project<false>, 0, benchmark::kNanosecond);
#ifdef BENCH_GEOS
        Register(work, "GEOS", ProjectGeos, 0, benchmark::kNanosecond);
#endif
    }
    for (const std::int64_t n : {1000, 10000, 100000}) {
        const std::string work = "thin a coast of " + Grouped(n) + " vertices";
        Register(work, "dorvutil", Thin<false>, n, benchmark::kMicrosecond);
#ifdef BENCH_GEOS
        Register(work, "GEOS", ThinGeos<GEOSSimplify>, n, benchmark::kMicrosecond);
#endif
#ifdef BENCH_BOOST
        Register(work, "Boost.Geometry", ThinBoost, n, benchmark::kMicrosecond);
#endif
        Register(work + ", keeping it clear of itself", "dorvutil", Thin<true>, n, benchmark::kMicrosecond);
#ifdef BENCH_GEOS
        Register(work + ", keeping it clear of itself", "GEOS", ThinGeos<GEOSTopologyPreserveSimplify>, n,
                 benchmark::kMicrosecond);
#endif
    }
    return true;
}();

}  // namespace
