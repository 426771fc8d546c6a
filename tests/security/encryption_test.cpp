#include "dorvutil/security/encryption.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "dorvutil/frame/random.h"
#include "dorvutil/security/rijndael.h"
#include "memory/failing_heap.h"
#include "security/bytes.h"
#include "storage/temp_folder.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kKeyLengths[] = {16, 24, 32};

Result Encrypt(const ByteVector& data, const ByteVector& key) {
    return Call(EncryptData, key, data.data(), Size(data));
}
Result Decrypt(const ByteVector& data, const ByteVector& key) {
    return Call(DecryptData, key, data.data(), Size(data));
}

struct Form {
    const char* name;
    bool there;
    decltype(rijndael::EncryptPlain)* encrypt;
    decltype(rijndael::DecryptPlain)* decrypt;
};
const Form kForms[] = {
    {"plain", true, rijndael::EncryptPlain, rijndael::DecryptPlain},
    {"AES instructions", rijndael::HasAesInstructions(), rijndael::EncryptAes, rijndael::DecryptAes}};

ByteVector Chained(const Form& form, const ByteVector& data, const ByteVector& key, const ByteVector& start,
                   bool decrypt) {
    const rijndael::KeySchedule keys(key.data(), Size(key), decrypt);
    rijndael::Chain chain;
    std::memcpy(chain.m_bytes, start.data(), start.size());
    ByteVector out(data.size());
    (decrypt ? form.decrypt : form.encrypt)(keys, chain, data.data(), out.data(), data.size() / 32);
    return out;
}

ByteVector Counting(std::size_t n, int factor, int first) {
    ByteVector bytes(n);
    for (std::size_t i = 0; i < n; ++i) bytes[i] = static_cast<std::uint8_t>(static_cast<int>(i) * factor + first);
    return bytes;
}

struct KnownAnswer {
    std::uint32_t keyLength;
    const char* block;  // one block alone
    const char* chain;  // three blocks chained
};
// The single blocks: plain text and keys are digits of pi and of e, as in the test values published for the cipher with
// B. Gladman's implementation. The chained ones were made with libmcrypt 2.5.8 (rijndael-256, cbc); it gives the same
// single blocks.
constexpr KnownAnswer kAnswers[] = {
    {16, "7d15479076b69a46ffb3b3beae97ad8313f622f67fedb487de9f06b9ed9c8f19",
     "da51f90412dacedc744a701d30893d7c789e3a22ddc419392ec2920935962f4af4a23557b9ced4a7e57062802ed1e0a14a612469011f10db"
     "2aaaa06900fbf090d574c7cacbbdb5bab5d41ddb994d1f71e0ba2d2f692be76e9d8e7b6b0295af0d"},
    {24, "5d7101727bb25781bf6715b0e6955282b9610e23a43c2eb062699f0ebf5887b2",
     "90d62612df9179c4f929710d3b6ad0233317032a504222b96d1232603f48a1a0f85625e6169b4015dc5b0827d9d64b899d5a33a8c6554c42"
     "73efc313171d330493aaca1350985fc44ee51148725d8f3e1809805a7f2e6b4f0f71582ea833f8ed"},
    {32, "a49406115dfb30a40418aafa4869b7c6a886ff31602a7dd19c889dc64f7e4e7a",
     "b1727163e1a2b642a057a00f92f9af4d3f5da4cc216c2f276b5ff77ba3b91e340a3c43db1b4b144c4926eba2e4f6fc20035c04a57fd28ba3"
     "833bd46f36da88228533fd4c9e0fda55cc8cf5938f3ab6e4229bedea14b43f2cb9583e9b9db96efc"},
};

