#include "dorvutil/text/print_engine.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "dorvutil/text/encoding.h"
#include "dorvutil/text/number_text.h"
#include "dorvutil/text/string.h"
#include "dorvutil/text/utf8.h"

namespace dorvutil::print {
namespace {

// What stands between '%' and the conversion character.
struct Spec {
    bool m_plus = false;
    bool m_space = false;
    bool m_alternate = false;
    bool m_left = false;
    bool m_zero = false;
    std::int64_t m_width = 0;
    std::int64_t m_precision = -1;  // not given
    char m_size = 0;                // 'h', 'l', 'L' or something else
};

constexpr std::int64_t kMostDigits = 1'000'000;  // far above what a text holds

template <class T>
bool IsConversion(T c) {
    return c != 0 && c < 0x80 && std::strchr("cdiuoxXfeEgGpsSaA%n", static_cast<char>(c)) != nullptr;
}

template <class T>
bool IsFlag(T c, Spec& spec) {
    switch (c) {
        case '+':
            return spec.m_plus = true;
        case ' ':
            return spec.m_space = true;
        case '#':
            return spec.m_alternate = true;
        case '-':
            return spec.m_left = true;
        case '0':
            return spec.m_zero = true;
        default:
            return false;
    }
}

template <class T>
std::int64_t ReadNumber(const T*& at, std::va_list* args) {
    if (*at == '*') {
        ++at;
        return va_arg(*args, int);
    }
    std::int64_t value = 0;
    for (; *at >= '0' && *at <= '9'; ++at) value = std::min<std::int64_t>(value * 10 + (*at - '0'), kMostDigits);
    return value;
}

// `end` is the conversion character.
template <class T>
Spec ReadSpec(const T* at, const T* end, std::va_list* args) {
    Spec spec;
    if (at != end && end[-1] < 0x80) spec.m_size = static_cast<char>(end[-1]);
    while (at != end && IsFlag(*at, spec)) ++at;
    if (at != end) spec.m_width = ReadNumber(at, args);
    if (spec.m_width < 0) {  // only by '*'
        spec.m_left = true;
        spec.m_width = -spec.m_width;
    }
    if (at != end && *at == '.') spec.m_precision = ReadNumber(++at, args);
    return spec;
}

// Text that is being put together for one conversion.
struct Piece {
    char m_text[kMaxDoubleText + 4];
    std::uint32_t m_length = 0;

