#include "dorvutil/text/utf_kernels.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include "dorvutil/text/utf_shuffles.h"

#define DORVUTIL_AVX2 __attribute__((target("avx2,popcnt")))

namespace dorvutil::utf {
namespace {

constexpr std::size_t kBlock = 32;        // bytes of UTF-8 looked at together
constexpr std::size_t kDecodeReads = 34;  // a character that starts in a block may need the two bytes behind it
constexpr std::size_t kCountReads = 36;   // room to step over the rest of a character of four bytes
constexpr std::size_t kEncodeUnits = 32;  // units of UTF-16 looked at together, in two halves
constexpr std::size_t kEncodeRoom = 112;  // 3 bytes for each unit, and what the last store of 16 bytes overshoots

DORVUTIL_AVX2 inline __m256i Bytes(int value) { return _mm256_set1_epi8(static_cast<char>(value)); }
DORVUTIL_AVX2 inline __m256i Units(int value) { return _mm256_set1_epi16(static_cast<short>(value)); }

DORVUTIL_AVX2 inline __m256i Load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
DORVUTIL_AVX2 inline __m128i LoadHalf(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
DORVUTIL_AVX2 inline void Store(void* p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
DORVUTIL_AVX2 inline void StoreHalf(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
DORVUTIL_AVX2 inline __m128i Arrange(__m128i v, const Shuffle& shuffle) {
    return _mm_shuffle_epi8(v, _mm_load_si128(reinterpret_cast<const __m128i*>(shuffle.from.data())));
}

DORVUTIL_AVX2 inline std::uint32_t Mask(__m256i v) { return static_cast<std::uint32_t>(_mm256_movemask_epi8(v)); }
DORVUTIL_AVX2 inline std::uint32_t MaskAtLeast(__m256i v, int byte) {
    return Mask(_mm256_cmpeq_epi8(_mm256_max_epu8(v, Bytes(byte)), v));
}
DORVUTIL_AVX2 inline std::size_t Bits(std::uint32_t mask) { return static_cast<std::size_t>(_mm_popcnt_u32(mask)); }

// Where the bytes of one block stand; bit k for byte k.
struct BlockMasks {
    std::uint32_t continuations;
    std::uint32_t three;  // leads of three bytes or more
    std::uint32_t four;   // leads of four
    std::uint32_t carry;  // continuation bytes the next block must start with
    bool wellFormed;
};

// Every lead byte demands continuation bytes at the places behind it: the demand must be what is there.
DORVUTIL_AVX2 inline BlockMasks Structure(__m256i v, std::uint32_t nonAscii, std::uint32_t carry) {
    BlockMasks m{};
    m.continuations = Mask(_mm256_cmpgt_epi8(Bytes(-64), v));  // 0x80 to 0xBF, as signed bytes
    const std::uint64_t leads = nonAscii & ~m.continuations;
    m.three = MaskAtLeast(v, 0xE0);
    m.four = m.three == 0 ? 0 : MaskAtLeast(v, 0xF0);
    const std::uint64_t demand =
        leads << 1 | static_cast<std::uint64_t>(m.three) << 2 | static_cast<std::uint64_t>(m.four) << 3 | carry;
    m.carry = static_cast<std::uint32_t>(demand >> 32);
    m.wellFormed = static_cast<std::uint32_t>(demand) == m.continuations;
    return m;
}

// The bytes that RFC 3629 rules out although the structure is right: overlong forms, surrogates, above 0x10FFFF. A
// second byte is compared as a signed value, in which 0x80 to 0xBF keep their order.
DORVUTIL_AVX2 inline bool HasForbidden(__m256i v, const std::uint8_t* p, const BlockMasks& m) {
    const __m256i overlong = _mm256_cmpeq_epi8(_mm256_and_si256(v, Bytes(0xFE)), Bytes(0xC0));
    if (m.three == 0) return Mask(overlong) != 0;
    const __m256i second = Load(p + 1);
    const auto Pair = [&](int lead, __m256i wrongSecond)
                          DORVUTIL_AVX2 { return _mm256_and_si256(_mm256_cmpeq_epi8(v, Bytes(lead)), wrongSecond); };
    __m256i bad = _mm256_or_si256(overlong, Pair(0xE0, _mm256_cmpgt_epi8(Bytes(0xA0), second)));
    bad = _mm256_or_si256(bad, Pair(0xED, _mm256_cmpgt_epi8(second, Bytes(0x9F))));
    if (m.four != 0) {
        bad = _mm256_or_si256(bad, Pair(0xF0, _mm256_cmpgt_epi8(Bytes(0x90), second)));
        bad = _mm256_or_si256(bad, Pair(0xF4, _mm256_cmpgt_epi8(second, Bytes(0x8F))));
        bad = _mm256_or_si256(bad, _mm256_cmpeq_epi8(_mm256_max_epu8(v, Bytes(0xF5)), v));
    }
    return Mask(bad) != 0;
}

// Steps over the continuation bytes that the last block left to come; false when they are not there.
inline bool SkipPending(const std::uint8_t*& p, std::uint32_t carry) {
    for (; carry != 0; carry >>= 1) {
        if ((*p++ & 0xC0) != 0x80) return false;
    }
    return true;
}

// Turns 16 bytes into units, one for each byte that is no continuation byte. Writes 16 units, of which it returns how
// many count.
template <bool kThree>
DORVUTIL_AVX2 inline std::size_t DecodeHalfBlock(const std::uint8_t* p, std::uint32_t keep, char16_t* dst) {
    const __m256i low6 = Units(0x3F);
    const __m256i byte = _mm256_cvtepu8_epi16(LoadHalf(p));
    const __m256i second = _mm256_and_si256(_mm256_cvtepu8_epi16(LoadHalf(p + 1)), low6);
    const __m256i two = _mm256_or_si256(_mm256_slli_epi16(_mm256_and_si256(byte, Units(0x1F)), 6), second);
    __m256i unit = _mm256_blendv_epi8(byte, two, _mm256_cmpgt_epi16(byte, Units(0xBF)));
    if constexpr (kThree) {
        const __m256i third = _mm256_and_si256(_mm256_cvtepu8_epi16(LoadHalf(p + 2)), low6);
        const __m256i three =
            _mm256_or_si256(_mm256_or_si256(_mm256_slli_epi16(byte, 12), third), _mm256_slli_epi16(second, 6));
        unit = _mm256_blendv_epi8(unit, three, _mm256_cmpgt_epi16(byte, Units(0xDF)));
    }
    const std::size_t first = Bits(keep & 0xFF);
    StoreHalf(dst, Arrange(_mm256_castsi256_si128(unit), kKeepUnits[keep & 0xFF]));
    StoreHalf(dst + first, Arrange(_mm256_extracti128_si256(unit, 1), kKeepUnits[keep >> 8]));
    return first + Bits(keep >> 8);
}

template <bool kThree>
DORVUTIL_AVX2 inline void DecodeBlock(DecodeCursor& c, std::uint32_t keep) {
    c.dst += DecodeHalfBlock<kThree>(c.src, keep & 0xFFFF, c.dst);
    c.dst += DecodeHalfBlock<kThree>(c.src + 16, keep >> 16, c.dst);
    c.src += kBlock;
}

DORVUTIL_AVX2 inline void WidenBlock(DecodeCursor& c, __m256i v) {
    Store(c.dst, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(v)));
    Store(c.dst + 16, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(v, 1)));
    c.src += kBlock;
    c.dst += kBlock;
}

// Whole double blocks of ASCII.
DORVUTIL_AVX2 inline void WidenAscii(DecodeCursor& c) {
    while (c.SourceLeft() >= 2 * kBlock && c.RoomLeft() >= 2 * kBlock) {
        const __m256i v = Load(c.src);
        const __m256i w = Load(c.src + kBlock);
        if (Mask(_mm256_or_si256(v, w)) != 0) return;
        WidenBlock(c, v);
        WidenBlock(c, w);
    }
}

// A block with characters outside the basic plane, one by one, up to the first character boundary behind it.
Ending DecodeBlockPlain(DecodeCursor& c, std::uint32_t pending) {
    const std::uint8_t* const blockEnd = c.src + kBlock;
    if (!SkipPending(c.src, pending)) return Ending::illegal;
    return DecodeThrough(c, blockEnd);
}

// Units from 0 to 0x7FF to one or two bytes each: 16 units, at most 32 bytes.
DORVUTIL_AVX2 inline void EncodeTwo(EncodeCursor& c, __m256i v) {
    const __m256i lead = _mm256_or_si256(_mm256_srli_epi16(v, 6), Units(0xC0));
    const __m256i tail = _mm256_slli_epi16(_mm256_or_si256(_mm256_and_si256(v, Units(0x3F)), Units(0x80)), 8);
    const __m256i ascii = _mm256_cmpgt_epi16(Units(0x80), v);
    const __m256i bytes = _mm256_blendv_epi8(_mm256_or_si256(lead, tail), v, ascii);
    const auto mask = static_cast<std::uint32_t>(
        _mm_movemask_epi8(_mm_packs_epi16(_mm256_castsi256_si128(ascii), _mm256_extracti128_si256(ascii, 1))));
    StoreHalf(c.dst, Arrange(_mm256_castsi256_si128(bytes), kOneOrTwoBytes[mask & 0xFF]));
    c.dst += 16 - Bits(mask & 0xFF);
    StoreHalf(c.dst, Arrange(_mm256_extracti128_si256(bytes, 1), kOneOrTwoBytes[mask >> 8]));
    c.dst += 16 - Bits(mask >> 8);
}

// Eight units without surrogates, at most 24 bytes.
DORVUTIL_AVX2 inline void EncodeThree(EncodeCursor& c, __m128i units) {
    const __m256i v = _mm256_cvtepu16_epi32(units);
    const __m256i low6 = _mm256_set1_epi32(0x3F);
    const __m256i last = _mm256_or_si256(_mm256_and_si256(v, low6), _mm256_set1_epi32(0x80));
    const __m256i high = _mm256_srli_epi32(v, 6);
    const __m256i middle = _mm256_or_si256(_mm256_and_si256(high, low6), _mm256_set1_epi32(0x80));
    const __m256i two = _mm256_or_si256(_mm256_or_si256(high, _mm256_set1_epi32(0xC0)), _mm256_slli_epi32(last, 8));
    const __m256i lead = _mm256_or_si256(_mm256_srli_epi32(v, 12), _mm256_set1_epi32(0xE0));
    const __m256i three =
        _mm256_or_si256(_mm256_or_si256(lead, _mm256_slli_epi32(middle, 8)), _mm256_slli_epi32(last, 16));
    const __m256i atLeastTwo = _mm256_cmpgt_epi32(v, _mm256_set1_epi32(0x7F));
    const __m256i atLeastThree = _mm256_cmpgt_epi32(v, _mm256_set1_epi32(0x7FF));
    const __m256i bytes = _mm256_blendv_epi8(_mm256_blendv_epi8(v, two, atLeastTwo), three, atLeastThree);
    const auto mask2 = static_cast<std::uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(atLeastTwo)));
    const auto mask3 = static_cast<std::uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(atLeastThree)));
    const std::uint32_t first = (mask2 & 0xF) | (mask3 & 0xF) << 4;
    const std::uint32_t second = mask2 >> 4 | (mask3 & 0xF0);
    StoreHalf(c.dst, Arrange(_mm256_castsi256_si128(bytes), kUpToThreeBytes[first]));
    c.dst += 4 + Bits(first);
    StoreHalf(c.dst, Arrange(_mm256_extracti128_si256(bytes, 1), kUpToThreeBytes[second]));
    c.dst += 4 + Bits(second);
}

