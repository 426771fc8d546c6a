#include "dorvutil/concurrency/sync.h"

#include <new>

namespace dorvutil {
namespace {

std::unique_ptr<CBaseSync> MakeLock(tstype kind) {
    switch (kind) {
        case ts_nullSync:
            return std::unique_ptr<CBaseSync>(new (std::nothrow) TCompactSync<nullSync>);
        case ts_mutex:
            return std::unique_ptr<CBaseSync>(new (std::nothrow) TCompactSync<mutex>);
        case ts_critSec:
            break;
    }
    return nullptr;
}

}  // namespace

CCustomSync::CCustomSync(tstype kind) : m_lock(MakeLock(kind)) {}

CCustomSync::~CCustomSync() = default;

// Out of line, so that callers of the usual kind do not carry the calls through the pointer.
void CCustomSync::EnterOther() const { m_lock->Enter(); }

void CCustomSync::ExitOther() const { m_lock->Exit(); }

}  // namespace dorvutil
