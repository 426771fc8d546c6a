#pragma once

#include <cstdint>
#include <memory>

#include "dorvutil/concurrency/locks.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/logging/subscriber.h"
#include "dorvutil/text/string.h"

namespace dorvutil {

class COrvFileHandleBase;

/// Writes what it hears, up to a level, into the file "<logging directory><name>.log", one line for each record
/// (LogDataHolder::FormattedFileWrite). The first record opens the file, which then starts empty, with a header block:
/// the system's attributes and the build. At 2 MiB it starts anew. Lines reach the disk when the runtime's buffer is
/// full, with Flush and with Cleanup.
///
/// A file that cannot be opened, or written, is not reported: nothing is written until Cleanup or Reset makes the next
/// record try again. Any thread may call everything but Reset.
class DORVUTIL_API FileLogger : public LogSubscriber {
public:
    static constexpr std::int32_t kRestartSize = 0x200000;  ///< Bytes at which the file starts anew.

    /// Records above `level` are not written; kEveryLogLevel: all are.
    FileLogger(const char* name, std::int32_t id, std::int32_t subscription, std::int32_t level);
    ~FileLogger() override;

    void LogHandler(LogDataMsg* record) override;  ///< Writes the record.
    void Init() override;                          ///< Opens the file and writes the header.
    void Cleanup() override;                       ///< Closes the file; the next one gets a header again.
    void Flush() override;                         ///< Commits the file to the disk.

    /// All levels, and the file closed; the next one gets no header unless the last got none. Only while no record is
    /// being written.
    void Reset();
    void AdjustLogLevel(std::int32_t level);

    /// The directory of log files with its separator: the one the host chose (Log_SetLoggingDirectory), else that of
    /// the executable. Trailing blanks are dropped. At most `size` bytes with the terminator are written.
    static void GetLoggingDirectory(char* buffer, std::int32_t size);

private:
    void WriteHeader();
    void RestartWhenLong(std::uint32_t written);
    void Restart();
    void Close();

    bool m_headerPending = true;
    ORVustring m_systemText;  // as the last header has it
    std::int32_t m_level = kEveryLogLevel;
    std::unique_ptr<COrvFileHandleBase> m_file;  // null while closed
    mutable critSec m_lock;                      // guards all the others
    ORVustring m_name;
    bool m_initialized = false;     // opened, or tried, since the last clean-up
    std::uint32_t m_untilLook = 0;  // bytes to write before the file can have reached its greatest size
};

/// A dedicated log: a publisher and the file logger that hears it alone.
struct DedicatedFileLogger {
    /// Name and level say what the pair is about; only the identifiers are kept.
    DedicatedFileLogger(const char* name, std::int32_t publisher, std::int32_t subscriber, std::int32_t level);

    std::int32_t m_publisher;
    std::int32_t m_subscriber;
};

}  // namespace dorvutil
