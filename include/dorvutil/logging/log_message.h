#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/time/records.h"

/// The record that travels from a publisher to the subscribers.
namespace dorvutil {

class COrvFileHandleBase;

enum eLogEvent : std::int32_t {
    eLogEventMessage = 0,   ///< A published message.
    eLogEventOverflow = 1,  ///< Stands where records were dropped for lack of space.
};

/// Levels, from the gravest to the chattiest; any other value is allowed and named "UNKNOWN".
enum eLogLevel : std::int32_t {
    eLogLevelOverflow = 0,
    eLogLevelStatus = 1,
    eLogLevelError = 2,
    eLogLevelWarning = 3,
    eLogLevelBrief = 4,
    eLogLevelInfo = 5,
};
inline constexpr std::int32_t kEveryLogLevel = 6;  ///< As the highest level of a logger: it writes all of them.

inline constexpr std::int32_t kGeneralPublisher = 2;  ///< The publisher "GENERAL", always there.
inline constexpr std::int32_t kNoPublisher = -1;      ///< Of the overflow record.

inline constexpr std::uint32_t kLogTextSize = 512;        ///< Bytes of text in a record.
inline constexpr std::uint32_t kLogMessageOverhead = 52;  ///< Bytes of a record beside its text.

/// One record, as handlers get it: the layout is part of the interface. Only kLogMessageOverhead + m_textUsed bytes of
/// it are stored and passed on; the four last of those are slack.
struct LogDataMsg {
    std::int32_t m_event;      ///< eLogEvent
    std::uint32_t m_threadId;  ///< Of the publishing thread; 0 from Log_Publish.
    std::int32_t m_publisher;
    std::int32_t m_level;
    std::int32_t m_line;        ///< Of the source file.
    std::uint32_t m_tick;       ///< Milliseconds since system start, modulo 2^32.
    std::uint32_t m_tickDelta;  ///< Milliseconds since the publisher's record before; 0 for an unknown publisher.
    ORV_SYSTEMTIME m_time;      ///< Local time of publication.
    std::int32_t m_textUsed;    ///< Bytes used in m_text.
    /// Up to four texts back to back, each with its terminator: message, publisher name, level name, source file. Those
    /// that did not fit, and all behind them, are missing.
    char m_text[kLogTextSize + 4];
};
static_assert(offsetof(LogDataMsg, m_time) == 28 && offsetof(LogDataMsg, m_text) == 48 && sizeof(LogDataMsg) == 564);

/// A record with pointers to its texts. Not copied; not synchronised.
class DORVUTIL_API LogDataHolder {
public:
    static constexpr std::int32_t kTexts = 4;

    LogDataHolder();  ///< An empty message of no publisher.
    /// A record whose only text is `message` (null: none; too long: none). The source file is not kept, the line is.
    LogDataHolder(eLogEvent event, const char* message, std::uint32_t threadId, std::int32_t publisher,
                  std::int32_t level, const char* sourceFile, std::int32_t line);
    LogDataHolder(const LogDataHolder&) = delete;
    LogDataHolder& operator=(const LogDataHolder&) = delete;
    /// Takes over a record and finds its texts. A damaged size is brought into range.
    LogDataHolder& operator=(const LogDataMsg& record);

    /// Replaces the texts, up to the first that is null or does not fit; how many were packed. A text that already lies
    /// where it belongs stays there; the others must lie outside the record. The pointers are not set: UnpackStrings.
    std::int32_t PackStrings(const char* message, const char* publisherName, const char* levelName,
                             const char* sourceFile);
    bool StringFits(const char* text) const;  ///< Behind the texts there are; false for null.
    void InsertString(const char* text);      ///< Appends a text that fits.
    /// Sets the four pointers; a text beyond the used bytes is empty. 4.
    std::int32_t UnpackStrings();
    std::int32_t MessageSize() const;  ///< Bytes of the record that count.

    /// Takes over a record of `size` bytes from unaligned memory, as operator= but without looking for its texts.
    void Load(const void* bytes, std::uint32_t size);
    /// Writes the record as one line in one Write and returns the bytes written; 0 without a file. The line:
    ///     03/05/2011 09:07:03.004  <tick, 10 wide> <delta, 10 wide> [publisher]   <level>       "message" (@
    ///     file:line)
    /// with names cut to 10 characters, without what follows the message at level name "BRIEF", ended by CR LF, and cut
    /// to 1023 characters. Allocates nothing.
    std::uint32_t FormattedFileWrite(COrvFileHandleBase* file) const;

    const char* m_message = m_record.m_text;
    const char* m_publisherName = m_record.m_text;
    const char* m_levelName = m_record.m_text;
    const char* m_sourceFile = m_record.m_text;
    LogDataMsg m_record;

private:
    bool InsertIfFits(const char* text);
    void EndText();
};

}  // namespace dorvutil
