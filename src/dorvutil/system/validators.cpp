#include "dorvutil/system/validators.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace dorvutil {
namespace {

constexpr std::size_t kMostEmail = 320;
constexpr std::size_t kMostLocalPart = 64;
constexpr std::size_t kMostHostname = 255;
constexpr std::size_t kMostLabel = 63;
constexpr std::size_t kMostIpAddress = 39;
constexpr std::size_t kMostIpv4 = 15;
constexpr int kIpv4Parts = 4;
constexpr int kIpv6Groups = 8;
constexpr std::string_view kOnlyInQuotes = " ,\\@()[]<>:;";
constexpr std::string_view kPhoneMarks = " +-()xX";

std::string_view View(const ORVustring& text) { return {text.c_str(), text.length()}; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsHexDigit(char c) { return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
bool IsLabelUnit(char c) { return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-'; }

bool HasLength(std::string_view text, std::size_t most) { return !text.empty() && text.size() <= most; }

// Calls `check` for each part between separators, up to the first that does not pass. Returns the number of parts; 0
// when one did not pass.
template <class Check>
int CountParts(std::string_view text, char separator, Check check) {
    for (int count = 1;; ++count) {
        const std::size_t end = text.find(separator);
        if (!check(text.substr(0, end))) return 0;
        if (end == std::string_view::npos) return count;
        text.remove_prefix(end + 1);
    }
}

bool IsLocalPart(std::string_view text) {
    if (!HasLength(text, kMostLocalPart) || text.front() == '.' || text.back() == '.') return false;
    if (text.find("..") != std::string_view::npos) return false;
    bool quoted = false;
    for (const char c : text) {
        if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && kOnlyInQuotes.find(c) != std::string_view::npos) {
            return false;
        }
    }
    return !quoted;
}

bool IsLabel(std::string_view text) {
    return HasLength(text, kMostLabel) && text.front() != '-' && text.back() != '-' &&
           std::all_of(text.begin(), text.end(), IsLabelUnit);
}

bool IsHostname(std::string_view text) { return HasLength(text, kMostHostname) && CountParts(text, '.', IsLabel) >= 2; }

bool IsByteValue(std::string_view text) {
    if (!HasLength(text, 3) || !std::all_of(text.begin(), text.end(), IsDigit)) return false;
    int value = 0;
    for (const char c : text) value = 10 * value + (c - '0');
    return value <= 255;
}

bool IsIpv4(std::string_view text) {
    return HasLength(text, kMostIpv4) && CountParts(text, '.', IsByteValue) == kIpv4Parts;
}

bool IsGroup(std::string_view text) { return HasLength(text, 4) && std::all_of(text.begin(), text.end(), IsHexDigit); }

// The number of groups between colons, the last of which may be an IPv4 address; 0 when one is malformed.
int CountGroups(std::string_view text) {
    const std::size_t tail = text.rfind(':') + 1;  // wraps to 0 when there is none
    if (text.find('.', tail) == std::string_view::npos) return CountParts(text, ':', IsGroup);
    if (!IsIpv4(text.substr(tail))) return 0;
    if (tail == 0) return 1;
    const int before = CountParts(text.substr(0, tail - 1), ':', IsGroup);
    return before == 0 ? 0 : before + 1;
}

bool IsIpv6(std::string_view text) {
    const std::size_t gap = text.find("::");
    if (gap == std::string_view::npos) {
        const int count = CountGroups(text);
        return count != 0 && count <= kIpv6Groups;
    }
    // What stands on either side is nothing at all or well-formed; a second gap is malformed there.
    const std::string_view before = text.substr(0, gap), behind = text.substr(gap + 2);
    const int countBefore = before.empty() ? 0 : CountParts(before, ':', IsGroup);
    const int countBehind = behind.empty() ? 0 : CountGroups(behind);
    const bool wellFormed = (before.empty() || countBefore != 0) && (behind.empty() || countBehind != 0);
    return wellFormed && countBefore + 1 + countBehind <= kIpv6Groups;
}

bool IsIpAddress(std::string_view text) {
    if (!HasLength(text, kMostIpAddress)) return false;
    return text.find(':') == std::string_view::npos ? IsIpv4(text) : IsIpv6(text);
}

bool IsEmailDomain(std::string_view text) {
    if (text.empty() || text.front() != '[') return IsHostname(text);
    return text.back() == ']' && IsIpAddress(text.substr(1, text.size() - 2));
}

}  // namespace

bool Verify_EmailFormat(const ORVustring& text) {
    const std::string_view view = View(text);
    const std::size_t at = view.rfind('@');
    return view.size() <= kMostEmail && at != std::string_view::npos && IsLocalPart(view.substr(0, at)) &&
           IsEmailDomain(view.substr(at + 1));
}

bool Verify_EmailLocalPartFormat(const ORVustring& text) { return IsLocalPart(View(text)); }

bool Verify_HostnameFormat(const ORVustring& text) { return IsHostname(View(text)); }

bool Verify_IPAddressFormat(const ORVustring& text) { return IsIpAddress(View(text)); }

bool Verify_PhoneNumFormat(const ORVustring& text) {
    const std::string_view view = View(text);
    return !view.empty() && std::all_of(view.begin(), view.end(), [](char c) {
        return IsDigit(c) || kPhoneMarks.find(c) != std::string_view::npos;
    });
}

}  // namespace dorvutil
