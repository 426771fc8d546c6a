#include "dorvutil/logging/publisher.h"

#include "dorvutil/memory/heap.h"
#include "dorvutil/time/clock.h"

namespace dorvutil {

LogPublisher::LogPublisher(std::int32_t id, const char* name)
    : m_lastTick(TIME_GetTickCount()), m_id(id), m_name(Mem_StrDup(name)) {}

LogPublisher::~LogPublisher() { Mem_Free(m_name); }

std::uint32_t LogPublisher::TickDelta(std::uint32_t now) {
    const std::uint32_t delta = now - m_lastTick;
    m_lastTick = now;
    return delta;
}

}  // namespace dorvutil