TEST(Rijndael, KnownAnswersInEveryForm) {
    const ByteVector pi = BytesOf("3243f6a8885a308d313198a2e03707344a4093822299f31d0082efa98ec4e6c8");
    const ByteVector e = BytesOf("2b7e151628aed2a6abf7158809cf4f3c762e7160f38b4da56a784d9045190cfe");
    const ByteVector text = Counting(96, 3, 1);
    for (const Form& form : kForms) {
        if (!form.there) continue;
        for (const KnownAnswer& answer : kAnswers) {
            SCOPED_TRACE(std::string(form.name) + ", " + std::to_string(answer.keyLength));
            const ByteVector shortKey(e.begin(), e.begin() + answer.keyLength);
            EXPECT_EQ(Chained(form, pi, shortKey, ByteVector(32), false), BytesOf(answer.block));
            EXPECT_EQ(Chained(form, BytesOf(answer.block), shortKey, ByteVector(32), true), pi);
            const ByteVector key = Counting(answer.keyLength, 1, 0);
            const ByteVector start = Counting(32, 1, 0xA0);
            EXPECT_EQ(Chained(form, text, key, start, false), BytesOf(answer.chain));
            EXPECT_EQ(Chained(form, BytesOf(answer.chain), key, start, true), text);
        }
    }
}

TEST(Rijndael, FormsAgreeOnAnyNumberOfBlocks) {
    if (!rijndael::HasAesInstructions()) GTEST_SKIP() << "this processor has no AES instructions";
    for (std::size_t blocks = 0; blocks <= 13; ++blocks) {
        const ByteVector data = Noise(32 * blocks), key = Noise(32, 9), start = Noise(32, 7);
        const ByteVector cipher = Chained(kForms[0], data, key, start, false);
        EXPECT_EQ(Chained(kForms[1], data, key, start, false), cipher) << blocks;
        EXPECT_EQ(Chained(kForms[1], cipher, key, start, true), data) << blocks;
    }
}

TEST(EncryptData, EveryLengthComesBackUnderEveryKey) {
    for (const std::uint32_t keyLength : kKeyLengths) {
        const ByteVector key = Noise(keyLength, keyLength);
        for (std::uint32_t length = 1; length <= 100; ++length) {
            const ByteVector data = Noise(length);
            const Result cipher = Encrypt(data, key);
            ASSERT_TRUE(cipher.done);
            ASSERT_EQ(cipher.bytes.size(), length / 32 * 32 + 32);
            const Result plain = Decrypt(cipher.bytes, key);
            ASSERT_TRUE(plain.done) << length;
            ASSERT_EQ(plain.bytes, data) << length;
        }
    }
}

TEST(EncryptData, LastBlockEndsWithItsCountAndBuffersWithZeros) {
    const ByteVector data = Noise(63);
    std::uint8_t* cipher = nullptr;
    std::uint8_t* plain = nullptr;
    std::uint32_t length = 0;
    ASSERT_TRUE(EncryptData(data.data(), 63, &cipher, &length, nullptr, 0));
    EXPECT_EQ(length, 64u);
    ASSERT_TRUE(DecryptData(cipher, 64, &plain, &length, nullptr, 999));
    EXPECT_EQ(length, 63u);
    EXPECT_EQ(plain[63], 31);
    for (std::uint32_t i = 64; i < 63 + 64; ++i) EXPECT_EQ(cipher[i] | plain[i], 0) << i;
    EXPECT_EQ(plain[127], 0);
    Mem_Free(cipher);
    Mem_Free(plain);
}

TEST(EncryptData, NullKeyIsTheDefaultKeyAndOnlyTheFillIsRandom) {
    const ByteVector data = Noise(70);
    const char text[] = "478#478#478#478#";
    const ByteVector key(text, text + 16);
    ByteVector cipher = Encrypt(data, key).bytes;
    const ByteVector again = Encrypt(data, key).bytes;
    EXPECT_EQ(ByteVector(cipher.begin(), cipher.begin() + 64), ByteVector(again.begin(), again.begin() + 64));
    EXPECT_NE(cipher, again);
    EXPECT_EQ(Decrypt(cipher, ByteVector()).bytes, data);
    cipher[40] ^= 1;
    const Result damaged = Decrypt(cipher, key);
    EXPECT_EQ(ByteVector(damaged.bytes.begin(), damaged.bytes.begin() + 32),
              ByteVector(data.begin(), data.begin() + 32));
    EXPECT_NE(damaged.bytes, data);
}

TEST(EncryptData, WhatWasEncryptedEarlierStaysReadable) {
    ByteVector key(16);
    key[0] = 1;
    const ByteVector cipher = Encrypt(ByteVector(32), key).bytes;
    EXPECT_EQ(ToHex(cipher.data(), 32), "41f2c0ca3780dfd261d9dc276b13187d8a419b9ffa6daf66516ab68baabf7adf");
}

