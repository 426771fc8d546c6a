#include "dorvutil/platform/user_locale.h"

#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <cstring>

namespace dorvutil::platform {
namespace {

constexpr std::int32_t kUsualDigits = 2;  // the C library knows decimals for money only
constexpr std::int32_t kSignInFront = 1;  // and for plain numbers no other place of the sign

// A locale of the C library, apart from that of the process.
class Locale {
public:
    explicit Locale(bool invariant) : m_locale(::newlocale(LC_ALL_MASK, invariant ? "C" : "", nullptr)) {
        // The user may have asked for one that is not installed.
        if (!m_locale) m_locale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    }
    ~Locale() {
        if (m_locale) ::freelocale(m_locale);
    }
    Locale(const Locale&) = delete;
    Locale& operator=(const Locale&) = delete;

    const char* Text(nl_item item) const { return m_locale ? ::nl_langinfo_l(item, m_locale) : ""; }

private:
    locale_t m_locale;
};

// The Windows numbers of what the C library knows too. Its weeks start on Sunday, theirs on Monday.
constexpr struct {
    std::uint32_t type;
    nl_item item;
    std::uint32_t count;  // of types and items that follow each other
} kItems[] = {
    {0x0E, RADIXCHAR, 1},
    {0x0F, THOUSEP, 1},
    {0x2A, DAY_2, 6},
    {0x30, DAY_1, 1},
    {0x31, ABDAY_2, 6},
    {0x37, ABDAY_1, 1},
    {0x38, MON_1, 12},
    {0x44, ABMON_1, 12},
    {0x59, _NL_ADDRESS_LANG_AB, 1},
    {0x5A, _NL_ADDRESS_COUNTRY_AB2, 1},
};

constexpr struct {
    std::uint32_t type;
    const char* text;
} kConstants[] = {
    {0x10, "3;0"},  // grouping
    {0x11, "2"},    // decimals
    {0x12, "1"},    // leading zero
    {0x1010, "1"},  // order of the negative sign
    {0x51, "-"},    // negative sign
};
constexpr std::uint32_t kCurrencySign = 0x14;

const char* FindText(const Locale& locale, std::uint32_t type) {
    for (const auto& constant : kConstants) {
        if (constant.type == type) return constant.text;
    }
    // The first character says where the sign stands.
    if (type == kCurrencySign) {
        const char* const sign = locale.Text(CRNCYSTR);
        return *sign ? sign + 1 : sign;
    }
    for (const auto& row : kItems) {
        if (type >= row.type && type - row.type < row.count) {
            return locale.Text(static_cast<nl_item>(row.item + static_cast<nl_item>(type - row.type)));
        }
    }
    return "";
}

template <std::size_t Size>
void Copy(const char* text, const char* otherwise, char (&out)[Size]) {
    const char* const taken = std::strlen(text) < Size && *text ? text : otherwise;
    std::memcpy(out, taken, std::strlen(taken) + 1);
}

}  // namespace

void QueryLocaleNumbers(LocaleNumbers& numbers) {
    const Locale locale(false);
    Copy(locale.Text(RADIXCHAR), ".", numbers.decimal);
    Copy(locale.Text(THOUSEP), "", numbers.thousands);
    numbers.digits = kUsualDigits;
    numbers.negativeOrder = kSignInFront;
}

bool QueryLocaleText(bool invariant, std::uint32_t type, char* out, std::size_t size) {
    const Locale locale(invariant);
    const char* const text = FindText(locale, type);
    const std::size_t length = std::strlen(text);
    if (length == 0 || length >= size) return false;
    std::memcpy(out, text, length + 1);
    return true;
}

}  // namespace dorvutil::platform
