#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

#include "copy_files.h"
#include "dorvutil/messaging/progress.h"

namespace roadlyn {

struct CopyFigures {
    std::uint32_t percent = 0;
    std::uint64_t bytes = 0;  ///< Copied.
    std::uint64_t totalBytes = 0;
    double seconds = 0;                  ///< Since the start.
    std::uint32_t secondsRemaining = 0;  ///< 0: not known yet, or less than one.
};

/// The figures as one line of at most `columns` characters, with a bar where there is room for one.
std::string CopyLine(const CopyFigures& figures, int columns);

/// "0 B", "1.5 KB", "5.0 GB": steps of 1024.
std::string FormatBytes(std::uint64_t bytes);

/// The line of a copy that is under way, on a terminal. Attached to the dialog by its constructor, detached by its
/// destructor, which also ends the line. Told on the thread that copies.
class CopyProgressBar : public dorvutil::ProgressObserver {
public:
    /// `columns` gives the width of the terminal. The plan outlives this.
    CopyProgressBar(dorvutil::CB_Dialog& dialog, const CopyPlan& plan, std::ostream& out, std::function<int()> columns);
    CopyProgressBar(const CopyProgressBar&) = delete;
    CopyProgressBar& operator=(const CopyProgressBar&) = delete;
    ~CopyProgressBar() override;

    void OnProgressChanged(dorvutil::ProgressBarMsg what) override;
    void ForceUpdate() override;

private:
    std::uint64_t BytesAt(std::uint64_t step);

    dorvutil::CB_Dialog& m_dialog;
    const CopyPlan& m_plan;
    std::ostream& m_out;
    const std::function<int()> m_columns;
    std::size_t m_file = 0;         // under way
    std::uint64_t m_firstStep = 0;  // of that file
    std::uint64_t m_bytesBefore = 0;
    bool m_shown = false;
    std::chrono::steady_clock::time_point m_lastShown;
};

}  // namespace roadlyn
