#include "grid_reference.h"

#include <algorithm>
#include <charconv>

#include "dorvutil/geometry/national_grid.h"
#include "input_error.h"

namespace roadlyn {
namespace {

constexpr std::int32_t kSquareSide = 100'000;
constexpr std::int32_t kWidth = 1'000'000;
constexpr std::int32_t kHeight = 1'500'000;
constexpr std::size_t kMostDigits = 10;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

[[noreturn]] void Fail(const std::string& text, const std::string& reason) {
    throw InputError("REFERENCE", 0, "'" + text + "': " + reason);
}

std::int32_t Number(const std::string& text, std::int32_t limit) {
    std::int32_t value = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ptr != end || result.ec == std::errc::invalid_argument) Fail(text, "not a whole number of metres");
    if (result.ec != std::errc() || value < 0 || value >= limit)
        Fail(text, "outside the grid, 0 to " + std::to_string(limit - 1));
    return value;
}

// The part of a reference in one direction, in units of `side`.
std::int32_t Metres(const std::string& digits, std::int32_t side) {
    return digits.empty() ? 0 : Number(digits, kSquareSide) * side;
}

GridSquare ReadLetters(const std::string& text) {
    const std::string digits = text.substr(std::min<std::size_t>(2, text.size()));
    if (!std::all_of(digits.begin(), digits.end(), IsDigit)) Fail(text, "not two letters and digits");
    if (digits.size() % 2 != 0 || digits.size() > kMostDigits) Fail(text, "needs an even number of digits, up to ten");
    double easting = 0;
    double northing = 0;
    if (dorvutil::OSGBSquareToFullEN(text.c_str(), &easting, &northing) == 0) Fail(text, "no such square");
    GridSquare square;
    square.side = kSquareSide;
    for (std::size_t i = 0; i < digits.size() / 2; ++i) square.side /= 10;
    square.easting = static_cast<std::int32_t>(easting) + Metres(digits.substr(0, digits.size() / 2), square.side);
    square.northing = static_cast<std::int32_t>(northing) + Metres(digits.substr(digits.size() / 2), square.side);
    return square;
}

}  // namespace

GridSquare ReadGridReference(std::span<const std::string> words) {
    std::string text;
    for (const std::string& word : words)
        for (const char c : word)
            if (c != ' ') text += c;
    if (text.empty() || IsDigit(text[0]) || text[0] == '-') {
        if (words.size() != 2) Fail(text, "needs two letters and digits, or an easting and a northing");
        return {Number(words[0], kWidth), Number(words[1], kHeight), 1};
    }
    return ReadLetters(text);
}

}  // namespace roadlyn
