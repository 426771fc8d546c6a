#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <vector>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/logging.h"

namespace dorvutil::test {

/// A directory of its own, which is the logging directory as long as it lives.
class LogDirectory {
public:
    LogDirectory() {
        std::string pattern = (std::filesystem::temp_directory_path() / "dorvutil_log_XXXXXX").string();
        m_path = ::mkdtemp(pattern.data());
        Log_SetLoggingDirectory(m_path.c_str());
    }
    ~LogDirectory() {
        Log_SetLoggingDirectory(nullptr);
        std::filesystem::remove_all(m_path);
    }
    LogDirectory(const LogDirectory&) = delete;
    LogDirectory& operator=(const LogDirectory&) = delete;

    std::string File(const std::string& name) const { return (m_path / (name + ".log")).string(); }
    std::string Text(const std::string& name) const {
        std::ifstream file(File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_path;
};

/// Keeps what it hears as "publisher name/level name/source file:message", and can be held inside the handler.
class Listener {
public:
    static void Hear(void* self, LogDataMsg* record) { static_cast<Listener*>(self)->Take(*record); }
    std::vector<std::string> Heard() {
        const std::lock_guard lock(m_lock);
        return m_heard;
    }

    event m_entered{true};
    event m_gate{true};
    bool m_hold = false;

private:
    void Take(const LogDataMsg& record) {
        LogDataHolder holder;
        holder = record;
        {
            const std::lock_guard lock(m_lock);
            m_heard.push_back(std::string(holder.m_publisherName) + "/" + holder.m_levelName + "/" +
                              holder.m_sourceFile + ":" + holder.m_message);
        }
        m_entered.SignalEvent();
        if (m_hold) m_gate.WaitForEvent(kWaitForever);
    }
    std::mutex m_lock;
    std::vector<std::string> m_heard;
};

using Lines = std::vector<std::string>;
inline constexpr char kOverflowLine[] = "LOGMGR/!OVERFLOW!/:An overflow occurred.  At least one message was dropped.";

}  // namespace dorvutil::test
