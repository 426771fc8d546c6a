#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/geometry/point.h"

namespace dorvutil {

/// An Albers equal-area conic projection of the sphere (J. P. Snyder, "Map Projections: A Working Manual", 1987,
/// chapter 14) with parameters for each continent. Angles are in degrees. Objects may be read by several threads at
/// once; the Set operations and assignment need the object alone.
class DORVUTIL_API PrjAlber {
public:
    PrjAlber();  ///< With the parameters of SetNA.
    PrjAlber(const PrjAlber&) = default;
    PrjAlber& operator=(const PrjAlber&) = default;

    /// The parameters of North and South America, Europe, and of Asia, Africa and Oceania, which share theirs.
    void SetNA();
    void SetSA();
    void SetEurope();
    void SetAsia();
    void SetAfrica();
    void SetOceania();

    double GetMileRatio() const { return m_parameters.m_mileRatio; }

    void LongLat2Albers(double lon, double lat, double& x, double& y) const;
    /// Rounded half away from zero; beyond 32 bits the bound.
    void LongLat2Albers(double lon, double lat, std::int32_t& x, std::int32_t& y) const;
    /// The inverse to some six millionths of a degree: the two directions use constants of different precision. Points
    /// off the cone come back at its rim; a longitude beyond the date line is turned once around the earth.
    void Albers2LongLat(double x, double y, double& lon, double& lat) const;

    /// A compass bearing in degrees as a counter-clockwise angle from east in radians, for bearings of 0 to 360 within
    /// (-pi, pi].
    double True2RadianAngle(double degrees) const;

    /// What to turn an angle on the projection by, in radians, at `point` in projected units: the direction of the
    /// cone's apex minus that of the projected pole; 0 when one of the two lies due north, south, east or west of it.
    /// Apex and pole are those of the object on which the process first calls this, whatever is set later.
    double CorrectAlbersAngle(const TOrvPoint<std::int32_t>& point) const;

private:
    struct Parameters {
        double m_mileRatio;
        double m_parallel1;  // standard parallels
        double m_parallel2;
        double m_originLat;
        double m_centralMeridian;
        double m_scale;
        double m_falseEasting;
        double m_falseNorthing;
    };
    struct Anchors {
        TOrvPoint<std::int32_t> m_pole;
        TOrvPoint<std::int32_t> m_apex;
    };
    static const Parameters kNorthAmerica, kSouthAmerica, kEurope, kAsia;

    void Set(const Parameters& parameters);
    void L2APoly(double lon, double lat, double x0, double y0, double& x, double& y) const;
    TOrvPoint<std::int32_t> Project(double lon, double lat) const;
    Anchors FindAnchors() const;
    Anchors KeptAnchors() const;

    Parameters m_parameters;
    double m_radius = 50165.23038;

    // What the parameters amount to.
    double m_cone;
    double m_offset;
    double m_originX;
    double m_originY;
};

}  // namespace dorvutil
