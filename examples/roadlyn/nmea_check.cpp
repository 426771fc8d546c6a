#include "nmea_check.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>

#include "dorvutil/security/checksum.h"
#include "search_report.h"

namespace roadlyn {
namespace {

constexpr std::size_t kMostShown = 20;  // bytes of a line that is named

std::string Digits(unsigned value) {
    char text[sizeof "00"];
    std::snprintf(text, sizeof text, "%02X", value & 0xFFu);
    return text;
}

unsigned ChecksumOf(std::string_view body) {
    constexpr std::size_t kMost = std::numeric_limits<std::int32_t>::max();
    const auto length = static_cast<std::int32_t>(std::min(body.size(), kMost));
    return static_cast<unsigned char>(dorvutil::iComputeChecksum(body.data(), length));
}

std::string Shown(std::string_view text) {
    const bool cut = text.size() > kMostShown;
    return Printable(std::string(text.substr(0, kMostShown))) + (cut ? "..." : "");
}

std::string_view WithoutBlanksBehind(std::string_view line) {
    const std::size_t last = line.find_last_not_of(" \t\r");
    return line.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

bool AreTwoDigits(std::string_view text) {
    return text.size() == 2 && std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c); });
}

std::string Upper(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return upper;
}

void CheckLine(std::string_view line, std::size_t number, NmeaReport& report) {
    if (line.empty()) return;
    if (line[0] != '$' && line[0] != '!') {
        report.bad.push_back({number, "no sentence", "", Shown(line)});
        return;
    }
    ++report.sentences;
    const std::string_view body = line.substr(1);
    const std::size_t star = body.find('*');
    if (star == std::string_view::npos) {
        ++report.withoutChecksum;
        return;
    }
    const std::string expected = Digits(ChecksumOf(body));
    const std::string_view found = body.substr(star + 1);
    if (!AreTwoDigits(found)) {
        report.bad.push_back({number, "no two digits behind the star", expected, Shown(found)});
    } else if (Upper(found) != expected) {
        report.bad.push_back({number, "wrong checksum", expected, std::string(found)});
    } else {
        ++report.good;
    }
}

}  // namespace

NmeaReport CheckNmea(std::string_view text) {
    NmeaReport report;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        CheckLine(WithoutBlanksBehind(text.substr(0, end)), number, report);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return report;
}

}  // namespace roadlyn
