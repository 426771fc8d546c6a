#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/logging/log_mgr.h"

namespace dorvutil {

/// A use of the log manager by a plain function: as long as it lasts, the manager is not destroyed.
class LogManagerUse {
public:
    LogManagerUse();
    ~LogManagerUse();
    LogManagerUse(const LogManagerUse&) = delete;
    LogManagerUse& operator=(const LogManagerUse&) = delete;

    explicit operator bool() const { return m_manager != nullptr; }  ///< Whether there is one.
    CLogMgr* operator->() const { return m_manager; }

private:
    std::atomic<std::uint32_t>* m_uses = nullptr;  // where this use is counted
    CLogMgr* m_manager = nullptr;
};

/// Returns once no use of a manager is under way that began before the accessor stopped giving it out.
void AwaitLogManagerUnused();

}  // namespace dorvutil
