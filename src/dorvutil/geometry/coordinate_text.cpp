#include "dorvutil/geometry/coordinate_text.h"

#include <charconv>

#include "dorvutil/text/number_text.h"

namespace dorvutil {
namespace {

using geometry_detail::TruncateToInt32;

constexpr std::uint32_t kUnitsPerDegree = 1'000'000;
constexpr std::uint32_t kMaxText = 16;  // "2147.483648N" and more
constexpr std::uint32_t kMaxPart = 127;
constexpr std::uint32_t kMaxRunWithLetter = 31;
constexpr std::uint32_t kLeastPacked = 6;
constexpr std::uint32_t kMostPacked = 8;

// Writes degrees and the hemisphere, the first letter of the two for values from 0 on; returns how many characters.
std::int32_t Write(std::int32_t value, const char (&hemispheres)[3], char (&out)[kMaxText]) {
    const std::uint32_t magnitude = geometry_detail::Magnitude(value);
    char* at = std::to_chars(out, out + kMaxText, magnitude / kUnitsPerDegree).ptr;
    *at++ = '.';
    std::uint32_t rest = magnitude % kUnitsPerDegree;
    for (std::uint32_t place = kUnitsPerDegree / 10; place != 0; place /= 10) {
        *at++ = static_cast<char>('0' + rest / place);
        rest %= place;
    }
    *at++ = hemispheres[value < 0 ? 1 : 0];
    return static_cast<std::int32_t>(at - out);
}

// What one side of the separator says.
struct Part {
    char m_run[kMaxPart + 1];  // digits, points and signs; ends with a zero character
    std::uint32_t m_length = 0;
    bool m_hasPoint = false;
    char m_letter = 0;  // behind the run: N, S, E, W or 0

    bool IsLongitude() const { return m_letter == 'E' || m_letter == 'W'; }
    bool IsLatitude() const { return m_letter == 'N' || m_letter == 'S'; }
    double Sign() const { return m_letter == 'N' || m_letter == 'E' ? 1 : -1; }
};

bool IsFiller(char c, bool) { return c == '\'' || c == '"' || c == ' ' || c == '\xB0'; }
bool IsFiller(char16_t c, bool atStart) { return c == ' ' && atStart; }

template <class T>
bool IsRunCharacter(T c) {
    return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+';
}

template <class T>
char HemisphereOf(T c) {
    for (const char letter : {'N', 'S', 'E', 'W'})
        if (c == letter || c == letter + ('a' - 'A')) return letter;
    return 0;
}

template <class T>
Part ReadPart(const T* text, const T* end) {
    Part part;
    if (end - text > std::ptrdiff_t{kMaxPart}) end = text + kMaxPart;
    bool atStart = true;
    for (; text != end; ++text) {
        if (IsFiller(*text, atStart)) continue;
        atStart = false;
        if (!IsRunCharacter(*text)) break;
        part.m_hasPoint = part.m_hasPoint || *text == '.';
        part.m_run[part.m_length++] = static_cast<char>(*text);
    }
    part.m_run[part.m_length] = 0;
    if (text != end) part.m_letter = HemisphereOf(*text);
    return part;
}

// In degrees, times the sign of the letter.
double DecimalValue(Part& part) {
    if (part.m_length > kMaxRunWithLetter) part.m_run[kMaxRunWithLetter] = 0;
    return ParseDouble(part.m_run) * kUnitsPerDegree * part.Sign();
}

// Cuts the last `count` characters off the run, or all of it, and reads them.
std::int32_t TakeNumber(Part& part, std::uint32_t count) {
    part.m_length -= count;
    char* const digits = part.m_run + part.m_length;
    const std::int32_t number = ToSigned32(ParseInteger(digits, 10));
    *digits = 0;
    return number;
}

double PackedValue(Part& part) {
    const std::int32_t seconds = TakeNumber(part, 2);
    const std::int32_t minutes = TakeNumber(part, 2);
    const std::int32_t degrees = TakeNumber(part, part.m_length);
    return part.Sign() * (degrees + minutes / 60.0 + seconds / 3600.0) * kUnitsPerDegree;
}

bool MayBePacked(const Part& part) {
    return !part.m_hasPoint && part.m_length >= kLeastPacked && part.m_length <= kMostPacked;
}

bool ReadPair(Part& first, Part& second, std::int32_t& x, std::int32_t& y) {
    if (first.m_length == 0 || second.m_length == 0) return false;
    Part* const lon = first.IsLongitude() ? &first : second.IsLongitude() ? &second : nullptr;
    Part* const lat = first.IsLatitude() ? &first : second.IsLatitude() ? &second : nullptr;
    if (!lon && !lat && first.m_hasPoint && second.m_hasPoint) {
        y = TruncateToInt32(ParseDouble(first.m_run) * kUnitsPerDegree);
        x = TruncateToInt32(ParseDouble(second.m_run) * kUnitsPerDegree);
        return true;
    }
    if (!lon || !lat) return false;
    const auto value = MayBePacked(*lon) && MayBePacked(*lat) ? PackedValue : DecimalValue;
    x = TruncateToInt32(value(*lon));
    y = TruncateToInt32(value(*lat));
    return true;
}

template <class T>
bool Read(const T* text, std::int32_t* x, std::int32_t* y) {
    if (!text || !x || !y) return false;
    const T* separator = text;
    while (*separator != ';' && *separator != '&' && *separator != ',')
        if (*separator++ == 0) return false;
    const T* end = separator + 1;
    while (*end != 0 && end - separator <= std::ptrdiff_t{kMaxPart}) ++end;
    Part first = ReadPart(text, separator);
    Part second = ReadPart(separator + 1, end);
    return ReadPair(first, second, *x, *y);
}

}  // namespace

ORVustring ConvertLat(std::int32_t latitude) {
    char text[kMaxText];
    const std::int32_t length = Write(latitude, "NS", text);
    return ORVustring(text, length);
}

ORVustring ConvertLon(std::int32_t longitude) {
    char text[kMaxText];
    const std::int32_t length = Write(longitude, "EW", text);
    return ORVustring(text, length);
}

ORVustring ConvertLatLon(const TOrvPoint<std::int32_t>& point, const char* separator) {
    ORVustring text = ConvertLat(point.y);
    if (separator) text += separator;
    text += ConvertLon(point.x);
    return text;
}

bool IsStrLatLong(const char* text, std::int32_t* x, std::int32_t* y) { return Read(text, x, y); }
bool IsStrLatLongW(const char16_t* text, std::int32_t* x, std::int32_t* y) { return Read(text, x, y); }

}  // namespace dorvutil