TEST(DecryptData, WrongKeyFailsJustAboveTheRoomForIt) {
    const ByteVector key = Noise(16, 4);
    const ByteVector one = Encrypt(Noise(32, 5), key).bytes;
    int refused = 0;
    for (std::uint32_t seed = 0; seed < 512; ++seed) {
        const Result plain = Decrypt(one, Noise(16, 100 + seed));
        refused += plain.done ? 0 : 1;
        EXPECT_LE(plain.bytes.size(), one.size() + 64);
        EXPECT_EQ(plain.bytes.empty(), !plain.done);
    }
    EXPECT_NEAR(refused, 512 * 159 / 256, 60);
    // The last byte set to every value, by way of the block in front of it.
    for (std::uint32_t last = 0; last < 256; ++last) {
        ByteVector cipher = Encrypt(Noise(32, 5), key).bytes;
        cipher[31] ^= static_cast<std::uint8_t>(last);
        const Result plain = Decrypt(cipher, key);
        EXPECT_EQ(plain.done, last <= 96) << last;
        EXPECT_EQ(plain.bytes.size(), last <= 96 ? 32 + last : 0u);
    }
}

TEST(Encryption, RefusedInputsLeaveNull) {
    const ByteVector data = Noise(64), key = Noise(32, 2);
    const struct {
        const char* name;
        const std::uint8_t* data;
        std::uint32_t length, keyLength;
        bool decryptOnly;
    } kCases[] = {
        {"null data", nullptr, 64, 16, false},
        {"length 0", data.data(), 0, 16, false},
        {"key of 0", data.data(), 64, 0, false},
        {"key of 15", data.data(), 64, 15, false},
        {"key of 20", data.data(), 64, 20, false},
        {"key of 33", data.data(), 64, 33, false},
        {"key of 2^32-16", data.data(), 64, 0xFFFFFFF0u, false},
        {"longest", data.data(), 0xFFFFFFFFu, 16, false},
        {"near 2^32", data.data(), 0xFFFFFFE0u, 16, false},
        {"33 bytes", data.data(), 33, 16, true},
        {"31 bytes", data.data(), 31, 16, true},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        std::uint8_t mark = 0;
        std::uint32_t length = 5;
        for (auto* const function : {EncryptData, DecryptData}) {
            if (c.decryptOnly && function == EncryptData) continue;
            std::uint8_t* out = &mark;
            EXPECT_FALSE(function(c.data, c.length, &out, &length, key.data(), c.keyLength));
            EXPECT_EQ(out, nullptr);
            EXPECT_FALSE(function(data.data(), 64, nullptr, &length, key.data(), 16));
            EXPECT_FALSE(function(data.data(), 64, &out, nullptr, key.data(), 16));
        }
        EXPECT_EQ(length, 5u);
    }
    const FailingHeap heap(1);
    EXPECT_FALSE(Encrypt(data, key).done);
    EXPECT_FALSE(Decrypt(data, key).done);
}

std::string EncryptedText(const std::string& text, const ByteVector& key) {
    std::string digits((text.size() / 32 + 1) * 64, '?');
    const ORVustring plain(text.c_str());
    EXPECT_TRUE(EncryptString(plain, digits.data(), static_cast<std::uint32_t>(digits.size()), key.data(), Size(key)));
    EXPECT_FALSE(
        EncryptString(plain, digits.data(), static_cast<std::uint32_t>(digits.size()) - 1, key.data(), Size(key)));
    return digits;
}

TEST(EncryptString, TextsComeBackWhereThereIsRoom) {
    const ByteVector key = Noise(24);
    for (const std::size_t length : {1u, 31u, 32u, 33u, 1000u}) {
        const std::string text(length, 'x');
        std::string digits = EncryptedText(text, key);
        std::string out(length + 1, '?');
        const auto room = static_cast<std::uint32_t>(length + 1);
        EXPECT_FALSE(DecryptString(digits.c_str(), out.data(), room - 1, key.data(), 24));
        EXPECT_EQ(out, std::string(length + 1, '?'));
        EXPECT_TRUE(DecryptString(digits.c_str(), out.data(), room, key.data(), 24));
        EXPECT_EQ(out, text + '\0');
        out.assign(length + 1, '?');
        digits += '7';  // a digit without a partner does not count
        EXPECT_TRUE(DecryptString(ORVustring(digits.c_str()).to_upper_ret(), out.data(), room, key.data(), 24));
        EXPECT_EQ(out, text + '\0');
    }
}