    void Add(const char* s, std::uint32_t n) {
        std::memcpy(m_text + m_length, s, n);
        m_length += n;
    }
};

template <class T>
bool AppendAscii(Sink<T>& out, const char* s, std::uint32_t n) {
    T* const place = out.Extend(n);
    if (place) std::copy(s, s + n, place);
    return place != nullptr;
}

std::uint64_t Missing(std::int64_t wanted, std::uint64_t there) {
    return wanted > 0 && static_cast<std::uint64_t>(wanted) > there ? static_cast<std::uint64_t>(wanted) - there : 0;
}

// Sign, zeros, digits, with more zeros inside the digits where `split` says; the fill of the width goes behind the
// sign, whatever it is filled with.
struct Number {
    char m_sign = 0;  // none
    std::uint64_t m_zeros = 0;
    std::uint64_t m_zerosInside = 0;
    std::uint32_t m_split = 0;
};

template <class T>
bool AppendNumber(Sink<T>& out, const Spec& spec, const Number& number, const Piece& digits) {
    const std::uint64_t length = (number.m_sign ? 1u : 0u) + number.m_zeros + number.m_zerosInside + digits.m_length;
    const std::uint64_t fill = Missing(spec.m_width, length);
    const char filler = spec.m_zero ? '0' : ' ';
    const std::uint32_t start = out.Length();
    if (out.Extend(length + fill) == nullptr) return false;  // all of it or nothing
    out.Cut(start);
    if (number.m_sign) out.Fill(1, number.m_sign);
    if (!spec.m_left) out.Fill(fill, filler);
    out.Fill(number.m_zeros, '0');
    AppendAscii(out, digits.m_text, number.m_split);
    out.Fill(number.m_zerosInside, '0');
    AppendAscii(out, digits.m_text + number.m_split, digits.m_length - number.m_split);
    if (spec.m_left) out.Fill(fill, filler);
    return true;
}

char SignFor(const Spec& spec, bool negative) {
    if (negative) return '-';
    return spec.m_plus ? '+' : spec.m_space ? ' ' : '\0';
}

template <class T>
bool PrintInteger(Sink<T>& out, const Spec& spec, char conversion, std::va_list* args) {
    const int argument = va_arg(*args, int);
    const bool isSigned = conversion == 'd' || conversion == 'i';
    std::int64_t value = isSigned ? std::int64_t{argument} : std::int64_t{static_cast<std::uint32_t>(argument)};
    if (spec.m_size == 'h') {
        const auto bits = static_cast<std::uint16_t>(argument);
        value = isSigned ? std::int64_t{static_cast<std::int16_t>(bits)} : std::int64_t{bits};
    }
    const bool hexadecimal = conversion == 'x' || conversion == 'X';
    Piece piece;
    if (spec.m_alternate && hexadecimal) piece.Add("0x", 2);
    if (spec.m_alternate && conversion == 'o') piece.Add("0", 1);
    const auto magnitude = static_cast<std::uint64_t>(value < 0 ? -value : value);
    piece.m_length += FormatUnsigned(magnitude,
                                     hexadecimal         ? 16
                                     : conversion == 'o' ? 8
                                                         : 10,
                                     piece.m_text + piece.m_length);
    if (conversion == 'X') {
        std::transform(piece.m_text, piece.m_text + piece.m_length, piece.m_text,
                       [](char c) { return c >= 'a' ? static_cast<char>(c - 32) : c; });
    }
    const Number number{.m_sign = SignFor(spec, value < 0), .m_zeros = Missing(spec.m_precision, piece.m_length)};
    return AppendNumber(out, spec, number, piece);
}

template <class T>
bool PrintDouble(Sink<T>& out, Spec spec, char conversion, std::va_list* args) {
    const double value = va_arg(*args, double);
    const bool finite = std::isfinite(value);
    const std::int64_t precision = spec.m_precision;
    Piece piece;
    piece.m_length = FormatMagnitude(value,
                                     {.m_conversion = conversion,
                                      .m_precision = static_cast<std::int32_t>(std::min(precision, kMostDigits)),
                                      .m_alternate = spec.m_alternate},
                                     piece.m_text);
    Number number{.m_sign = SignFor(spec, std::signbit(value))};
    // Digits beyond those a double can have are zeros, in front of an exponent.
    const bool padded = finite && ((conversion | 0x20) != 'g' || spec.m_alternate);
    number.m_zerosInside = padded ? Missing(precision, kMaxDecimals) : 0;
    char* const end = piece.m_text + piece.m_length;
    number.m_split = static_cast<std::uint32_t>(
        std::find_if(piece.m_text, end, [](char c) { return (c | 0x20) == 'e'; }) - piece.m_text);
    // As the standard has it: no zeros in front of "inf", none behind a number, and spaces in front of the sign.
    spec.m_zero = spec.m_zero && finite && !spec.m_left;
    if (spec.m_zero || spec.m_left) return AppendNumber(out, spec, number, piece);
    const std::uint64_t length = (number.m_sign ? 1u : 0u) + piece.m_length + number.m_zerosInside;
    const std::uint32_t start = out.Length();
    if (out.Fill(Missing(spec.m_width, length), ' ') && AppendNumber(out, Spec(), number, piece)) return true;
    out.Cut(start);
    return false;
}

template <class T>
bool PrintPointer(Sink<T>& out, const Spec& spec, std::va_list* args) {
    Piece piece;
    piece.Add("0x", 2);
    const auto address = reinterpret_cast<std::uintptr_t>(va_arg(*args, void*));
    piece.m_length += FormatUnsigned(address, 16, piece.m_text + 2);
    Spec plain = spec;
    plain.m_zero = false;
    return AppendNumber(out, plain, Number(), piece);
}

template <class T>
bool PrintCharacter(Sink<T>& out, const Spec& spec, std::va_list* args) {
    const auto c = static_cast<T>(va_arg(*args, int));
    const std::uint64_t fill = Missing(spec.m_width, 1);
    T* const place = out.Extend(fill + 1);
    if (place == nullptr) return false;
    std::fill_n(place, fill + 1, T{' '});
    place[spec.m_left ? 0 : fill] = c;
    return true;
}

bool AppendText(Sink<char>& out, const char* s, std::uint32_t n) { return out.Append(s, n); }

bool AppendText(Sink<char16_t>& out, const char* s, std::uint32_t n) {
    const std::uint32_t units = GetNumUnitsNeededForUTF16(s, n);
    char16_t* const place = out.Extend(units);
    if (place && units != 0) ORVConvertUTF8toUTF16(s, n, place, units);
    return place != nullptr;
}

// A cut in the middle of a character leaves its first bytes in a narrow text. In a wide one they would be taken for
// Latin-1, and the whole text with them: there the character goes.
std::uint32_t CutAt(const Sink<char>&, const char*, std::uint32_t limit) { return limit; }

std::uint32_t CutAt(const Sink<char16_t>&, const char* s, std::uint32_t limit) {
    for (std::uint32_t back = 1; back <= 3 && back <= limit; ++back) {
        const auto needed = static_cast<std::uint32_t>(CharByteCount(s[limit - back]));
        if (needed != 0) return needed > back ? limit - back : limit;
    }
    return limit;
}

constexpr std::uint32_t kNoLimit = 0xFFFF'FFFFu;

std::uint32_t TextLimit(const Spec& spec) {
    if (spec.m_precision < 1) return kNoLimit;
    return static_cast<std::uint32_t>(std::min(std::max(spec.m_precision, spec.m_width), kMostDigits));
}

// UTF-8 text of `n` bytes, or up to the terminator when negative.
template <class T>
bool PrintText(Sink<T>& out, const Spec& spec, const char* s, std::int64_t n) {
    const std::uint32_t limit = TextLimit(spec);
    std::size_t there = n < 0 ? 0 : static_cast<std::size_t>(n);
    if (n < 0 && limit == kNoLimit) {
        there = std::strlen(s);
    } else if (n < 0) {
        while (there < limit && s[there] != '\0') ++there;
    }
    if (there > 4 * std::size_t{StringGuts<T>::kMaxCapacity}) return false;
    auto length = static_cast<std::uint32_t>(there);
    if (length >= limit) length = CutAt(out, s, limit);
    const std::uint64_t fill = Missing(spec.m_width, length);
    const std::uint32_t start = out.Length();
    const bool done =
        (spec.m_left || out.Fill(fill, ' ')) && AppendText(out, s, length) && (!spec.m_left || out.Fill(fill, ' '));
    if (!done) out.Cut(start);
    return done;
}

// UTF-16 text of at most `n` units; each takes a byte at least, so the limit holds for them too.
template <class T>
bool PrintWideText(Sink<T>& out, const Spec& spec, const char16_t* s, std::uint32_t n) {
    const std::uint32_t limit = TextLimit(spec);
    std::uint32_t units = 0;
    while (units < n && units <= limit && s[units] != 0) ++units;  // one more: it may be half of a pair
    Sink<char> narrow;
    const std::uint32_t bytes = GetNumBytesConvertedToUTF8(s, units);
    char* const place = narrow.Extend(bytes);
    if (place == nullptr) return false;
    if (bytes != 0) ORVConvertUTF16toUTF8(s, units, place, bytes);
    return PrintText(out, spec, narrow.Data(), bytes);
}

template <class T>
bool PrintTextArgument(Sink<T>& out, const Spec& spec, char conversion, std::va_list* args) {
    switch (conversion) {
        case 's': {
            const char* const text = va_arg(*args, const char*);
            return PrintText(out, spec, text ? text : "", -1);
        }
        case 'S': {
            const char16_t* const text = va_arg(*args, const char16_t*);
            return PrintWideText(out, spec, text ? text : u"", kNoLimit);
        }
        case 'a': {
            const ORVustring* const text = va_arg(*args, const ORVustring*);
            return text && PrintText(out, spec, text->c_str(false), text->length());
        }
        default: {
            const ORVwstring* const text = va_arg(*args, const ORVwstring*);
            return text && PrintWideText(out, spec, text->T_str(false), text->length());
        }
    }
}

template <class T>
bool Convert(Sink<T>& out, const Spec& spec, char conversion, std::va_list* args) {
    switch (conversion) {
        case 'c':
            return PrintCharacter(out, spec, args);
        case 'd':
        case 'i':
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            return PrintInteger(out, spec, conversion, args);
        case 'f':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
            return PrintDouble(out, spec, conversion, args);
        case 'p':
            return PrintPointer(out, spec, args);
        case 's':
        case 'S':
        case 'a':
        case 'A':
            return PrintTextArgument(out, spec, conversion, args);
        case '%':
            return out.Fill(1, '%');
        default:  // n
            if (int* const target = va_arg(*args, int*)) *target = static_cast<int>(out.Length());
            return true;
    }
}

template <class T>
void Run(Sink<T>& out, const T* format, std::va_list* args) {
    while (format != nullptr && *format != 0) {
        const T* const start = format;
        while (*format != 0 && *format != '%') ++format;
        if (!out.Append(start, static_cast<std::uint32_t>(format - start)) || *format == 0) return;
        const T* const specification = ++format;
        while (*format != 0 && !IsConversion(*format)) ++format;
        if (*format == 0) return;
        const Spec spec = ReadSpec(specification, format, args);
        if (!Convert(out, spec, static_cast<char>(*format++), args)) return;
    }
}

}  // namespace

void Format(Sink<char>& out, const char* format, std::va_list* args) { Run(out, format, args); }
void Format(Sink<char16_t>& out, const char16_t* format, std::va_list* args) { Run(out, format, args); }

}  // namespace dorvutil::print
