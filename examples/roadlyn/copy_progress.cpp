#include "copy_progress.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "dorvutil/storage/path_text.h"
#include "dorvutil/time/clock.h"

namespace roadlyn {
namespace {

constexpr std::chrono::milliseconds kInterval{100};
constexpr int kLeastBar = 5;  // characters between the brackets
constexpr int kMostBar = 40;

// Units of 100 nanoseconds.
std::uint64_t Ticks(const dorvutil::ORV_FILETIME& time) {
    return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

double SecondsSince(const dorvutil::ORV_FILETIME& start) {
    dorvutil::ORV_FILETIME now;
    dorvutil::TIME_GetCurrentFileTime(now);
    return Ticks(now) > Ticks(start) ? static_cast<double>(Ticks(now) - Ticks(start)) / 1e7 : 0;
}

std::string Percent(std::uint32_t percent) {
    char text[16];
    std::snprintf(text, sizeof(text), "%3u%%", percent);
    return text;
}

}  // namespace

std::string FormatBytes(std::uint64_t bytes) {
    constexpr std::uint64_t kLibraryLimit = 0xFFFFFFFF;
    if (bytes == 0) return "0 B";
    if (bytes <= kLibraryLimit) return dorvutil::GetFileSizeStr(static_cast<std::uint32_t>(bytes)).c_str();
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f GB", static_cast<double>(bytes) / (1 << 30));
    return text;
}

std::string CopyLine(const CopyFigures& figures, int columns) {
    std::string text = "  " + FormatBytes(figures.bytes) + " of " + FormatBytes(figures.totalBytes);
    if (figures.seconds > 0) {
        text += "  " + FormatBytes(static_cast<std::uint64_t>(static_cast<double>(figures.bytes) / figures.seconds));
        text += "/s";
    }
    if (figures.secondsRemaining != 0) text += "  " + std::to_string(figures.secondsRemaining) + " s left";
    const std::string percent = Percent(figures.percent);
    std::string line = percent;
    const int width = std::min(columns - static_cast<int>(percent.size() + text.size() + 3), kMostBar);
    if (width >= kLeastBar) {
        const std::uint32_t done = static_cast<std::uint32_t>(width) * std::min(figures.percent, 100u) / 100;
        line += " [" + std::string(done, '#') + std::string(static_cast<std::uint32_t>(width) - done, '-') + "]";
    }
    return (line + text).substr(0, static_cast<std::size_t>(std::max(columns, 0)));
}

CopyProgressBar::CopyProgressBar(dorvutil::CB_Dialog& dialog, const CopyPlan& plan, std::ostream& out,
                                 std::function<int()> columns)
    : m_dialog(dialog), m_plan(plan), m_out(out), m_columns(std::move(columns)) {
    m_dialog.AddObserver(this);
}

CopyProgressBar::~CopyProgressBar() {
    m_dialog.RemoveObserver(this);
    if (m_shown) m_out << std::endl;
}

void CopyProgressBar::OnProgressChanged(dorvutil::ProgressBarMsg what) {
    const auto now = std::chrono::steady_clock::now();
    if (what != dorvutil::kProgressClose && m_shown && now - m_lastShown < kInterval) return;
    m_lastShown = now;
    ForceUpdate();
}

void CopyProgressBar::ForceUpdate() {
    m_dialog.UpdateTimeStats();
    CopyFigures figures;
    figures.percent = m_dialog.GetPercentComplete();
    figures.bytes = BytesAt(static_cast<std::uint64_t>(m_dialog.GetCurrStep()));
    figures.totalBytes = m_plan.bytes;
    figures.seconds = SecondsSince(m_dialog.GetEventStartTime());
    figures.secondsRemaining = figures.percent < 100 ? m_dialog.GetSecondsRemaining() : 0;
    m_shown = true;
    // The last column stays free: some terminals go to the next line behind it.
    m_out << '\r' << CopyLine(figures, m_columns() - 1) << "\033[K" << std::flush;
}

// Steps only go forward: files that are done are passed once.
std::uint64_t CopyProgressBar::BytesAt(std::uint64_t step) {
    for (; m_file < m_plan.files.size(); ++m_file) {
        const std::uint64_t bytes = m_plan.files[m_file].bytes;
        const std::uint64_t steps = CopySteps(bytes);
        if (step < m_firstStep + steps) return m_bytesBefore + std::min((step - m_firstStep) * kCopyBlock, bytes);
        m_firstStep += steps;
        m_bytesBefore += bytes;
    }
    return m_bytesBefore;
}

}  // namespace roadlyn
