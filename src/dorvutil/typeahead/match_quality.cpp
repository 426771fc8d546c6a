#include "dorvutil/typeahead/match_quality.h"

#include <cstring>
#include <string_view>

#include "dorvutil/text/sanitize.h"
#include "dorvutil/text/special_chars.h"
#include "dorvutil/typeahead/match_grader.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kShortName = 512;       // bytes; longer names are graded through string objects
constexpr std::int32_t kSanitizedBuffer = 255;  // what SanitizeString cuts string objects at, and the terminator

std::string_view ViewOf(const ORVustring& text) { return {text.c_str(), text.length()}; }

std::int32_t FindLower(char* text, std::int32_t length, std::string_view lowerPattern) {
    if (length == 0) return -1;
    SpecialChar_tolower(text, length, static_cast<std::uint32_t>(length));
    const std::size_t found = std::string_view(text, static_cast<std::size_t>(length)).find(lowerPattern);
    return found == std::string_view::npos ? -1 : static_cast<std::int32_t>(found);
}

bool StartsWord(char before) { return before == ' ' || before == '-' || before == '.'; }

}  // namespace

struct MatchGrader::Positions {
    std::int32_t plain;
    std::int32_t sanitized;  // not looked for when plain is 0
};

MatchGrader::MatchGrader(const ORVustring& input) : m_input(input.c_str()), m_sanitized(SanitizeString(input)) {
    m_input.to_lower();
    m_sanitized.to_lower();
}

// The case of a character never changes its length, so positions in the lower-case copy are those of the name.
MatchGrader::Positions MatchGrader::Find(const ORVustring& display) const {
    char buffer[kShortName];
    const auto length = static_cast<std::int32_t>(display.length());
    std::memcpy(buffer, display.c_str(), display.length());
    Positions found{FindLower(buffer, length, ViewOf(m_input)), -1};
    if (found.plain != 0) {
        const std::int32_t kept = SanitizeString(buffer, kSanitizedBuffer, display.c_str(), length);
        found.sanitized = FindLower(buffer, kept, ViewOf(m_sanitized));
    }
    return found;
}

MatchGrader::Positions MatchGrader::FindByCopies(const ORVustring& display) const {
    Positions found{display.findi(m_input.c_str()), -1};
    if (found.plain != 0) found.sanitized = SanitizeString(display).findi(m_sanitized.c_str());
    return found;
}

MatchQuality MatchGrader::Grade(const ORVustring& display) const {
    if (display.empty()) return MQ_NONE;
    const bool plainText = display.length() <= kShortName && !std::memchr(display.c_str(), 0, display.length());
    const Positions found = plainText ? Find(display) : FindByCopies(display);
    if (found.plain == 0) return MQ_PREFIX;
    if (found.sanitized == 0) return MQ_SANITIZED_PREFIX;
    if (found.plain > 0) return StartsWord(display[found.plain - 1]) ? MQ_WORD_START : MQ_INSIDE;
    return found.sanitized > 0 ? MQ_SANITIZED_INSIDE : MQ_NONE;
}

MatchQuality GetTypeAheadMatchQuality(const ORVustring& input, const ORVustring& display) {
    return MatchGrader(input).Grade(display);
}

}  // namespace dorvutil
