#include "dorvutil/security/sha1.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "dorvutil/security/hex_text.h"
#include "dorvutil/security/hmac.h"
#include "dorvutil/security/sha1_kernels.h"
#include "memory/failing_heap.h"
#include "security/bytes.h"

namespace dorvutil {
namespace {

std::string DigestOf(const void* data, std::size_t n) {
    SHA1Context context;
    std::uint8_t digest[kSha1DigestBytes];
    SHA1Init(&context);
    SHA1Update(&context, data, static_cast<std::uint32_t>(n));
    SHA1Final(&context, digest);
    return ToHex(digest, sizeof digest);
}

TEST(Sha1, PublishedDigests) {
    // FIPS 180-1, appendices A to C, and the digest of nothing.
    const std::pair<std::string, const char*> kCases[] = {
        {"", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
        {"abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
        {std::string(1000000, 'a'), "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
    };
    for (const auto& [text, expected] : kCases) {
        EXPECT_EQ(DigestOf(text.data(), text.size()), expected);
        std::uint8_t digest[kSha1DigestBytes];
        SHA1_HASH(text.c_str(), digest);
        EXPECT_EQ(ToHex(digest, sizeof digest), expected);
    }
}

TEST(Sha1, EverySplitGivesTheSameDigest) {
    const ByteVector data = Noise(300);
    const std::string whole = DigestOf(data.data(), data.size());
    for (std::uint32_t cut = 0; cut <= data.size(); ++cut) {
        for (const std::uint32_t second : {0u, 1u, 63u, 64u, 65u, 128u}) {
            const std::uint32_t end = std::min(cut + second, Size(data));
            SHA1Context context;
            std::uint8_t digest[kSha1DigestBytes];
            SHA1Init(&context);
            SHA1Update(&context, data.data(), cut);
            SHA1Update(&context, data.data() + cut, end - cut);
            SHA1Update(&context, data.data() + end, Size(data) - end);
            EXPECT_EQ(context.m_bitCountLow, 2400u);
            EXPECT_EQ(context.m_buffered, 300 % 64);
            SHA1Final(&context, digest);
            ASSERT_EQ(ToHex(digest, sizeof digest), whole) << cut << ", " << second;
        }
    }
}

TEST(Sha1, BitCountCarriesIntoItsUpperHalf) {
    SHA1Context context;
    SHA1Init(&context);
    context.m_bitCountLow = 0xFFFFFFF8u;
    SHA1Update(&context, "ab", 2);
    EXPECT_EQ(context.m_bitCountLow, 8u);
    EXPECT_EQ(context.m_bitCountHigh, 1u);
    SHA1Context other = context;
    other.m_bitCountHigh = 0;
    std::uint8_t digest[kSha1DigestBytes], otherDigest[kSha1DigestBytes];
    SHA1Final(&context, digest);
    SHA1Final(&other, otherDigest);
    EXPECT_NE(ToHex(digest, 20), ToHex(otherDigest, 20));
}

TEST(Sha1, FormsForSpecialProcessorsAgreeWithThePlainOne) {
    const ByteVector data = Noise(64 * 21 + 1);
    const struct {
        const char* name;
        bool there;
        void (*compress)(sha1::State&, const std::uint8_t*, std::size_t);
    } kForms[] = {{"SHA instructions", sha1::HasShaInstructions(), sha1::CompressSha},
                  {"AVX2", sha1::HasAvx2(), sha1::CompressAvx2},
                  {"chosen", true, sha1::Compress}};
    for (const auto& form : kForms) {
        if (!form.there) {
            std::printf("this processor has no %s: not tested\n", form.name);
            continue;
        }
        for (std::size_t count = 0; count <= 21; ++count) {
            sha1::State plain = {1, 0xFFFFFFFF, 0x80000000, 4, 5}, other = {1, 0xFFFFFFFF, 0x80000000, 4, 5};
            sha1::CompressPlain(plain, data.data() + 1, count);
            form.compress(other, data.data() + 1, count);
            EXPECT_TRUE(std::equal(std::begin(plain), std::end(plain), other)) << form.name << ", " << count;
        }
    }
}

TEST(Hmac, PublishedCodes) {
    EXPECT_TRUE(HMAC_SHA1_TestCases());
    // RFC 2202, case 2, and the widely published code of a pangram.
    const char* const kCases[][3] = {
        {"Jefe", "what do ya want for nothing?", "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79"},
        {"key", "The quick brown fox jumps over the lazy dog", "de7c9b85b8b78aa6bc8a7a36f70a90701c9db4d9"},
        {"", "", "fbdb1d1b18aa6c08324b7d64b71fb76370690e1d"}};
    for (const auto& c : kCases) {
        std::uint8_t* const code = HMAC_SHA1(c[0], c[1]);
        ASSERT_NE(code, nullptr);
        EXPECT_EQ(ToHex(code, 20), c[2]);
        EXPECT_TRUE(std::all_of(code + 20, code + 41, [](std::uint8_t byte) { return byte == 0; }));
        Mem_Free(code);
    }
}

TEST(Hmac, KeyAboveABlockCountsAsItsDigest) {
    for (const std::size_t length : {64u, 65u}) {
        const std::string key(length, 'k');
        char digest[kSha1DigestBytes + 1] = {};
        SHA1_HASH(key.c_str(), reinterpret_cast<std::uint8_t*>(digest));
        ASSERT_EQ(std::string(digest).size(), 20u) << "a digest with a zero byte is no text";
        std::uint8_t* const a = HMAC_SHA1(key.c_str(), "text");
        std::uint8_t* const b = HMAC_SHA1(digest, "text");
        EXPECT_EQ(ToHex(a, 20) == ToHex(b, 20), length == 65);
        Mem_Free(a);
        Mem_Free(b);
    }
    const FailingHeap heap(1);
    EXPECT_EQ(HMAC_SHA1("key", "text"), nullptr);
}

TEST(HexText, DigitsBothWays) {
    const std::uint8_t bytes[] = {0x00, 0xAB};
    char text[] = "......";
    EXPECT_FALSE(HexToText(bytes, 2, text, 3));
    EXPECT_STREQ(text, "......");
    EXPECT_TRUE(HexToText(bytes, 2, text, 4));
    EXPECT_STREQ(text, "00ab..");
    EXPECT_TRUE(HexToText(bytes, 0, text, 0));
    EXPECT_FALSE(HexToText(bytes, 0x80000002u, text, 4)) << "twice that number wraps";
    const struct {
        const char* text;
        std::string bytes;
    } kCases[] = {{"00AB", "00abee"}, {"00ab", "00abee"}, {"", "eeeeee"},  {"fFa", "ffa0ee"},
                  {"7", "70eeee"},    {"G0", "00eeee"},   {"/1", "f1eeee"}};
    for (const auto& c : kCases) {
        std::uint8_t out[3] = {0xEE, 0xEE, 0xEE};
        EXPECT_TRUE(TextToHex(c.text, out));
        EXPECT_EQ(ToHex(out, 3), c.bytes) << c.text;
    }
}

TEST(Sha1, NullArgumentsDoNothing) {
    SHA1Context context;
    SHA1Init(nullptr);
    SHA1Init(&context);
    SHA1Update(nullptr, "a", 1);
    SHA1Update(&context, nullptr, 1);
    SHA1Final(nullptr, nullptr);
    std::uint8_t byte = 7;
    SHA1_HASH(nullptr, &byte);
    SHA1_HASH("a", nullptr);
    EXPECT_EQ(byte, 7);
    EXPECT_EQ(context.m_bitCountLow, 0u);
    SHA1Final(&context, nullptr);
    EXPECT_EQ(context.m_state[0], 0xDA39A3EEu) << "the padding is hashed all the same";
    EXPECT_EQ(HMAC_SHA1(nullptr, "a"), nullptr);
    EXPECT_EQ(HMAC_SHA1("a", nullptr), nullptr);
    char text[2];
    EXPECT_FALSE(HexToText(nullptr, 1, text, 2));
    EXPECT_FALSE(HexToText(&byte, 1, nullptr, 2));
    EXPECT_FALSE(TextToHex(nullptr, &byte));
    EXPECT_FALSE(TextToHex("00", nullptr));
}

}  // namespace
}  // namespace dorvutil
