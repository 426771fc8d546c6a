// Coordinates as text: both widths read the same, what is refused changes nothing, what was written is read back.
#include <cmath>

#include "dorvutil/geometry/coordinate_text.h"
#include "dorvutil/geometry/national_grid.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

struct Position {
    std::int32_t m_x = 123'456'789;
    std::int32_t m_y = -98'765'432;
    bool operator==(const Position&) const = default;
};

bool Near(std::int32_t a, std::int32_t b) { return std::abs(std::int64_t{a} - b) <= 1; }

// The wide form skips blanks, marks of minutes and degree signs at fewer places: without any of them both agree.
void CheckPair(const std::string& text) {
    const Exact<char> narrow = Exact<char>::Terminated(text);
    const std::u16string widened = Widened(text);
    const Exact<char16_t> wide = Exact<char16_t>::Terminated(widened);
    Position a, b, partly;
    const bool read = IsStrLatLong(narrow.Data(), &a.m_x, &a.m_y);
    const bool wideRead = IsStrLatLongW(wide.Data(), &b.m_x, &b.m_y);
    FUZZ_CHECK(read || a == Position());
    FUZZ_CHECK(wideRead || b == Position());
    FUZZ_CHECK(!IsStrLatLong(narrow.Data(), nullptr, &partly.m_y) && partly == Position());
    if (text.find_first_of(" \t\r\n\v\f'\"\xB0") != std::string::npos) return;
    FUZZ_CHECK(read == wideRead && a == b);
}

void CheckWritten(std::int32_t x, std::int32_t y) {
    const TOrvPoint<std::int32_t> point{x, y};
    const ORVustring text = ConvertLatLon(point, ", ");
    FUZZ_CHECK(std::string(text.c_str()) == std::string(ConvertLat(y).c_str()) + ", " + ConvertLon(x).c_str());
    Position back;
    FUZZ_CHECK(IsStrLatLong(text.c_str(), &back.m_x, &back.m_y) && Near(back.m_x, x) && Near(back.m_y, y));
    const ORVwstring wide(text);
    Position wideBack;
    FUZZ_CHECK(IsStrLatLongW(wide.T_str(), &wideBack.m_x, &wideBack.m_y) && wideBack == back);
}

void CheckGrid(const std::string& square, const std::string& easting, const std::string& northing) {
    double e = -1, n = -1;
    const std::int32_t known = OSGBSquareToFullEN(square.c_str(), &e, &n);
    FUZZ_CHECK(known == 0 || known == 1);
    FUZZ_CHECK(std::isfinite(e) && std::isfinite(n) && std::abs(e) <= 3e6 && std::abs(n) <= 3e6);
    Position position;
    const bool read = StrEN_to_LatLon(easting.c_str(), northing.c_str(), &position.m_x, &position.m_y);
    FUZZ_CHECK(read == (easting.size() == 6 && northing.size() == 6));
    FUZZ_CHECK(read || position == Position());
    const std::string_view digits = "0123456789";
    if (!read || (easting + northing).find_first_not_of(digits) != std::string::npos) return;
    FUZZ_CHECK(position.m_y > 49'000'000 && position.m_y < 59'500'000);
    FUZZ_CHECK(position.m_x > -10'000'000 && position.m_x < 9'000'000);
}

void CheckProjection(std::uint32_t easting, std::uint32_t northing) {
    const double e = easting % 700'000, n = northing % 1'300'000;
    double latitude = 0, longitude = 0;
    FullEN_to_LatLon(e, n, national_grid::kA, national_grid::kB, national_grid::kE0, national_grid::kN0,
                     national_grid::kF0, &latitude, &longitude);
    FUZZ_CHECK(latitude > 49 && latitude < 62 && longitude > -9.5 && longitude < 4);
}

}  // namespace

// Two numbers, then lines: a pair, an easting, a northing; the pair's beginning is a grid square as well.
void TestInput(Input& input) {
    const auto x = input.Number<std::int32_t>(), y = input.Number<std::int32_t>();
    const std::string pair(UpToZero(input.Until('\n')));
    const std::string easting(UpToZero(input.Until('\n'))), northing(UpToZero(input.Rest(256)));
    CheckPair(pair);
    CheckWritten(x, y);
    CheckGrid(pair, easting, northing);
    CheckProjection(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y));
}

}  // namespace dorvutil::fuzz
