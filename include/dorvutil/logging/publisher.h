#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

/// Who publishes: a name under a number. Kept by the log manager, whose locks guard it.
class DORVUTIL_API LogPublisher {
public:
    /// Copies the name. The last record counts as published now.
    LogPublisher(std::int32_t id, const char* name);
    LogPublisher(const LogPublisher&) = delete;
    LogPublisher& operator=(const LogPublisher&) = delete;
    ~LogPublisher();

    std::int32_t Id() const { return m_id; }
    const char* Name() const { return m_name; }  ///< Null when memory for the copy ran out.
    /// Milliseconds from the record before to one at tick `now`, which is then the last.
    std::uint32_t TickDelta(std::uint32_t now);

private:
    std::uint32_t m_lastTick;
    const std::int32_t m_id;
    char* const m_name;  // owned
};

}  // namespace dorvutil