DORVUTIL_AVX2 inline bool HasSurrogate(__m256i v) {
    return Mask(_mm256_cmpeq_epi16(_mm256_and_si256(v, Units(0xF800)), Units(0xD800))) != 0;
}

// Sixteen units, and the low half of a pair that straddles their end.
DORVUTIL_AVX2 inline Ending EncodeSixteen(EncodeCursor& c, __m256i v) {
    const char16_t* const blockEnd = c.src + 16;
    if (_mm256_testz_si256(v, Units(0xF800))) {
        EncodeTwo(c, v);
    } else if (!HasSurrogate(v)) {
        EncodeThree(c, _mm256_castsi256_si128(v));
        EncodeThree(c, _mm256_extracti128_si256(v, 1));
    } else {
        return EncodeThrough(c, blockEnd);
    }
    c.src = blockEnd;
    return Ending::complete;
}

}  // namespace

DORVUTIL_AVX2 Ending DecodeBlocksAvx2(DecodeCursor& cursor) {
    DecodeCursor c = cursor;
    std::uint32_t carry = 0;
    Ending ending = Ending::complete;
    while (ending == Ending::complete && c.SourceLeft() >= kDecodeReads && c.RoomLeft() >= kBlock) {
        const __m256i v = Load(c.src);
        const std::uint32_t nonAscii = Mask(v);
        if ((nonAscii | carry) == 0) {
            WidenBlock(c, v);
            WidenAscii(c);
            continue;
        }
        const BlockMasks m = Structure(v, nonAscii, carry);
        if (!m.wellFormed || HasForbidden(v, c.src, m)) return Ending::illegal;
        if (m.four != 0) {
            ending = DecodeBlockPlain(c, carry);
            carry = 0;
            continue;
        }
        if (m.three == 0) {
            DecodeBlock<false>(c, ~m.continuations);
        } else {
            DecodeBlock<true>(c, ~m.continuations);
        }
        carry = m.carry;
    }
    if (!SkipPending(c.src, carry)) return Ending::illegal;
    cursor = c;
    return ending;
}

