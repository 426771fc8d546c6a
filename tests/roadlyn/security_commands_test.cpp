#include <gtest/gtest.h>

#include <filesystem>

#include "file_cipher.h"
#include "input_error.h"
#include "nmea_check.h"
#include "replace_file.h"
#include "roadlyn/test_folder.h"
#include "tsv_reader.h"

namespace roadlyn {
namespace {

class FileCipher : public FolderTest {
protected:
    std::string ErrorOf(Direction direction, const char* source, const char* target, const char* key = "") {
        try {
            RunCipher({direction, At(source), At(target), *key == 0 ? "" : At(key), false});
        } catch (const InputError& error) {
            return error.what();
        }
        return "no error";
    }
};

TEST_F(FileCipher, ContentComesBackUnderItsKeyOnly) {
    const std::string text(100, 'x');
    Write("plain", text);
    Write("key", "0123456789abcdef\n");
    Write("wrong", "0123456789abcdeg");
    Write("old", "old");
    EXPECT_EQ(ErrorOf(Direction::Encrypt, "plain", "cipher", "key"), "no error");
    EXPECT_EQ(ErrorOf(Direction::Decrypt, "cipher", "back", "key"), "no error");
    EXPECT_EQ(ReadWholeFile(At("back")), text);
    EXPECT_NE(ReadWholeFile(At("cipher")).substr(0, 32), text.substr(0, 32));
    EXPECT_EQ(RunCipher({Direction::Encrypt, At("plain"), At("old"), "", true}), 128u);
    EXPECT_EQ(RunCipher({Direction::Decrypt, At("old"), At("old"), "", true}), 100u);
    EXPECT_EQ(ReadWholeFile(At("old")), text);
}

TEST_F(FileCipher, WhatCannotBeIsSaidAndNothingIsOverwritten) {
    Write("plain", std::string(33, 'x'));
    Write("empty", "");
    Write("old", "what was there before");
    Write("short", "0123456789abcde\n");
    Write("key", "0123456789abcdef0123456789abcdef\r\n");
    std::filesystem::create_symlink("nowhere", At("link"));
    const struct {
        Direction direction;
        const char *source, *target, *key, *reason;
    } kCases[] = {
        {Direction::Encrypt, "missing", "new", "", "missing: No such file or directory"},
        {Direction::Encrypt, "", "new", "", ": is a folder"},
        {Direction::Encrypt, "empty", "new", "", "empty: is empty"},
        {Direction::Encrypt, "plain", "old", "", "old: exists already; --force replaces it"},
        {Direction::Encrypt, "plain", "link", "", "link: exists already; --force replaces it"},
        {Direction::Encrypt, "plain", "new", "short", "short: a key has 16, 24 or 32 bytes, not 15"},
        {Direction::Decrypt, "plain", "new", "key",
         "plain: is no encrypted file, or is cut off: 33 bytes are not whole blocks of 32"},
        {Direction::Encrypt, "plain", "old/new", "", "old/new: cannot be written: Not a directory"},
    };
    for (const auto& c : kCases) {
        const std::string reason = c.reason[0] == ':' ? At("") + c.reason : At(c.reason);
        EXPECT_EQ(ErrorOf(c.direction, c.source, c.target, c.key), reason);
    }
    EXPECT_EQ(ReadWholeFile(At("old")), "what was there before");
    EXPECT_THROW(CreateWholeFile(At("old"), "new"), InputError) << "one that came in the meantime";
    EXPECT_EQ(ReadWholeFile(At("old")), "what was there before");
    EXPECT_EQ(CountEntries(m_folder), 6);
}

TEST(NmeaCheck, EveryKindOfLine) {
    const NmeaReport report = CheckNmea(
        "$GPVTG,241.59,T,,M,0.00,N,0.0,K,A*06\r\n"
        "!AB*03\n"
        "\r\n"
        "$AB*4\n"
        "$AB*0g  \n"
        "$AB*034\n"
        "$GPVTG,241.59,T,,M,0.00,N,0.0,K,A*16\n"
        "$GPGGA,1,2\n"
        "GPGGA,1,2*00\x1b\n"
        "$jk*0a\n"
        "$ab*03");
    EXPECT_EQ(report.sentences, 9u);
    EXPECT_EQ(report.good, 3u);
    EXPECT_EQ(report.withoutChecksum, 1u);
    const struct {
        std::size_t number;
        std::string reason, expected, found;
    } kBad[] = {{4, "no two digits behind the star", "03", "4"},   {5, "no two digits behind the star", "03", "0g"},
                {6, "no two digits behind the star", "03", "034"}, {7, "wrong checksum", "06", "16"},
                {9, "no sentence", "", "GPGGA,1,2*00?"},           {10, "wrong checksum", "01", "0a"}};
    ASSERT_EQ(report.bad.size(), std::size(kBad));
    for (std::size_t i = 0; i < report.bad.size(); ++i) {
        EXPECT_EQ(report.bad[i].number, kBad[i].number);
        EXPECT_EQ(report.bad[i].reason, kBad[i].reason);
        EXPECT_EQ(report.bad[i].expected, kBad[i].expected);
        EXPECT_EQ(report.bad[i].found, kBad[i].found);
    }
}

TEST(NmeaCheck, RecordedSentencesOfTenReceiversAreGood) {
    const NmeaReport report = CheckNmea(ReadWholeFile(DORVUTIL_DATA_DIR "/nmea-receivers.nmea"));
    EXPECT_EQ(report.good, 1746u);
    EXPECT_EQ(report.sentences, 1746u);
    EXPECT_TRUE(report.bad.empty());
}

}  // namespace
}  // namespace roadlyn
