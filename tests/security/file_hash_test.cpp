#include "dorvutil/security/file_hash.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

#include "dorvutil/security/checksum.h"
#include "dorvutil/security/sha1.h"
#include "security/bytes.h"
#include "storage/temp_folder.h"

namespace dorvutil {
namespace {

const std::string kSuffix = "\x5d\x3a\x91\xc4\x27\xe8\x0b\x6f\xd2\x14";
constexpr std::int32_t kModes[] = {kHashBinary, kHashText};

std::string Sha1Of(const std::string& bytes) {
    SHA1Context context;
    std::uint8_t digest[kSha1DigestBytes];
    SHA1Init(&context);
    SHA1Update(&context, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    SHA1Final(&context, digest);
    return ToHex(digest, sizeof digest);
}

class FileHash : public TempFolder {
protected:
    bool Write(const char* name, std::int32_t mode, const std::string& extra = "") {
        return FileWriteHash(Path(name), mode, m_digest, 0, extra.empty() ? nullptr : extra.data(),
                             static_cast<std::uint32_t>(extra.size()));
    }
    bool Verify(const char* name, std::int32_t mode, const std::string& extra = "") {
        return FileVerifyHash(Path(name), mode, extra.empty() ? nullptr : extra.data(),
                              static_cast<std::uint32_t>(extra.size()));
    }
    std::string Pieces(const std::vector<const char*>& names, std::uint32_t size, std::uint32_t count) {
        ListMgr<ORVustring> files;
        for (const char* name : names) {
            ORVustring path = Path(name);
            files.Add(&path);
        }
        std::uint8_t digest[kSha1DigestBytes];
        return FileGetHashFromFilePieces(files, size, count, digest, 0, nullptr, 0) ? ToHex(digest, 20) : "false";
    }

    std::uint8_t m_digest[kSha1DigestBytes] = {};
};

TEST_F(FileHash, CoversDataExtraAndSuffix) {
    const std::string data(200000, 'd');
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(data.data());
    EXPECT_TRUE(FileGetHash(bytes, 200000, m_digest, 7, nullptr, 9));
    EXPECT_EQ(ToHex(m_digest, 20), Sha1Of(data + kSuffix));
    EXPECT_TRUE(FileGetHash(bytes, 200000, m_digest, 7, "extra", 5));
    EXPECT_EQ(ToHex(m_digest, 20), Sha1Of(data + "extra" + kSuffix));
    EXPECT_FALSE(FileGetHash(nullptr, 1, m_digest, 0, nullptr, 0));
    EXPECT_FALSE(FileGetHash(bytes, 0, m_digest, 0, nullptr, 0));
    EXPECT_FALSE(FileGetHash(bytes, 1, nullptr, 0, nullptr, 0));
    for (const std::int32_t mode : kModes) {
        Put("file", data);
        ASSERT_TRUE(Write("file", mode, "extra"));
        const std::string stored = Bytes("file").substr(data.size());
        const auto* const storedBytes = reinterpret_cast<const std::uint8_t*>(stored.data());
        EXPECT_EQ(mode == kHashText ? stored : ToHex(storedBytes, stored.size()), Sha1Of(data + "extra" + kSuffix));
        EXPECT_EQ(ToHex(m_digest, 20), Sha1Of(data + "extra" + kSuffix));
        EXPECT_TRUE(Verify("file", mode, "extra"));
        EXPECT_FALSE(Verify("file", mode, "other"));
        EXPECT_FALSE(Verify("file", mode));
        EXPECT_FALSE(Verify("file", 3 - mode, "extra"));
    }
}

TEST_F(FileHash, EveryChangedOrMissingByteIsNoticed) {
    for (const std::int32_t mode : kModes) {
        Put("file", std::string("content\0of a file", 17));
        ASSERT_TRUE(Write("file", mode));
        const std::string good = Bytes("file");
        ASSERT_EQ(good.size(), 17u + (mode == kHashBinary ? 20 : 40));
        for (std::size_t i = 0; i < good.size(); ++i) {
            std::string bad = good;
            bad[i] = static_cast<char>(bad[i] ^ 0x01);
            Put("file", bad);
            EXPECT_FALSE(Verify("file", mode)) << i;
            Put("file", good.substr(0, i));
            EXPECT_FALSE(Verify("file", mode)) << "cut to " << i;
        }
        Put("file", good);
        EXPECT_TRUE(Verify("file", mode));
    }
}

TEST_F(FileHash, DigitsInUpperCaseCount) {
    Put("file", "some content");
    ASSERT_TRUE(Write("file", 9)) << "any mode but 1 is text";
    std::string bytes = Bytes("file");
    for (std::size_t i = 12; i < bytes.size(); ++i) bytes[i] = static_cast<char>(std::toupper(bytes[i]));
    Put("file", bytes);
    EXPECT_TRUE(Verify("file", kHashText));
    bytes[20] = 0;
    Put("file", bytes);
    EXPECT_FALSE(Verify("file", kHashText));
}

TEST_F(FileHash, NothingIsWrittenOfNothing) {
    Put("empty", "");
    for (const std::int32_t mode : kModes) {
        EXPECT_FALSE(Write("empty", mode));
        EXPECT_FALSE(Write("missing", mode));
        EXPECT_FALSE(FileWriteHash(ORVustring(), mode, m_digest, 0, nullptr, 0));
        EXPECT_FALSE(FileVerifyHash(ORVustring(), mode, nullptr, 0));
        EXPECT_FALSE(Verify("missing", mode));
    }
    EXPECT_EQ(Bytes("empty"), "");
    EXPECT_FALSE(Has("missing"));
    Put("file", Sha1Of(kSuffix));
    EXPECT_FALSE(Verify("file", kHashText)) << "the right hash of no content";
    Put("file", "x");
    EXPECT_FALSE(FileWriteHash(Path("file"), 1, nullptr, 0, nullptr, 0));
    EXPECT_EQ(Bytes("file"), "x");
}

TEST_F(FileHash, FullDiskIsToldAndTheContentStays) {
    Put("file", std::string(1000, 'x'));
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{1010, before.rlim_max};
    auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_FALSE(Write("file", kHashText));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(Bytes("file").substr(0, 1000), std::string(1000, 'x'));
}

TEST_F(FileHash, PiecesAreTakenAtEqualDistances) {
    std::string data(103, ' ');
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i);
    Put("a", data);
    Put("b", "tiny");
    Put("empty", "");
    const auto part = [&](std::size_t at, std::size_t n) { return data.substr(at, n); };
    const struct {
        const char* name;
        std::vector<const char*> files;
        std::uint32_t size, count;
        std::string hashed;
    } kCases[] = {
        {"four of ten", {"a"}, 10, 4, part(0, 10) + part(25, 10) + part(50, 10) + part(75, 10)},
        {"as many as fit", {"a"}, 30, 4, part(0, 30) + part(34, 30) + part(68, 30)},
        {"all of a small one, in order", {"b", "a"}, 100, 1, "tiny" + part(0, 100)},
        {"product above 32 bits", {"a"}, 0x80000000u, 2, data},
        {"empty ones pass", {"empty", "b"}, 2, 2, "tiny"},
    };
    for (const auto& c : kCases) EXPECT_EQ(Pieces(c.files, c.size, c.count), Sha1Of(c.hashed + kSuffix)) << c.name;
    EXPECT_EQ(Pieces({"a", "missing"}, 10, 2), "false");
    EXPECT_EQ(Pieces({"empty"}, 10, 2), "false");
    EXPECT_EQ(Pieces({}, 10, 2), "false");
    EXPECT_EQ(Pieces({"a"}, 10, 0), "false");
    EXPECT_EQ(Pieces({"a"}, 0, 0xFFFFFFFFu), "false");
}

TEST(Checksum, SaltedOfTwoTextsCutToTheirRoom) {
    ORVustring a, b;
    EXPECT_TRUE(GetSimpleOrvChecksum(a, "ab", "c"));
    EXPECT_TRUE(GetSimpleOrvChecksum(b, "a", "bc"));
    EXPECT_TRUE(a == b);
    EXPECT_STREQ(a.c_str(), Sha1Of("\x3e\xc9\xb7\x05"
                                   "abc")
                                .c_str());
    const std::string longest(251, 'x');
    EXPECT_TRUE(GetSimpleOrvChecksum(a, longest.c_str(), ""));
    EXPECT_TRUE(GetSimpleOrvChecksum(b, (longest + "yyy").c_str(), "zzz"));
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(GetSimpleOrvChecksum(b, longest.substr(1).c_str(), "xzzz"));
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(GetSimpleOrvChecksum(b, longest.substr(1).c_str(), "zzz"));
    EXPECT_FALSE(a == b);
    EXPECT_FALSE(GetSimpleOrvChecksum(a, nullptr, "a"));
    EXPECT_FALSE(GetSimpleOrvChecksum(a, "a", nullptr));
}

TEST(Checksum, SentencesAndCoordinates) {
    EXPECT_EQ(iComputeChecksum("AB*CD", 5), 0x03);
    EXPECT_EQ(iComputeChecksum("AB\rCD", 5), 0x03);
    EXPECT_EQ(iComputeChecksum("AB\nCD", 5), 0x03);
    EXPECT_EQ(iComputeChecksum("ABCD", 2), 0x03);
    EXPECT_EQ(iComputeChecksum("A\xC1", 2), static_cast<char>(0x80));
    EXPECT_EQ(iComputeChecksum("AB", 0), 0);
    EXPECT_EQ(iComputeChecksum("AB", -1), 0);
    EXPECT_EQ(iComputeChecksum(nullptr, 5), 0);
    const std::int32_t pairs[] = {1, 2, 3, 4, -20, 5};
    EXPECT_EQ(iComputeChecksumCoords(pairs, 2), 10u);
    EXPECT_EQ(iComputeChecksumCoords(pairs, 3), 0xFFFFFFFBu);
    EXPECT_EQ(iComputeChecksumCoords(pairs, 0), 0u);
    EXPECT_EQ(iComputeChecksumCoords(nullptr, 1), 0u);
}

TEST_F(FileHash, FileChecksumAddsBytesThenWords) {
    const struct {
        std::string bytes;
        std::uint32_t sum;
    } kCases[] = {{"", 0},
                  {"\xFF", 255},
                  {std::string("\x01\x02\x03\x04\0\0\x80", 7), 6 + 0x80000004u},
                  {std::string(4 * 4096 * 3 + 8, '\x01'), 0x01010101u * (4096u * 3 + 2)}};
    for (const auto& c : kCases) {
        Put("file", c.bytes);
        EXPECT_EQ(FileChecksum(Path("file")), c.sum) << c.bytes.size();
    }
    EXPECT_EQ(FileChecksum(Path("missing")), 0u);
}

}  // namespace
}  // namespace dorvutil