DORVUTIL_AVX2 Ending EncodeBlocksAvx2(EncodeCursor& cursor) {
    EncodeCursor c = cursor;
    Ending ending = Ending::complete;
    while (ending == Ending::complete && c.SourceLeft() >= kEncodeUnits && c.RoomLeft() >= kEncodeRoom) {
        const __m256i low = Load(c.src);
        const __m256i high = Load(c.src + 16);
        if (_mm256_testz_si256(_mm256_or_si256(low, high), Units(0xFF80))) {
            // The pack works within each half of the registers: put its quarters back in order.
            Store(c.dst, _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0xD8));
            c.src += kEncodeUnits;
            c.dst += kEncodeUnits;
            continue;
        }
        ending = EncodeSixteen(c, low);
        // A pair across the middle shifts what is next: look again instead of using `high`.
        if (ending == Ending::complete && c.SourceLeft() >= 16) ending = EncodeSixteen(c, Load(c.src));
    }
    cursor = c;
    return ending;
}

DORVUTIL_AVX2 bool CountUnitsAvx2(const std::uint8_t*& s, const std::uint8_t* end, std::size_t& units) {
    std::uint32_t carry = 0;
    for (; static_cast<std::size_t>(end - s) >= kCountReads; s += kBlock) {
        const __m256i v = Load(s);
        const std::uint32_t nonAscii = Mask(v);
        units += kBlock;
        if ((nonAscii | carry) == 0) continue;
        const BlockMasks m = Structure(v, nonAscii, carry);
        if (!m.wellFormed || HasForbidden(v, s, m)) return false;
        units = units - Bits(m.continuations) + Bits(m.four);
        carry = m.carry;
    }
    return SkipPending(s, carry);
}

