#include "dorvutil/logging/log_message.h"

#include <algorithm>
#include <cstring>

namespace dorvutil {

LogDataHolder::LogDataHolder() {
    // Of the text area no more than its end: records are made and loaded on hot paths.
    std::memset(static_cast<void*>(&m_record), 0, kLogMessageOverhead);
    m_record.m_publisher = kNoPublisher;
}

LogDataHolder::LogDataHolder(eLogEvent event, const char* message, std::uint32_t threadId, std::int32_t publisher,
                             std::int32_t level, const char*, std::int32_t line)
    : m_record{} {
    m_record.m_event = event;
    m_record.m_threadId = threadId;
    m_record.m_publisher = publisher;
    m_record.m_level = level;
    m_record.m_line = line;
    if (StringFits(message)) InsertString(message);
    UnpackStrings();
}

LogDataHolder& LogDataHolder::operator=(const LogDataMsg& record) {
    const std::int32_t used = std::clamp(record.m_textUsed, 0, static_cast<std::int32_t>(kLogTextSize));
    Load(&record, kLogMessageOverhead + static_cast<std::uint32_t>(used));
    UnpackStrings();
    return *this;
}

void LogDataHolder::Load(const void* bytes, std::uint32_t size) {
    size = std::clamp<std::uint32_t>(size, kLogMessageOverhead, sizeof m_record);
    std::memmove(&m_record, bytes, size);
    const auto room = static_cast<std::int32_t>(size - kLogMessageOverhead);
    m_record.m_textUsed = std::clamp(m_record.m_textUsed, 0, room);
    EndText();
}

std::int32_t LogDataHolder::PackStrings(const char* message, const char* publisherName, const char* levelName,
                                        const char* sourceFile) {
    m_record.m_textUsed = 0;
    const char* const texts[kTexts] = {message, publisherName, levelName, sourceFile};
    std::int32_t packed = 0;
    while (packed < kTexts && InsertIfFits(texts[packed])) ++packed;
    EndText();
    return packed;
}

bool LogDataHolder::InsertIfFits(const char* text) {
    if (!text) return false;
    // Looked at no further than it could fit, so that an endless text costs nothing.
    const auto used = static_cast<std::uint32_t>(m_record.m_textUsed);
    const std::size_t room = kLogTextSize - used;
    const void* const end = std::memchr(text, '\0', room);
    if (!end) return false;
    const auto size = static_cast<std::uint32_t>(static_cast<const char*>(end) - text) + 1;
    if (text != m_record.m_text + used) std::memcpy(m_record.m_text + used, text, size);
    m_record.m_textUsed += static_cast<std::int32_t>(size);
    return true;
}

bool LogDataHolder::StringFits(const char* text) const {
    const std::int32_t room = static_cast<std::int32_t>(kLogTextSize) - m_record.m_textUsed;
    return text && room > 0 && std::memchr(text, '\0', static_cast<std::size_t>(room));
}

void LogDataHolder::InsertString(const char* text) {
    InsertIfFits(text);
    EndText();
}

// There is slack behind the longest text, so that even a damaged one ends.
void LogDataHolder::EndText() {
    m_record.m_textUsed = std::clamp(m_record.m_textUsed, 0, static_cast<std::int32_t>(kLogTextSize));
    std::memset(m_record.m_text + m_record.m_textUsed, 0, sizeof m_record.m_text - kLogTextSize);
}

std::int32_t LogDataHolder::UnpackStrings() {
    static constexpr char kNoText[] = "";
    EndText();
    const char* at = m_record.m_text;
    const char* const end = at + m_record.m_textUsed;
    for (const char** text : {&m_message, &m_publisherName, &m_levelName, &m_sourceFile}) {
        *text = at < end ? at : kNoText;
        if (at < end) at += std::strlen(at) + 1;
    }
    return kTexts;
}

std::int32_t LogDataHolder::MessageSize() const {
    return m_record.m_textUsed + static_cast<std::int32_t>(kLogMessageOverhead);
}

}  // namespace dorvutil
