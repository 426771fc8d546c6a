#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

/// What happened to a progress state.
enum ProgressBarMsg : std::int32_t {
    kProgressStep = 0,  ///< To a parent's observers also: a child was closed.
    kProgressSetNumSteps = 1,
    kProgressDecNumSteps = 2,
    kProgressMessageLine1 = 3,
    kProgressMessageLine2 = 4,
    kProgressMessageLine3 = 5,
    kProgressAskCancelled = 6,  ///< To the old-style callback only: is the operation cancelled?
    kProgressIncNumSteps = 7,
    kProgressResetPosition = 8,  ///< To the old-style callback also: SetNumSteps begins.
    kProgressSetValue1 = 9,
    kProgressSetValue2 = 10,
    kProgressCancel = 12,
    kProgressClose = 13,
};

/// Is told of every change of the progress states it is attached to, on the thread that makes the change and with the
/// progress manager's lock held: it may use any CB_Dialog, and attach and detach observers, but must not block on
/// another thread that uses one.
class DORVUTIL_API ProgressObserver {
public:
    ProgressObserver() = default;
    ProgressObserver(const ProgressObserver&) = default;
    ProgressObserver& operator=(const ProgressObserver&) = default;
    virtual ~ProgressObserver() = default;

    virtual void OnProgressChanged(ProgressBarMsg what) = 0;
    /// Show the present state, whatever was shown before.
    virtual void ForceUpdate() = 0;
};

}  // namespace dorvutil
