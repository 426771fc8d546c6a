#include "dorvutil/geometry/albers.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <numbers>

#include "dorvutil/concurrency/locks.h"

namespace dorvutil {
namespace {

// The forward direction works with these, cut to nine decimals.
constexpr double kRadiansPerDegree = 0.017453292;
constexpr double kRadiansPerHalfDegree = 0.008726646;
constexpr double kDegreesPerRadian = 57.29577951308232;
constexpr double kPi = std::numbers::pi;
constexpr double kApexSpan = 26;  // degrees from the central meridian to the line that finds the apex

}  // namespace

constexpr PrjAlber::Parameters PrjAlber::kNorthAmerica = {2522, 29.5, 45.5, 45, -96, 399.5, 4532500, 2802000};
constexpr PrjAlber::Parameters PrjAlber::kSouthAmerica = {2100, 5, -4, 48.5, 21, 320, 1500000, -1300000};
constexpr PrjAlber::Parameters PrjAlber::kEurope = {2100, 44, 53, 48.5, 21, 320, 1500000, -1300000};
constexpr PrjAlber::Parameters PrjAlber::kAsia = {2100, 30, -15, 48.5, 21, 320, 1500000, -1300000};

PrjAlber::PrjAlber() { Set(kNorthAmerica); }

void PrjAlber::SetNA() { Set(kNorthAmerica); }
void PrjAlber::SetSA() { Set(kSouthAmerica); }
void PrjAlber::SetEurope() { Set(kEurope); }
void PrjAlber::SetAsia() { Set(kAsia); }
void PrjAlber::SetAfrica() { Set(kAsia); }
void PrjAlber::SetOceania() { Set(kAsia); }

void PrjAlber::Set(const Parameters& parameters) {
    const double parallel1 = parameters.m_parallel1;
    const double parallel2 = parameters.m_parallel2;
    m_parameters = parameters;
    m_cone = (std::sin(parallel1 * kRadiansPerDegree) + std::sin(parallel2 * kRadiansPerDegree)) / 2;
    m_offset = std::sin(kPi / 4 - parallel1 * kRadiansPerHalfDegree) *
               std::sin(kPi / 4 - parallel2 * kRadiansPerHalfDegree) / m_cone;
    L2APoly(parameters.m_centralMeridian, parameters.m_originLat, 0, 0, m_originX, m_originY);
}

void PrjAlber::L2APoly(double lon, double lat, double x0, double y0, double& x, double& y) const {
    const double s = std::sin(kPi / 4 - lat * 0.5 * kRadiansPerDegree);
    const double distance = m_radius * std::sqrt(s * s / m_cone + m_offset * m_offset);
    const double angle = (lon - m_parameters.m_centralMeridian) * m_cone * kRadiansPerDegree;
    const double up = distance * std::cos(angle);
    x = distance * std::sin(angle) - x0;
    y = (m_parameters.m_parallel1 > 0 ? -up : up) - y0;
}

void PrjAlber::LongLat2Albers(double lon, double lat, double& x, double& y) const {
    double u = 0;
    double v = 0;
    L2APoly(lon, lat, m_originX, m_originY, u, v);
    x = m_parameters.m_scale * u + m_parameters.m_falseEasting;
    y = m_parameters.m_scale * v + m_parameters.m_falseNorthing;
}

void PrjAlber::LongLat2Albers(double lon, double lat, std::int32_t& x, std::int32_t& y) const {
    double exactX = 0;
    double exactY = 0;
    LongLat2Albers(lon, lat, exactX, exactY);
    x = geometry_detail::RoundToInt32(exactX);
    y = geometry_detail::RoundToInt32(exactY);
}

void PrjAlber::Albers2LongLat(double x, double y, double& lon, double& lat) const {
    const double right = (x - m_parameters.m_falseEasting) / m_parameters.m_scale + m_originX;
    const double up = (y - m_parameters.m_falseNorthing) / m_parameters.m_scale + m_originY;
    const double angle = std::atan2(-right, -up);
    const double distance = up / std::cos(angle);
    const double square =
        (distance * distance / (m_radius * m_radius) - m_offset * m_offset) * m_cone;  // of the sine in L2APoly
    lon = (m_parameters.m_centralMeridian * kRadiansPerDegree - angle / m_cone) * kDegreesPerRadian;
    lat = (kPi / 2 - 2 * std::asin(std::sqrt(std::clamp(square, 0.0, 1.0)))) * kDegreesPerRadian;
    if (lon < -180)
        lon += 360;
    else if (lon > 180)
        lon -= 360;
}

double PrjAlber::True2RadianAngle(double degrees) const {
    const double angle = degrees - 90;
    return -(angle >= 180 ? angle - 360 : angle) * kPi / 180;
}

TOrvPoint<std::int32_t> PrjAlber::Project(double lon, double lat) const {
    TOrvPoint<std::int32_t> point;
    LongLat2Albers(lon, lat, point.x, point.y);
    return point;
}

// The apex is taken from the line through two projected points on one meridian. Its denominator is the reverse of that
// of the plain equation of the line; corrections computed so are what the projected data was made with.
PrjAlber::Anchors PrjAlber::FindAnchors() const {
    const double meridian = m_parameters.m_centralMeridian;
    const TOrvPoint<std::int32_t> a = Project(meridian, m_parameters.m_parallel1);
    const TOrvPoint<std::int32_t> c = Project(meridian + kApexSpan, m_parameters.m_parallel1);
    const TOrvPoint<std::int32_t> d = Project(meridian + kApexSpan, m_parameters.m_parallel2);
    const double cx = c.x, cy = c.y, dx = d.x, dy = d.y;
    const double apexY = (dx * cy - cx * dy + (dy - cy) * a.x) / (cx - dx);
    return {Project(meridian, 90), {a.x, geometry_detail::TruncateToInt32(apexY)}};
}

PrjAlber::Anchors PrjAlber::KeptAnchors() const {
    static constinit critSec s_lock;
    static constinit std::atomic<bool> s_isKnown{false};
    static constinit Anchors s_anchors;  // written once, under s_lock
    if (!s_isKnown.load(std::memory_order_acquire)) {
        const TScopedLock lock(s_lock);
        if (!s_isKnown.load(std::memory_order_relaxed)) {
            s_anchors = FindAnchors();
            s_isKnown.store(true, std::memory_order_release);
        }
    }
    return s_anchors;
}

double PrjAlber::CorrectAlbersAngle(const TOrvPoint<std::int32_t>& point) const {
    const Anchors anchors = KeptAnchors();
    const TOrvPoint<std::int32_t> apex = anchors.m_apex - point;
    const TOrvPoint<std::int32_t> pole = anchors.m_pole - point;
    if (apex.x == 0 || apex.y == 0 || pole.x == 0 || pole.y == 0) return 0;
    return std::atan2(apex.y, apex.x) - std::atan2(pole.y, pole.x);
}

}  // namespace dorvutil
