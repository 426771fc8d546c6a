#include "dorvutil/text/utf_kernels.h"

#include <algorithm>
#include <cstring>

namespace dorvutil::utf {
namespace {

constexpr std::size_t kRun = 16;          // ASCII is taken in runs of this many characters
constexpr std::size_t kWorthBlocks = 34;  // fewer bytes or units than this are not worth a call of the block forms
constexpr std::uint64_t kHighBits = 0x8080'8080'8080'8080u;

bool IsAsciiRun(const std::uint8_t* s) {
    std::uint64_t words[2];
    std::memcpy(words, s, sizeof words);
    return ((words[0] | words[1]) & kHighBits) == 0;
}

bool IsAsciiRun(const char16_t* s) {
    std::uint64_t words[4];
    std::memcpy(words, s, sizeof words);
    return ((words[0] | words[1] | words[2] | words[3]) & 0xFF80'FF80'FF80'FF80u) == 0;
}

constexpr bool IsLowSurrogate(std::uint32_t unit) { return (unit & 0xFC00) == 0xDC00; }
constexpr bool IsContinuation(std::uint32_t byte) { return (byte & 0xC0) == 0x80; }

struct Sequence {
    std::uint32_t codePoint;
    std::uint32_t length;
    Ending ending;
};

constexpr Sequence kIllegal = {0, 0, Ending::illegal};
constexpr Sequence kCutOff = {0, 0, Ending::sourceExhausted};

// `kRoomy`: at least four bytes are left.
template <bool kRoomy>
inline Sequence ReadSequence(const std::uint8_t* s, std::size_t left) {
    const std::uint32_t lead = s[0];
    if (lead < 0x80) return {lead, 1, Ending::complete};
    if (lead < 0xC2 || lead > 0xF4) return kIllegal;
    if (!kRoomy && left < 2) return kCutOff;
    const std::uint32_t second = s[1] ^ 0x80u;  // a continuation byte without its mark is below 0x40
    if (lead < 0xE0) {
        return second < 0x40 ? Sequence{(lead & 0x1F) << 6 | second, 2, Ending::complete} : kIllegal;
    }
    if (!kRoomy && left < 3) return kCutOff;
    const std::uint32_t third = s[2] ^ 0x80u;
    if (lead < 0xF0) {
        const std::uint32_t codePoint = (lead & 0xF) << 12 | second << 6 | third;
        const bool bad = (second | third) >= 0x40 || codePoint < 0x800 || (codePoint & 0xF800) == 0xD800;
        return bad ? kIllegal : Sequence{codePoint, 3, Ending::complete};
    }
    if (!kRoomy && left < 4) return kCutOff;
    const std::uint32_t fourth = s[3] ^ 0x80u;
    const std::uint32_t codePoint = (lead & 7) << 18 | second << 12 | third << 6 | fourth;
    const bool bad = (second | third | fourth) >= 0x40 || codePoint < 0x10000 || codePoint > 0x10FFFF;
    return bad ? kIllegal : Sequence{codePoint, 4, Ending::complete};
}

template <bool kRoomy>
inline Sequence ReadUnits(const char16_t* s, std::size_t left) {
    const std::uint32_t unit = s[0];
    if ((unit & 0xF800) != 0xD800) return {unit, 1, Ending::complete};
    if (IsLowSurrogate(unit)) return {0, 0, Ending::illegal};
    if (!kRoomy && left < 2) return {0, 0, Ending::sourceExhausted};
    if (!IsLowSurrogate(s[1])) return {0, 0, Ending::illegal};
    return {0x10000 + ((unit & 0x3FF) << 10 | (s[1] & 0x3FFu)), 2, Ending::complete};
}

constexpr std::size_t EncodedLength(std::uint32_t codePoint) {
    if (codePoint < 0x80) return 1;
    if (codePoint < 0x800) return 2;
    return codePoint < 0x10000 ? 3 : 4;
}

// One character; `kRoomy`: source and room suffice for any.
template <bool kRoomy>
inline Ending DecodeNext(DecodeCursor& c) {
    const Sequence q = ReadSequence<kRoomy>(c.src, c.SourceLeft());
    if (q.ending != Ending::complete) return q.ending;
    if (q.codePoint < 0x10000) {
        if (!kRoomy && c.RoomLeft() < 1) return Ending::targetExhausted;
        *c.dst++ = static_cast<char16_t>(q.codePoint);
    } else {
        if (!kRoomy && c.RoomLeft() < 2) return Ending::targetExhausted;
        const std::uint32_t offset = q.codePoint - 0x10000;
        *c.dst++ = static_cast<char16_t>(0xD800 | offset >> 10);
        *c.dst++ = static_cast<char16_t>(0xDC00 | (offset & 0x3FF));
    }
    c.src += q.length;
    return Ending::complete;
}

constexpr std::uint8_t Continuation(std::uint32_t bits) { return static_cast<std::uint8_t>(0x80 | (bits & 0x3F)); }

inline void PutSequence(std::uint8_t* p, std::uint32_t codePoint, std::size_t length) {
    if (length == 1) {
        p[0] = static_cast<std::uint8_t>(codePoint);
    } else if (length == 2) {
        p[0] = static_cast<std::uint8_t>(0xC0 | codePoint >> 6);
        p[1] = Continuation(codePoint);
    } else if (length == 3) {
        p[0] = static_cast<std::uint8_t>(0xE0 | codePoint >> 12);
        p[1] = Continuation(codePoint >> 6);
        p[2] = Continuation(codePoint);
    } else {
        p[0] = static_cast<std::uint8_t>(0xF0 | codePoint >> 18);
        p[1] = Continuation(codePoint >> 12);
        p[2] = Continuation(codePoint >> 6);
        p[3] = Continuation(codePoint);
    }
}

template <bool kRoomy>
inline Ending EncodeNext(EncodeCursor& c) {
    const Sequence q = ReadUnits<kRoomy>(c.src, c.SourceLeft());
    if (q.ending != Ending::complete) return q.ending;
    const std::size_t length = EncodedLength(q.codePoint);
    if (!kRoomy && c.RoomLeft() < length) return Ending::targetExhausted;
    PutSequence(c.dst, q.codePoint, length);
    c.dst += length;
    c.src += q.length;
    return Ending::complete;
}

}  // namespace

Ending DecodeThrough(DecodeCursor& cursor, const std::uint8_t* stop) {
    DecodeCursor c = cursor;
    Ending ending = Ending::complete;
    while (c.src < stop && ending == Ending::complete) ending = DecodeNext<false>(c);
    cursor = c;
    return ending;
}

Ending EncodeThrough(EncodeCursor& cursor, const char16_t* stop) {
    EncodeCursor c = cursor;
    Ending ending = Ending::complete;
    while (c.src < stop && ending == Ending::complete) ending = EncodeNext<false>(c);
    cursor = c;
    return ending;
}

Ending DecodePlain(DecodeCursor& cursor) {
    DecodeCursor c = cursor;  // in registers
    Ending ending = Ending::complete;
    while (c.src != c.srcEnd && ending == Ending::complete) {
        while (c.SourceLeft() >= kRun && c.RoomLeft() >= kRun && IsAsciiRun(c.src)) {
            for (std::size_t i = 0; i < kRun; ++i) c.dst[i] = c.src[i];
            c.src += kRun;
            c.dst += kRun;
        }
        const std::size_t roomy = std::min({kRun, c.SourceLeft() / 4, c.RoomLeft() / 2});
        for (std::size_t i = 0; i < roomy && ending == Ending::complete; ++i) ending = DecodeNext<true>(c);
        if (roomy == 0 && c.src != c.srcEnd) ending = DecodeNext<false>(c);
    }
    cursor = c;
    return ending;
}

Ending EncodePlain(EncodeCursor& cursor) {
    EncodeCursor c = cursor;
    Ending ending = Ending::complete;
    while (c.src != c.srcEnd && ending == Ending::complete) {
        while (c.SourceLeft() >= kRun && c.RoomLeft() >= kRun && IsAsciiRun(c.src)) {
            for (std::size_t i = 0; i < kRun; ++i) c.dst[i] = static_cast<std::uint8_t>(c.src[i]);
            c.src += kRun;
            c.dst += kRun;
        }
        const std::size_t roomy = std::min({kRun, c.SourceLeft() / 2, c.RoomLeft() / 4});
        for (std::size_t i = 0; i < roomy && ending == Ending::complete; ++i) ending = EncodeNext<true>(c);
        if (roomy == 0 && c.src != c.srcEnd) ending = EncodeNext<false>(c);
    }
    cursor = c;
    return ending;
}

Count CountUnitsPlain(const std::uint8_t* s, std::size_t n) {
    std::size_t units = 0;
    for (std::size_t i = 0, next = 0; i < n;) {
        if (i >= next && n - i >= kRun) {
            if (IsAsciiRun(s + i)) {
                i += kRun;
                units += kRun;
                continue;
            }
            next = i + kRun;  // not at once again
        }
        const Sequence q = ReadSequence<false>(s + i, n - i);
        if (q.ending != Ending::complete) return {units, n - i, q.ending};
        i += q.length;
        units += q.codePoint < 0x10000 ? 1 : 2;
    }
    return {units, 0, Ending::complete};
}

Count CountBytesPlain(const char16_t* s, std::size_t n) {
    std::size_t bytes = 0;
    for (std::size_t i = 0, next = 0; i < n;) {
        if (i >= next && n - i >= kRun) {
            if (IsAsciiRun(s + i)) {
                i += kRun;
                bytes += kRun;
                continue;
            }
            next = i + kRun;  // not at once again
        }
        const Sequence q = ReadUnits<false>(s + i, n - i);
        if (q.ending != Ending::complete) return {bytes, n - i, q.ending};
        i += q.length;
        bytes += EncodedLength(q.codePoint);
    }
    return {bytes, 0, Ending::complete};
}

Count CountCharsPlain(const std::uint8_t* s, std::size_t n) {
    std::size_t chars = 0;
    for (std::size_t i = 0, next = 0; i < n;) {
        if (i >= next && n - i >= kRun) {
            if (IsAsciiRun(s + i)) {
                i += kRun;
                chars += kRun;
                continue;
            }
            next = i + kRun;  // not at once again
        }
        const std::uint32_t lead = s[i];
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        if (length == 0 || lead >= 0xF8) return {chars, n - i, Ending::illegal};
        if (length > n - i) return {chars, n - i, Ending::sourceExhausted};
        for (std::size_t k = 1; k < length; ++k) {
            if (!IsContinuation(s[i + k])) return {chars, n - i, Ending::illegal};
        }
        i += length;
        ++chars;
    }
    return {chars, 0, Ending::complete};
}

Ending Decode(DecodeCursor& c) {
    if (c.SourceLeft() >= kWorthBlocks && HasAvx2()) {
        if (const Ending ending = DecodeBlocksAvx2(c); ending != Ending::complete) return ending;
    }
    return DecodePlain(c);
}

Ending Encode(EncodeCursor& c) {
    if (c.SourceLeft() >= kWorthBlocks && HasAvx2()) {
        if (const Ending ending = EncodeBlocksAvx2(c); ending != Ending::complete) return ending;
    }
    return EncodePlain(c);
}

Count CountUnits(const std::uint8_t* s, std::size_t n) {
    const std::uint8_t* const end = s + n;
    std::size_t units = 0;
    if (n >= kWorthBlocks && HasAvx2() && !CountUnitsAvx2(s, end, units)) return {0, n, Ending::illegal};
    const Count rest = CountUnitsPlain(s, static_cast<std::size_t>(end - s));
    return {units + rest.value, rest.left, rest.ending};
}

Count CountBytes(const char16_t* s, std::size_t n) {
    const char16_t* const end = s + n;
    const std::size_t bytes = n >= kWorthBlocks && HasAvx2() ? CountBytesAvx2(s, end) : 0;
    const Count rest = CountBytesPlain(s, static_cast<std::size_t>(end - s));
    return {bytes + rest.value, rest.left, rest.ending};
}

Count CountChars(const std::uint8_t* s, std::size_t n) {
    const std::uint8_t* const end = s + n;
    std::size_t chars = 0;
    if (n >= kWorthBlocks && HasAvx2() && !CountCharsAvx2(s, end, chars)) return {0, n, Ending::illegal};
    const Count rest = CountCharsPlain(s, static_cast<std::size_t>(end - s));
    return {chars + rest.value, rest.left, rest.ending};
}

}  // namespace dorvutil::utf
