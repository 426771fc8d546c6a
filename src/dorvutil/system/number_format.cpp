#include "dorvutil/system/number_format.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include "dorvutil/system/text_out.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kMostDecimals = 9;
constexpr std::size_t kLongestNumber = 0x10000;

constexpr bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

struct Parts {
    bool negative = false;
    std::u16string_view whole;
    std::u16string_view fraction;
};

bool Parse(std::u16string_view number, Parts& parts) {
    parts.negative = !number.empty() && number[0] == u'-';
    if (parts.negative) number.remove_prefix(1);
    const std::size_t point = std::min(number.find(u'.'), number.size());
    parts.whole = number.substr(0, point);
    parts.fraction = number.substr(std::min(point + 1, number.size()));
    const auto digitsOnly = [](std::u16string_view text) { return std::all_of(text.begin(), text.end(), IsDigit); };
    return parts.whole.size() + parts.fraction.size() != 0 && digitsOnly(parts.whole) && digitsOnly(parts.fraction);
}

// Text that grows at its front, in a buffer that is large enough.
class Backwards {
public:
    explicit Backwards(char16_t* end) : m_at(end), m_end(end) {}
    void Add(char16_t unit) { *--m_at = unit; }
    void Add(std::u16string_view text) {
        m_at -= text.size();
        std::memcpy(m_at, text.data(), text.size() * sizeof(char16_t));
    }
    std::u16string_view Text() const { return {m_at, static_cast<std::size_t>(m_end - m_at)}; }

private:
    char16_t* m_at;
    char16_t* m_end;
};

// Adds one to a digit when `carry` is set, and says whether that overflows.
char16_t Rounded(char16_t digit, bool& carry) {
    if (!carry) return digit;
    carry = digit == u'9';
    return carry ? u'0' : static_cast<char16_t>(digit + 1);
}

// Writes the number without its sign; whether it is not zero.
bool WriteDigits(const Parts& parts, const NumberFormat& format, Backwards& out) {
    const auto decimals = static_cast<std::size_t>(format.digits);
    bool carry = parts.fraction.size() > decimals && parts.fraction[decimals] >= u'5';
    bool nonZero = false;
    const auto write = [&](char16_t digit) {
        const char16_t rounded = Rounded(digit, carry);
        nonZero |= rounded != u'0';
        out.Add(rounded);
    };
    for (std::size_t i = decimals; i > 0; --i) write(i <= parts.fraction.size() ? parts.fraction[i - 1] : u'0');
    if (decimals != 0) out.Add(format.decimal);

    const std::size_t zeros = std::min(parts.whole.find_first_not_of(u'0'), parts.whole.size());
    const std::u16string_view whole = parts.whole.substr(zeros);
    std::size_t written = 0;
    while (written < whole.size() || carry || written == 0) {
        if (written != 0 && written % 3 == 0) out.Add(format.thousands);
        write(written < whole.size() ? whole[whole.size() - 1 - written] : u'0');
        ++written;
    }
    return nonZero;
}

constexpr struct {
    std::u16string_view before, behind;
} kNegative[] = {{u"(", u")"}, {u"-", u""}, {u"- ", u""}, {u"", u"-"}, {u"", u" -"}};

}  // namespace

bool HasFraction(std::u16string_view number) {
    const std::size_t point = number.find(u'.');
    return point != std::u16string_view::npos && point + 1 < number.size();
}

std::int32_t FormatNumber(std::u16string_view number, const NumberFormat& format, char16_t* out, std::int32_t size) {
    Parts parts;
    const bool known = format.digits >= 0 && format.digits <= kMostDecimals && format.negativeOrder >= 0 &&
                       format.negativeOrder < static_cast<std::int32_t>(std::size(kNegative));
    if (!known || number.size() > kLongestNumber || !Parse(number, parts)) return 0;
    const std::size_t room = number.size() + number.size() / 3 * format.thousands.size() + format.decimal.size() +
                             static_cast<std::size_t>(format.digits) + 8;
    const std::unique_ptr<char16_t[]> buffer(new (std::nothrow) char16_t[room]);
    if (!buffer) return 0;
    // The sign behind comes first, for the text grows at its front; for zero there is none.
    const auto& sign = kNegative[format.negativeOrder];
    char16_t* const end = buffer.get() + room - sign.behind.size();
    Backwards text(end);
    if (!WriteDigits(parts, format, text) || !parts.negative) return CopyWhole(text.Text(), out, size);
    text.Add(sign.before);
    std::copy(sign.behind.begin(), sign.behind.end(), end);
    return CopyWhole({text.Text().data(), text.Text().size() + sign.behind.size()}, out, size);
}

}  // namespace dorvutil
