#include "dorvutil/logging/file_logger.h"

#include <algorithm>

#include "dorvutil/frame/build_info.h"
#include "dorvutil/logging/log_file.h"
#include "dorvutil/logging/system_text.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kDirectorySize = 256;  // bytes with the terminator
constexpr std::uint32_t kRulerWidth = 80;

using Guard = TScopedLock<critSec>;

}  // namespace

FileLogger::FileLogger(const char* name, std::int32_t id, std::int32_t subscription, std::int32_t level)
    : LogSubscriber(id, subscription, nullptr, nullptr) {
    const Guard guard(m_lock);
    m_name = name;
    m_level = level;
}

FileLogger::~FileLogger() { FileLogger::Cleanup(); }

void FileLogger::LogHandler(LogDataMsg* record) {
    const Guard guard(m_lock);
    if (!m_initialized) Init();
    if (!m_file) return;
    LogDataHolder copy;
    copy = *record;
    std::uint32_t written = 0;
    const bool known = record->m_event == eLogEventMessage || record->m_event == eLogEventOverflow;
    if (known && record->m_level <= m_level) written = copy.FormattedFileWrite(m_file.get());
    RestartWhenLong(written);
}

// Asking for the position costs more than formatting a line. Since a byte becomes two at most (line ends, on some
// systems), half the way that is left can be gone without asking.
void FileLogger::RestartWhenLong(std::uint32_t written) {
    m_untilLook -= std::min(written, m_untilLook);
    if (m_untilLook != 0) return;
    const std::int32_t position = m_file->Tell();
    if (position >= kRestartSize) {
        Restart();
    } else {
        m_untilLook = static_cast<std::uint32_t>(kRestartSize - std::max(position, 0) + 1) / 2;
    }
}

// The new handle empties the file before the old one closes it, with nothing left to write: a full file that is closed
// and then emptied makes some file systems write all of it to the disk in between, and the delivery thread wait.
void FileLogger::Restart() {
    const std::unique_ptr<COrvFileHandleBase> full = std::move(m_file);
    full->Seek(0, eSeekSet);  // takes what the runtime has buffered along
    m_headerPending = true;
    Init();
}

void FileLogger::Init() {
    const Guard guard(m_lock);
    char directory[kDirectorySize];
    GetLoggingDirectory(directory, kDirectorySize);
    ORVustring path(directory);
    path += m_name.c_str();
    path += ".log";
    m_file.reset();
    if (!path.empty()) m_file = OpenLogFile(path, eAccessWrite);
    m_untilLook = 0;
    if (m_file && m_headerPending) {
        m_headerPending = false;
        WriteHeader();
    }
    m_initialized = true;
}

void FileLogger::WriteHeader() {
    char ruler[kRulerWidth + 2];
    std::fill_n(ruler, kRulerWidth, '+');
    ruler[kRulerWidth] = '\r';
    ruler[kRulerWidth + 1] = '\n';
    m_systemText = SystemText();
    ORVustring header(m_systemText.c_str());
    header += "\r\n";
    header.append(ruler, sizeof ruler);
    header += GetBuildInfo();
    header += "\r\n";
    header.append(ruler, sizeof ruler);
    header += "\r\n";
    m_file->Write(header.c_str(), header.length(), 1);
}

void FileLogger::Cleanup() {
    const Guard guard(m_lock);
    Close();
    m_headerPending = true;
}

void FileLogger::Flush() {
    const Guard guard(m_lock);
    if (m_file) m_file->Flush();
}

void FileLogger::Reset() {
    m_level = kEveryLogLevel;
    Close();
}

void FileLogger::Close() {
    if (m_file) m_file->Close();
    m_file.reset();
    m_initialized = false;
}

void FileLogger::AdjustLogLevel(std::int32_t level) {
    const Guard guard(m_lock);
    m_level = level;
}

DedicatedFileLogger::DedicatedFileLogger(const char*, std::int32_t publisher, std::int32_t subscriber, std::int32_t)
    : m_publisher(publisher), m_subscriber(subscriber) {}

}  // namespace dorvutil
