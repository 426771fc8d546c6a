#include "dorvutil/concurrency/object_name.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

namespace dorvutil {
namespace {

// Reads one character of UTF-8 (RFC 3629: shortest forms, no surrogates); false when there is none at `at`. Stops at
// the end mark, which continues no character.
bool ReadUtf8(const unsigned char* at, std::uint32_t& code, std::size_t& length) {
    static constexpr struct {
        std::uint32_t firstLead, lastLead, leadBits, least;
    } kForms[] = {
        {0x00, 0x7F, 0x7F, 0}, {0xC2, 0xDF, 0x1F, 0x80}, {0xE0, 0xEF, 0x0F, 0x800}, {0xF0, 0xF4, 0x07, 0x10000}};
    length = 0;
    for (const auto& form : kForms) {
        ++length;
        if (at[0] < form.firstLead || at[0] > form.lastLead) continue;
        code = at[0] & form.leadBits;
        for (std::size_t i = 1; i < length; ++i) {
            if ((at[i] & 0xC0u) != 0x80) return false;
            code = code << 6 | (at[i] & 0x3Fu);
        }
        return code >= form.least && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
    }
    return false;
}

}  // namespace

std::unique_ptr<char16_t[]> WideObjectName(const char* name, bool& failed) {
    failed = false;
    if (!name || !*name) return nullptr;
    // No character has more units than bytes.
    std::unique_ptr<char16_t[]> wide(new (std::nothrow) char16_t[std::strlen(name) + 1]);
    failed = wide == nullptr;
    if (failed) return nullptr;
    char16_t* out = wide.get();
    for (auto at = reinterpret_cast<const unsigned char*>(name); *at != 0;) {
        std::uint32_t code = *at;
        std::size_t length = 1;
        if (!ReadUtf8(at, code, length)) {
            code = *at;
            length = 1;
        }
        if (code < 0x10000) {
            *out++ = static_cast<char16_t>(code);
        } else {
            *out++ = static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
            *out++ = static_cast<char16_t>(0xDC00 + (code & 0x3FF));
        }
        at += length;
    }
    *out = u'\0';
    return wide;
}

}  // namespace dorvutil
