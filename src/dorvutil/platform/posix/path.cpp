#include "dorvutil/platform/posix/path.h"

#include <cstring>
#include <string_view>

namespace dorvutil::platform {
namespace {

constexpr std::uint32_t kByteBase = 0xDC00;  // unit of a byte that stands for itself

constexpr bool IsHigh(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLow(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
constexpr bool IsByteUnit(std::uint32_t unit) {
    return (unit >= kByteBase + 0x80 && unit <= kByteBase + 0xFF) || unit == kByteBase + u'\\';
}

constexpr bool IsDriveLetter(char16_t unit) { return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z'); }

// The narrow form's two escapes, of three bytes each: for a `\` in a name, and for the first byte of an escape in it.
constexpr std::string_view kEscapedBackslash = "\xED\xB1\x9C";
constexpr std::string_view kEscapedLead = "\xED\xB3\xAD";

struct Decoded {
    std::uint32_t code;
    std::size_t length;  // 0: no character starts here
};

// Reads one code point by the pattern of UTF-8, shortest forms only, surrogates included.
Decoded Decode(const unsigned char* at, std::size_t left) {
    const std::uint32_t lead = at[0];
    if (lead < 0x80) return {lead, 1};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || length > left) return {0, 0};
    std::uint32_t code = lead & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((at[i] & 0xC0u) != 0x80) return {0, 0};
        code = code << 6 | (at[i] & 0x3Fu);
    }
    static constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kLeast[length] || code > 0x10FFFF) return {0, 0};
    return {code, length};
}

// How many bytes from `at` on are three-byte high surrogates that may be read as such: a run of them, unless what
// follows would become a low surrogate, with which the last would form a pair.
std::size_t HighRun(const unsigned char* at, std::size_t left) {
    std::size_t run = 0;
    while (run < left) {
        const Decoded next = Decode(at + run, left - run);
        if (next.length == 0 || IsLow(next.code) || next.code == u'\\') return 0;
        if (!IsHigh(next.code)) break;
        run += next.length;
    }
    return run;
}

std::size_t WriteUnits(std::uint32_t code, char16_t* out) {
    if (code < 0x10000) {
        out[0] = static_cast<char16_t>(code == u'/' ? u'\\' : code);
        return 1;
    }
    out[0] = static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
    out[1] = static_cast<char16_t>(0xDC00 + (code & 0x3FF));
    return 2;
}

}  // namespace

// RFC 3629.
std::size_t EncodeUtf8(std::uint32_t code, char* out) {
    static constexpr std::uint32_t kLead[] = {0, 0, 0xC0, 0xE0, 0xF0};  // by length
    if (code < 0x80) {
        out[0] = static_cast<char>(code);
        return 1;
    }
    const std::size_t length = code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
    for (std::size_t i = length - 1; i > 0; --i, code >>= 6) out[i] = static_cast<char>(0x80 | (code & 0x3F));
    out[0] = static_cast<char>(kLead[length] | code);
    return length;
}

NativePath::NativePath(const char* path) {
    std::string_view rest = path ? path : "";
    if (rest.size() > 1 && IsDriveLetter(static_cast<unsigned char>(rest[0])) && rest[1] == ':') rest.remove_prefix(2);
    std::size_t size = 0;
    while (!rest.empty() && size + 1 < kCapacity) {
        const bool backslash = rest.starts_with(kEscapedBackslash);
        if (backslash || rest.starts_with(kEscapedLead)) {
            m_bytes[size++] = backslash ? '\\' : kEscapedLead[0];
            rest.remove_prefix(3);
        } else {
            m_bytes[size++] = rest[0] == '\\' ? '/' : rest[0];
            rest.remove_prefix(1);
        }
    }
    if (!rest.empty()) size = 0;
    m_bytes[size] = '\0';
}

NativePath::NativePath(const char16_t* path) {
    std::size_t size = 0;
    if (path && IsDriveLetter(path[0]) && path[1] == u':') path += 2;
    while (path && *path && size + 4 < kCapacity) {
        const std::uint32_t unit = *path++;
        if (unit == u'\\') {
            m_bytes[size++] = '/';
        } else if (IsHigh(unit) && IsLow(*path)) {
            size += EncodeUtf8(0x10000 + ((unit & 0x3FF) << 10) + (*path++ & 0x3FFu), m_bytes + size);
        } else if (IsByteUnit(unit)) {
            m_bytes[size++] = static_cast<char>(unit & 0xFF);
        } else {
            size += EncodeUtf8(unit, m_bytes + size);
        }
    }
    if (path && *path) size = 0;
    m_bytes[size] = '\0';
}

std::size_t FromNativePath(const char* bytes, std::size_t count, char* out) {
    const auto add = [&out](std::string_view text) {
        std::memcpy(out, text.data(), text.size());
        out += text.size();
    };
    const char* const start = out;
    for (std::string_view rest(bytes, count); !rest.empty(); rest.remove_prefix(1)) {
        if (rest[0] == '\\') {
            add(kEscapedBackslash);
        } else if (rest.starts_with(kEscapedBackslash) || rest.starts_with(kEscapedLead)) {
            add(kEscapedLead);
        } else {
            *out++ = rest[0] == '/' ? '\\' : rest[0];
        }
    }
    return static_cast<std::size_t>(out - start);
}

std::size_t FromNativePath(const char* bytes, std::size_t count, char16_t* out) {
    const auto* const start = reinterpret_cast<const unsigned char*>(bytes);
    std::size_t written = 0;
    std::size_t highsEnd = 0;  // high surrogates before this offset are taken
    for (std::size_t i = 0; i < count;) {
        const Decoded next = Decode(start + i, count - i);
        if (IsHigh(next.code) && i >= highsEnd) highsEnd = i + HighRun(start + i, count - i);
        const bool asByte =
            next.length == 0 || next.code == u'\\' || IsByteUnit(next.code) || (IsHigh(next.code) && i >= highsEnd);
        if (asByte) {
            out[written++] = static_cast<char16_t>(kByteBase + start[i++]);
        } else {
            written += WriteUnits(next.code, out + written);
            i += next.length;
        }
    }
    return written;
}

}  // namespace dorvutil::platform