DORVUTIL_AVX2 bool CountCharsAvx2(const std::uint8_t*& s, const std::uint8_t* end, std::size_t& chars) {
    std::uint32_t carry = 0;
    for (; static_cast<std::size_t>(end - s) >= kCountReads; s += kBlock) {
        const __m256i v = Load(s);
        const std::uint32_t nonAscii = Mask(v);
        chars += kBlock;
        if ((nonAscii | carry) == 0) continue;
        const BlockMasks m = Structure(v, nonAscii, carry);
        if (!m.wellFormed || (m.four != 0 && MaskAtLeast(v, 0xF8) != 0)) return false;
        chars -= Bits(m.continuations);
        carry = m.carry;
    }
    return SkipPending(s, carry);
}

DORVUTIL_AVX2 std::size_t CountBytesAvx2(const char16_t*& s, const char16_t* end) {
    std::size_t bytes = 0;
    std::uint32_t carry = 0;  // set while the last unit taken is the high half of a pair
    for (; end - s >= 16; s += 16) {
        const __m256i v = Load(s);
        if (carry == 0 && _mm256_testz_si256(v, Units(0xFF80))) {
            bytes += 16;
            continue;
        }
        // Two mask bits for each unit. A pair takes four bytes: two for each half.
        const __m256i plane = _mm256_and_si256(v, Units(0xFC00));
        const std::uint32_t high = Mask(_mm256_cmpeq_epi16(plane, Units(0xD800)));
        const std::uint32_t low = Mask(_mm256_cmpeq_epi16(plane, Units(0xDC00)));
        if ((high << 2 | carry) != low) break;
        const std::uint32_t one = Mask(_mm256_cmpeq_epi16(_mm256_and_si256(v, Units(0xFF80)), _mm256_setzero_si256()));
        const std::uint32_t upToTwo =
            Mask(_mm256_cmpeq_epi16(_mm256_and_si256(v, Units(0xF800)), _mm256_setzero_si256()));
        bytes += 48 - (Bits(one) + Bits(upToTwo) + Bits(high) + Bits(low)) / 2;
        carry = high >> 30;
    }
    if (carry == 0) return bytes;
    --s;
    return bytes - 2;
}

}  // namespace dorvutil::utf

#endif
