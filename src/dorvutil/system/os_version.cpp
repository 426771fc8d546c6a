#include "dorvutil/system/os_version.h"

#include "dorvutil/system/text_out.h"
#include "dorvutil/text/string.h"

namespace dorvutil {
namespace {

using platform::OsFamily;
using platform::OsVersion;

constexpr std::int32_t kAny = -1;
constexpr std::int32_t kOtherVersion = 10;

// In the formats: A is the service pack; the version's numbers come first where `numbered` is set.
struct Row {
    OsFamily family;
    std::int32_t major, minor;
    bool tabletPc;
    std::int32_t code;
    const char* format;
    bool numbered;
};

// The first row that matches a version names it.
constexpr Row kRows[] = {
    {OsFamily::kDosBased, 4, 0, false, 11, "Windows 95", false},
    {OsFamily::kDosBased, 4, 10, false, 12, "Windows 98", false},
    {OsFamily::kDosBased, 4, 90, false, 13, "Windows Me", false},
    {OsFamily::kNt, 3, kAny, false, 14, "Windows NT %d.%d with %S", true},
    {OsFamily::kNt, 4, kAny, false, 14, "Windows NT %d.%d with %S", true},
    {OsFamily::kNt, 5, 0, false, 15, "Windows 2000 With %S", false},
    {OsFamily::kNt, 5, 1, true, 20, "Windows XP TabletPC %S", false},
    {OsFamily::kNt, 5, 1, false, 16, "Windows XP %S", false},
    {OsFamily::kNt, 6, 0, false, 17, "Windows Vista %d.%d with %S", true},
    {OsFamily::kNt, 6, 1, false, 18, "Windows 7 %d.%d with %S", true},
};

bool Matches(const Row& row, const OsVersion& version) {
    return row.family == version.family && row.major == version.major &&
           (row.minor == kAny || row.minor == version.minor) && (!row.tabletPc || version.tabletPc);
}

ORVustring Name(const Row& row, const OsVersion& version) {
    if (row.numbered) return ORVustring::printf(row.format, version.major, version.minor, version.servicePack);
    return ORVustring::printf(row.format, version.servicePack);
}

void Store(const ORVustring& name, char16_t (&text)[kOsTextSize]) { CopyOut(name.wc_str(), text, kOsTextSize); }

}  // namespace

std::int32_t DescribeOs(const OsVersion& version, char16_t (&text)[kOsTextSize]) {
    text[0] = u'\0';
    if (version.family == OsFamily::kUnknown) return 0;
    for (const Row& row : kRows) {
        if (!Matches(row, version)) continue;
        Store(Name(row, version), text);
        return row.code;
    }
    const bool windows = version.family != OsFamily::kOther;
    Store(ORVustring::printf("%S %d.%d", windows ? u"Windows" : version.name, version.major, version.minor), text);
    return kOtherVersion;
}

}  // namespace dorvutil