TEST(EncryptString, RefusesWhatIsNoText) {
    char buffer[200] = {};
    const ByteVector key = Noise(16);
    const std::string digits = EncryptedText("text", key);
    EXPECT_FALSE(EncryptString(ORVustring(), buffer, 200, key.data(), 16));
    EXPECT_FALSE(EncryptString("", buffer, 200, key.data(), 16));
    EXPECT_FALSE(EncryptString("a", nullptr, 200, key.data(), 16));
    EXPECT_FALSE(EncryptString("a", buffer, 200, key.data(), 17));
    for (const std::string& bad : {std::string(), std::string("0"), digits.substr(0, 62), digits + "00"}) {
        EXPECT_FALSE(DecryptString(bad.c_str(), buffer, 200, key.data(), 16)) << bad;
    }
    EXPECT_FALSE(DecryptString(digits.c_str(), nullptr, 200, key.data(), 16));
    EXPECT_FALSE(DecryptString(digits.c_str(), buffer, 0, key.data(), 16));
    EXPECT_FALSE(DecryptString(digits.c_str(), buffer, 200, key.data(), 17));
}

TEST(GetEncryptedString, FindsItsTextByTheTable) {
    const ByteVector key = Noise(16);
    const ByteVector first = Encrypt(ByteVector({'o', 'n', 'e'}), key).bytes;
    const ByteVector second = Encrypt(ByteVector(600, 'y'), key).bytes;
    ByteVector blob(40000);
    std::copy(first.begin(), first.end(), blob.begin() + 5);
    std::copy(second.begin(), second.end(), blob.begin() + 36000);
    const std::int16_t table[] = {5, 32, static_cast<std::int16_t>(36000), 608, 5, 33, 5, 0};
    ORVustring text("before");
    EXPECT_TRUE(GetEncryptedString(0, text, blob.data(), key.data(), table));
    EXPECT_STREQ(text.c_str(), "one");
    EXPECT_FALSE(GetEncryptedString(2, text, blob.data(), key.data(), table)) << "33 bytes";
    EXPECT_FALSE(GetEncryptedString(3, text, blob.data(), key.data(), table));
    EXPECT_FALSE(GetEncryptedString(-1, text, blob.data(), key.data(), table));
    EXPECT_FALSE(GetEncryptedString(0, text, nullptr, key.data(), table));
    EXPECT_FALSE(GetEncryptedString(0, text, blob.data(), key.data(), nullptr));
    EXPECT_STREQ(text.c_str(), "one");
    EXPECT_TRUE(GetEncryptedString(1, text, blob.data(), key.data(), table));
    EXPECT_EQ(text.length(), 511u);
}

class EncryptFile : public TempFolder {};

TEST_F(EncryptFile, ContentOfAFileBothWays) {
    const ByteVector data = Noise(100000), key = Noise(32);
    Put("plain", std::string(data.begin(), data.end()));
    const Result cipher = Call(FileEncrypt, key, Path("plain"));
    ASSERT_TRUE(cipher.done);
    EXPECT_EQ(Decrypt(cipher.bytes, key).bytes, data);
    Put("cipher", std::string(cipher.bytes.begin(), cipher.bytes.end()));
    EXPECT_EQ(Call(FileDecrypt, key, Path("cipher")).bytes, data);
    EXPECT_FALSE(Call(FileDecrypt, key, Path("plain")).done) << "no whole blocks";
    Put("empty", "");
    for (const ORVustring& bad : {Path("empty"), Path("missing"), Path(""), ORVustring()}) {
        EXPECT_FALSE(Call(FileEncrypt, key, bad).done);
        EXPECT_FALSE(Call(FileDecrypt, key, bad).done);
    }
    EXPECT_FALSE(FileEncrypt(Path("plain"), nullptr, nullptr, key.data(), 32));
    EXPECT_EQ(ByteVector(), Call(FileEncrypt, Noise(5), Path("plain")).bytes);
}

}  // namespace
}  // namespace dorvutil
