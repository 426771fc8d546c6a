// Encryption and hexadecimal text: what was encrypted comes back, foreign cipher texts end within their buffers.
#include "dorvutil/memory/heap.h"
#include "dorvutil/security/encryption.h"
#include "dorvutil/security/hex_text.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

struct Key {
    const std::uint8_t* m_bytes;
    std::uint32_t m_length;
};

// A result handed out, ended with the object.
struct Block {
    Block() = default;
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block() { Mem_Free(m_bytes); }

    std::string_view View() const { return {reinterpret_cast<const char*>(m_bytes), m_length}; }

    std::uint8_t* m_bytes = nullptr;
    std::uint32_t m_length = 0;
};

const std::uint8_t* Bytes(const Exact<char>& text) { return reinterpret_cast<const std::uint8_t*>(text.Data()); }

bool IsKeyLength(const Key& key) {
    return key.m_bytes == nullptr || key.m_length == 16 || key.m_length == 24 || key.m_length == 32;
}

void CheckRoundTrip(const Exact<char>& data, const Key& key) {
    Block cipher, plain;
    const bool done =
        EncryptData(Bytes(data), data.Count(), &cipher.m_bytes, &cipher.m_length, key.m_bytes, key.m_length);
    FUZZ_CHECK(done == (data.Size() != 0 && IsKeyLength(key)) && (cipher.m_bytes != nullptr) == done);
    if (!done) return;
    FUZZ_CHECK(cipher.m_length == (data.Count() / kCipherBlockBytes + 1) * kCipherBlockBytes);
    const Exact<char> moved(cipher.View());
    FUZZ_CHECK(DecryptData(Bytes(moved), moved.Count(), &plain.m_bytes, &plain.m_length, key.m_bytes, key.m_length));
    FUZZ_CHECK(plain.View() == data.View());
}

void CheckForeign(const Exact<char>& cipher, const Key& key) {
    Block plain;
    const bool done =
        DecryptData(Bytes(cipher), cipher.Count(), &plain.m_bytes, &plain.m_length, key.m_bytes, key.m_length);
    FUZZ_CHECK((plain.m_bytes != nullptr) == done);
    FUZZ_CHECK(!done || (cipher.Size() != 0 && cipher.Size() % kCipherBlockBytes == 0 && IsKeyLength(key)));
    if (!done) return;
    FUZZ_CHECK(plain.m_length <= cipher.Count() + 64);
    std::uint32_t sum = 0;
    for (std::uint32_t i = 0; i < plain.m_length; ++i) sum += plain.m_bytes[i];  // all of it is there
    volatile std::uint32_t seen = sum;
    static_cast<void>(seen);
}

void CheckStrings(std::string_view text, const Key& key, std::uint32_t room) {
    const ORVustring plain(text.data(), static_cast<std::int32_t>(text.size()));
    const std::uint32_t digits = (plain.length() / 32 + 1) * 64;
    Exact<char> hex(digits);
    const bool done = EncryptString(plain, hex.Data(), hex.Count(), key.m_bytes, key.m_length);
    FUZZ_CHECK(done == (!plain.empty() && IsKeyLength(key)));
    Exact<char> small(digits - 1);
    FUZZ_CHECK(!EncryptString(plain, small.Data(), small.Count(), key.m_bytes, key.m_length));
    if (done) {
        const ORVustring hexText(hex.Data(), hex.Length());
        Exact<char> back(plain.length() + std::size_t{1}), tight(plain.length());
        FUZZ_CHECK(DecryptString(hexText, back.Data(), back.Count(), key.m_bytes, key.m_length));
        FUZZ_CHECK(std::string_view(back.Data()) == std::string_view(plain.c_str(), plain.length()));
        FUZZ_CHECK(!DecryptString(hexText, tight.Data(), tight.Count(), key.m_bytes, key.m_length));
    }
    Exact<char> foreign(room);
    if (DecryptString(plain, foreign.Data(), foreign.Count(), key.m_bytes, key.m_length)) {
        FUZZ_CHECK(std::memchr(foreign.Data(), 0, foreign.Size()) != nullptr && plain.length() / 2 % 32 == 0);
    }
}

bool IsHex(std::string_view text) { return text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos; }

void CheckHex(std::string_view text) {
    const Exact<char> digits = Exact<char>::Terminated(text);
    Exact<char> bytes((text.size() + 1) / 2);
    auto* const out = reinterpret_cast<std::uint8_t*>(bytes.Data());
    FUZZ_CHECK(TextToHex(digits.Data(), out));
    Exact<char> again(2 * bytes.Size());
    FUZZ_CHECK(HexToText(out, bytes.Count(), again.Data(), again.Count()));
    FUZZ_CHECK(bytes.Size() == 0 || !HexToText(out, bytes.Count(), again.Data(), again.Count() - 1));
    FUZZ_CHECK(IsHex(again.View()));
    if (!IsHex(text) || text.size() % 2 != 0) return;
    const auto lower = [](char c) { return c >= 'A' && c <= 'F' ? static_cast<char>(c + 32) : c; };
    FUZZ_CHECK(std::equal(text.begin(), text.end(), again.Data(), [&](char a, char b) { return lower(a) == b; }));
}

// A table of two pairs and the blob they point into, which is as large as any pair may ask for.
void CheckTable(std::string_view bytes, const Key& key) {
    static constexpr std::size_t kBlobBytes = 2 * 65536;
    Exact<char> blob(kBlobBytes);
    std::copy_n(bytes.begin(), std::min(bytes.size(), kBlobBytes), blob.Data());
    std::int16_t table[4] = {};
    std::memcpy(table, bytes.data(), std::min(bytes.size(), sizeof table));
    table[1] &= 0x3FF;
    table[3] &= 0x3FF;
    for (std::int32_t i = -1; i < 2; ++i) {
        ORVustring text("before");
        const bool done = GetEncryptedString(i, text, Bytes(blob), key.m_length == 16 ? key.m_bytes : nullptr, table);
        FUZZ_CHECK(done ? text.length() <= 511 : text == "before");
    }
}

}  // namespace

// The key's length, the key, the size of a buffer, then the data.
void TestInput(Input& input) {
    const std::uint32_t keyLength = input.Byte() % 40u;
    std::uint8_t keyBytes[40];
    for (std::uint32_t i = 0; i < keyLength; ++i) keyBytes[i] = input.Byte();
    const Key key{keyLength == 0 ? nullptr : keyBytes, keyLength};
    const std::uint32_t room = input.Byte();
    const Exact<char> rest(input.Rest(2048));
    CheckRoundTrip(rest, key);
    CheckForeign(rest, key);
    CheckStrings(UpToZero(rest.View()), key, room);
    CheckHex(UpToZero(rest.View()));
    CheckTable(rest.View(), key);
}

}  // namespace dorvutil::fuzz
