#pragma once

#include "dorvutil/messaging/progress.h"

namespace dorvutil {

/// Prints the message lines of a progress state on standard output, one line each, as plain text. Attached by its
/// constructor, detached by its destructor.
class DORVUTIL_API PrintfObserver : public ProgressObserver {
public:
    /// Watches the state of that name, created when there is none; prints the lines asked for.
    PrintfObserver(const char* name, bool line1, bool line2, bool line3);
    PrintfObserver(const PrintfObserver&) = delete;
    PrintfObserver& operator=(const PrintfObserver&) = delete;
    ~PrintfObserver() override;

    void OnProgressChanged(ProgressBarMsg what) override;
    void ForceUpdate() override {}

private:
    CB_Dialog m_dialog;
    bool m_printLine1;
    bool m_printLine2;
    bool m_printLine3;
};

}  // namespace dorvutil
