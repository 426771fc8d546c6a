#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "dorvutil/text/number_text.h"

namespace dorvutil {

/// A line of text put together without the heap and the C library's formatting, as a fault handler needs it. What does
/// not fit is cut, but the line end that Text() adds always fits.
class ReportLine {
public:
    ReportLine& Add(const char* text) { return Add(text, std::strlen(text)); }
    ReportLine& AddNumber(std::int32_t value) {
        const auto bits = static_cast<std::uint32_t>(value);
        return value < 0 ? Add("-").AddDigits(0u - bits, 10) : AddDigits(bits, 10);
    }
    /// As a signed number, like the one above.
    ReportLine& AddNumber(std::uint32_t value) { return AddNumber(static_cast<std::int32_t>(value)); }
    /// An address, or another hexadecimal number, with its 0x.
    ReportLine& AddHex(std::uint64_t value) { return Add("0x").AddDigits(value, 16); }
    /// Eight digits, upper case.
    ReportLine& AddCode(std::uint32_t value) {
        char digits[8];
        for (int i = 7; i >= 0; --i, value >>= 4) digits[i] = "0123456789ABCDEF"[value & 0xF];
        return Add(digits, sizeof digits);
    }

    /// The line, ended.
    const char* Text() {
        m_text[m_size] = '\n';
        m_text[m_size + 1] = '\0';
        return m_text;
    }

private:
    static constexpr std::size_t kCapacity = 5000;  // a file, a function, and the rest

    ReportLine& Add(const char* text, std::size_t n) {
        if (n > kCapacity - m_size) n = kCapacity - m_size;
        std::memcpy(m_text + m_size, text, n);
        m_size += n;
        return *this;
    }
    ReportLine& AddDigits(std::uint64_t value, std::uint32_t radix) {
        char digits[kMaxIntegerDigits];
        return Add(digits, FormatUnsigned(value, radix, digits));
    }

    std::size_t m_size = 0;
    char m_text[kCapacity + 2];
};

}  // namespace dorvutil
