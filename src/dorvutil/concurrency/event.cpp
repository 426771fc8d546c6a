#include "dorvutil/concurrency/event.h"

#include "dorvutil/concurrency/object_name.h"
#include "dorvutil/platform/event.h"

namespace dorvutil {

event::event(bool manualReset, const char* name) : m_object(nullptr) {
    bool failed = false;
    const auto wide = WideObjectName(name, failed);
    if (!failed) m_object = platform::OpenEvent(manualReset, wide.get());
}

event::~event() { platform::CloseEvent(m_object); }

std::int32_t event::WaitForEvent(std::uint32_t milliseconds) const {
    return platform::WaitForEvent(m_object, milliseconds);
}

void event::SignalEvent(bool) const { platform::SetEvent(m_object); }

void event::ClearEvent() const { platform::ResetEvent(m_object); }

}  // namespace dorvutil
