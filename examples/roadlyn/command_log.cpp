#include "command_log.h"

#include <algorithm>

#include "dorvutil/logging/log.h"
#include "dorvutil/logging/log_message.h"
#include "search_report.h"

namespace roadlyn {
namespace {

constexpr std::size_t kMostText = 400;  // bytes: a message that leaves no room for the names is not written at all

void Publish(std::int32_t publisher, int line, std::string text) {
    if (publisher < 0) return;
    if (text.size() > kMostText) {
        std::size_t end = kMostText;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
        text = text.substr(0, end) + "...";
    }
    dorvutil::Log_Publish(publisher, dorvutil::eLogLevelStatus, __FILE__, line, text.c_str());
}

}  // namespace

CommandLog::CommandLog(const std::string& directory, const std::vector<std::string>& arguments) {
    if (!directory.empty() && !dorvutil::Log_SetLoggingDirectory(directory.c_str())) return;
    m_publisher = dorvutil::Log_CreateDedicatedFileLogger("roadlyn");
    std::string text = "start:";
    for (const std::string& argument : arguments) text.append(1, ' ').append(Printable(argument));
    Publish(m_publisher, __LINE__, text);
}

void CommandLog::Finish(int exitCode) const {
    const auto taken = std::chrono::steady_clock::now() - m_start;
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(taken).count();
    Publish(m_publisher, __LINE__,
            "end: exit code " + std::to_string(exitCode) + " after " + std::to_string(milliseconds) + " ms");
}

}  // namespace roadlyn
