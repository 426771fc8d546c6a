#include "dorvutil/logging/file_logger.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "dorvutil/frame/build_info.h"
#include "dorvutil/logging/system_text.h"
#include "logging/log_support.h"

namespace dorvutil {
namespace {

using test::LogDirectory;

std::string Header() {
    const std::string ruler = std::string(80, '+') + "\r\n";
    return SystemText().c_str() + ("\r\n" + ruler) + GetBuildInfo() + "\r\n" + ruler + "\r\n";
}

void Write(FileLogger& logger, std::int32_t level, const char* message, std::int32_t event = eLogEventMessage) {
    LogDataHolder record;
    record.PackStrings(message, "P", "BRIEF", "");
    record.m_record.m_level = level;
    record.m_record.m_event = event;
    logger.LogHandler(&record.m_record);
}

// The quoted messages of the file, behind its header.
std::string Messages(const std::string& text) {
    EXPECT_TRUE(text.starts_with(Header()));
    EXPECT_NE(text.find("| CPUType = "), std::string::npos);
    std::string messages;
    for (std::size_t at = text.find('"'); at != std::string::npos; at = text.find('"', at + 1)) {
        const std::size_t end = text.find('"', at + 1);
        messages += text.substr(at + 1, end - at - 1) + " ";
        at = end;
    }
    return messages;
}

TEST(FileLogger, DropsWhatIsAboveItsLevel) {
    const LogDirectory directory;
    {
        FileLogger logger("low", 0, 1, 2);
        for (int level = 0; level <= 5; ++level) Write(logger, level, std::to_string(level).c_str());
        Write(logger, 1, "overflow", eLogEventOverflow);
        Write(logger, 1, "unknown event", 2);
    }
    EXPECT_EQ(Messages(directory.Text("low")), "0 1 2 overflow ");
}

TEST(FileLogger, ResetClosesTheFileAndWritesAllLevelsWithoutAHeader) {
    const LogDirectory directory;
    FileLogger logger("reset", 0, 1, 2);
    EXPECT_FALSE(std::filesystem::exists(directory.File("reset"))) << "opened by the first record";
    Write(logger, 1, "first");
    logger.Reset();
    EXPECT_EQ(Messages(directory.Text("reset")), "first ");
    Write(logger, 6, "second");
    logger.AdjustLogLevel(0);
    Write(logger, 1, "third");
    logger.Flush();
    const std::string text = directory.Text("reset");
    EXPECT_TRUE(text.ends_with("\"second\"\r\n") && text.find("++") == std::string::npos) << text;
}

TEST(FileLogger, StartsAnewWhenLong) {
    const LogDirectory directory;
    const std::string message(400, 'm');
    FileLogger logger("long", 0, 1, 6);
    Write(logger, 1, message.c_str());
    logger.Flush();
    const std::size_t line = directory.Text("long").size() - Header().size();
    const std::size_t most = (FileLogger::kRestartSize - Header().size() - 1) / line;  // lines that stay below
    for (std::size_t i = 1; i < most; ++i) Write(logger, 1, message.c_str());
    logger.Flush();
    EXPECT_EQ(directory.Text("long").size(), Header().size() + most * line);
    Write(logger, 1, message.c_str());
    logger.Flush();
    EXPECT_TRUE(directory.Text("long") == Header());
    Write(logger, 1, "next");
    logger.Cleanup();
    EXPECT_EQ(Messages(directory.Text("long")), "next ");
}

TEST(FileLogger, DoesNotTryAgainUntilCleanedUp) {
    const LogDirectory directory;
    std::filesystem::create_directory(directory.File("late"));  // where the file should be
    FileLogger logger("late", 0, 1, 6);
    Write(logger, 1, "lost");
    std::filesystem::remove(directory.File("late"));
    Write(logger, 1, "lost, too");
    EXPECT_FALSE(std::filesystem::exists(directory.File("late")));
    logger.Cleanup();
    Write(logger, 1, "kept");
    EXPECT_TRUE(std::filesystem::exists(directory.File("late")));
}

TEST(LoggingDirectory, EndsInASeparator) {
    const std::string longest(254, 'd');
    const struct {
        std::string chosen, expected;
    } cases[] = {{"c:\\logs", "c:\\logs\\"},
                 {"/var/log/", "/var/log/"},
                 {"c:\\logs  ", "c:\\logs\\"},
                 {"c:\\logs\\", "c:\\logs\\"},
                 {"", "\\"},
                 {"   ", "\\"},
                 {longest, longest + "\\"}};
    char buffer[256];
    for (const auto& c : cases) {
        EXPECT_TRUE(Log_SetLoggingDirectory(c.chosen.c_str()));
        FileLogger::GetLoggingDirectory(buffer, sizeof buffer);
        EXPECT_EQ(buffer, c.expected);
    }
    EXPECT_FALSE(Log_SetLoggingDirectory(std::string(255, 'd').c_str()));
    FileLogger::GetLoggingDirectory(buffer, 4);
    EXPECT_STREQ(buffer, "ddd") << "cut to the room there is";
    Log_SetLoggingDirectory(nullptr);
    FileLogger::GetLoggingDirectory(buffer, sizeof buffer);
    EXPECT_TRUE(std::string(buffer).ends_with("\\tests\\")) << buffer;
}

}  // namespace
}  // namespace dorvutil
