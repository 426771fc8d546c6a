#include "dorvutil/logging/log_message.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "dorvutil/storage/memory_handle.h"
#include "logging/log_support.h"

namespace dorvutil {
namespace {

std::string Texts(LogDataHolder& record) {
    EXPECT_EQ(record.UnpackStrings(), 4);
    return std::string(record.m_message) + "|" + record.m_publisherName + "|" + record.m_levelName + "|" +
           record.m_sourceFile;
}

TEST(LogDataHolder, PacksUpToTheFirstTextThatIsMissingOrDoesNotFit) {
    const std::string m511(511, 'm'), m600(600, 'm'), m500(500, 'm'), p11(11, 'p'), p12(12, 'p');
    const struct {
        const char* name;
        const char* texts[4];
        std::int32_t packed, used;
        std::string read;
    } cases[] = {
        {"all", {"m", "p", "l", "f"}, 4, 8, "m|p|l|f"},
        {"empty texts", {"", "", "", ""}, 4, 4, "|||"},
        {"null in between", {"m", nullptr, "l", "f"}, 1, 2, "m|||"},
        {"no message", {nullptr, "p", "l", "f"}, 0, 0, "|||"},
        {"message too long", {m600.c_str(), "p", "l", "f"}, 0, 0, "|||"},
        {"message fills the area", {m511.c_str(), "p", "l", "f"}, 1, 512, m511 + "|||"},
        {"second one just not", {m500.c_str(), p11.c_str(), "l", "f"}, 1, 501, m500 + "|||"},
        {"second one just fits", {m500.c_str(), p11.c_str() + 1, "l", "f"}, 2, 512, m500 + "|" + p11.substr(1) + "||"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        LogDataHolder record;
        EXPECT_EQ(record.PackStrings(c.texts[0], c.texts[1], c.texts[2], c.texts[3]), c.packed);
        EXPECT_EQ(record.m_record.m_textUsed, c.used);
        EXPECT_EQ(record.MessageSize(), 52 + c.used);
        EXPECT_EQ(Texts(record), c.read);
    }
}

TEST(LogDataHolder, DamagedRecordsAreReadWithinTheirBounds) {
    for (const std::int32_t used : {-1, 513, 0x7FFFFFFF, -0x7FFFFFFF - 1, 512}) {
        LogDataMsg foreign;
        std::memset(static_cast<void*>(&foreign), 'x', sizeof foreign);
        foreign.m_textUsed = used;
        LogDataHolder record;
        record = foreign;
        EXPECT_EQ(std::strlen(record.m_message), used < 0 ? 0u : 512u);
        EXPECT_STREQ(record.m_publisherName, "");
    }
}

// Formats into memory, as one line of text.
std::string LineOf(const char* message, const char* publisher, const char* level, const char* source, std::int32_t line,
                   ORV_SYSTEMTIME time = {2011, 3, 6, 5, 9, 7, 3, 4}) {
    LogDataHolder record;
    record.PackStrings(message, publisher, level, source);
    record.UnpackStrings();
    record.m_record.m_time = time;
    record.m_record.m_line = line;
    record.m_record.m_tick = 4294967295u;
    record.m_record.m_tickDelta = 7;
    COrvFileHandleMemory file(eAccessWrite);
    file.Open();
    const std::uint32_t written = record.FormattedFileWrite(&file);
    return std::string(file.ByteArray().Data(), written);
}

TEST(LogLine, FieldsAreCutAndFilled) {
    const std::string start = "03/05/2011 09:07:03.004  4294967295          7 ";
    const struct {
        const char *message, *publisher, *level, *file;
        std::int32_t line;
        std::string rest;
    } cases[] = {
        {"hello", "GENERAL", "INFO", "src\\a\\b.cpp", 12, "[GENERAL]     <INFO>        \"hello\" (@ b.cpp:12)\r\n"},
        {"hello", "GENERAL", "BRIEF", "src/b.cpp", 12, "[GENERAL]     <BRIEF>       \"hello\"\r\n"},
        {"", "ABCDEFGHIJKLMN", "!OVERFLOW!", "", 0, "[ABCDEFGHIJ]  <!OVERFLOW!>  \"\" (@ :0)\r\n"},
        {"x", "P", "BRIEFER", "c:\\a\\b/c.cpp", -5, "[P]           <BRIEFER>     \"x\" (@ c.cpp:-5)\r\n"},
        {"x", "P", "", "dir/", -0x7FFFFFFF - 1, "[P]           <>            \"x\" (@ :-2147483648)\r\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(LineOf(c.message, c.publisher, c.level, c.file, c.line), start + c.rest);
}

TEST(LogLine, ForeignTimesAreCutToTheirField) {
    const ORV_SYSTEMTIME wild = {65535, 65535, 0, 65535, 65535, 65535, 65535, 65535};
    EXPECT_EQ(LineOf("m", "P", "BRIEF", "", 0, wild).substr(0, 26), "65535/65535/65535 65535: 4");
}

TEST(LogLine, ALongLineLosesItsEnd) {
    LogDataMsg foreign{};
    foreign.m_textUsed = 512;
    std::memset(foreign.m_text, 'm', 510);
    LogDataHolder record;
    record = foreign;
    const std::string path(900, 'f');
    record.m_sourceFile = path.c_str();
    COrvFileHandleMemory file(eAccessWrite);
    file.Open();
    EXPECT_EQ(record.FormattedFileWrite(&file), 1023u);
    EXPECT_EQ(file.ByteArray().Last(), 'f');
    EXPECT_EQ(record.FormattedFileWrite(nullptr), 0u);
}

}  // namespace
}  // namespace dorvutil
