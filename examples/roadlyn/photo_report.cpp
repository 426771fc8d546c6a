#include "photo_report.h"

#include <cmath>
#include <cstdio>
#include <ostream>

#include "input_error.h"
#include "search_report.h"

namespace roadlyn {
namespace {

constexpr double kMostLatitude = 90.0;
constexpr double kMostLongitude = 180.0;

std::string Reason(std::int32_t code) {
    constexpr const char* kReasons[] = {
        nullptr,
        nullptr,
        "cannot be opened",
        "not a JPEG file",
        "damaged: more than six fill bytes before a marker",
        "damaged: a segment shorter than its own length",
        "not read: out of memory",
    };
    const auto index = static_cast<std::size_t>(-code);
    const bool known = index < std::size(kReasons) && kReasons[index];
    return known ? kReasons[index] : "not read: failure " + std::to_string(code);
}

// False for the absent letter, too.
bool IsOneOf(char letter, char plus, char minus) { return letter == plus || letter == minus; }

bool IsWithin(double degrees, double most) { return degrees >= 0 && degrees <= most; }

std::int32_t Signed(double degrees, bool negative) {
    const auto e6 = static_cast<std::int32_t>(std::lround(degrees * 1e6));
    return negative ? -e6 : e6;
}

std::string Degrees(std::int32_t e6) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.6f", e6 / 1e6);
    return text;
}

std::string PositionText(const PhotoFacts& facts) {
    const std::string latitude = Degrees(facts.latE6), longitude = Degrees(facts.lonE6);
    return latitude + ", " + longitude + " (" + Degrees(std::abs(facts.latE6)) + " " + facts.latRef + ", " +
           Degrees(std::abs(facts.lonE6)) + " " + facts.lonRef + ")";
}

}  // namespace

PhotoFacts FactsOf(const dorvutil::JpegExifInfo& info) {
    PhotoFacts facts;
    facts.title = info.m_title.c_str();
    if (info.m_latitudeRef == 0 && info.m_longitudeRef == 0) {
        facts.noPosition = "no position";
    } else if (!IsOneOf(info.m_latitudeRef, 'N', 'S') || !IsOneOf(info.m_longitudeRef, 'E', 'W')) {
        facts.noPosition = "no position: its hemisphere is not told";
    } else if (!IsWithin(info.m_latitude, kMostLatitude) || !IsWithin(info.m_longitude, kMostLongitude)) {
        facts.noPosition = "no position: its numbers are no place on the earth";
    } else {
        facts.latRef = info.m_latitudeRef;
        facts.lonRef = info.m_longitudeRef;
        facts.latE6 = Signed(info.m_latitude, facts.latRef == 'S');
        facts.lonE6 = Signed(info.m_longitude, facts.lonRef == 'W');
    }
    return facts;
}

PhotoFacts ReadPhoto(const std::string& path) {
    dorvutil::JpegExifInfo info;
    dorvutil::CJpegExifParser parser;
    const std::int32_t code = parser.ParseJpegExif(path.c_str(), info);
    if (code != 0) throw InputError(path, 0, Reason(code));
    return FactsOf(info);
}

void WritePhotoHeader(std::ostream& out) { out << "file\tlat_e6\tlon_e6\tlat_ref\tlon_ref\ttitle\n"; }

void WritePhoto(std::ostream& out, const std::string& path, const PhotoFacts& facts, bool tsv) {
    const bool placed = facts.noPosition.empty();
    const std::string title = Printable(facts.title);
    if (tsv) {
        out << Printable(path) << '\t';
        if (placed) {
            out << facts.latE6 << '\t' << facts.lonE6 << '\t' << facts.latRef << '\t' << facts.lonRef;
        } else {
            out << "\t\t\t";
        }
        out << '\t' << title << '\n';
        return;
    }
    out << Printable(path) << ": " << (placed ? PositionText(facts) : facts.noPosition);
    if (!title.empty()) out << ", '" << title << "'";
    out << '\n';
    if (placed) out << "  roadlyn where " << Degrees(facts.latE6) << ',' << Degrees(facts.lonE6) << '\n';
}

}  // namespace roadlyn
