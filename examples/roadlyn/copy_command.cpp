#include "copy_command.h"

#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <exception>
#include <iomanip>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "copy_files.h"
#include "copy_progress.h"

namespace roadlyn {
namespace {

constexpr int kInterrupted = 130;
constexpr int kBadInput = 2;

struct CopyOptions {
    std::string source;
    std::string target;
    bool tree = false;
};

std::atomic<bool> g_interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void OnInterrupt(int) { g_interrupted = true; }

// What the dialog asks between two blocks; the changes that it also tells need no answer.
std::int32_t AnswerDialog(int code, int, const char*) {
    return code == dorvutil::kProgressAskCancelled && g_interrupted ? 1 : 0;
}

// Ctrl-C cancels as long as this lives; a second one ends the program at once.
class InterruptWatch {
public:
    InterruptWatch() {
        ::sigaction(SIGINT, nullptr, &m_before);
        if (m_before.sa_handler == SIG_IGN) return;  // started in the background of a script
        struct sigaction action = {};
        action.sa_handler = OnInterrupt;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
        ::sigaction(SIGINT, &action, nullptr);
    }
    ~InterruptWatch() { ::sigaction(SIGINT, &m_before, nullptr); }
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

private:
    struct sigaction m_before = {};
};

int ColumnsOfTerminal() {
    constexpr int kUsual = 80;
    winsize size = {};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0 ? size.ws_col : kUsual;
}

CopyResult CopyWithBar(const CopyPlan& plan) {
    const InterruptWatch watch;
    dorvutil::CB_Dialog dialog(AnswerDialog);
    std::optional<CopyProgressBar> bar;
    if (::isatty(STDERR_FILENO) == 1) bar.emplace(dialog, plan, std::cerr, ColumnsOfTerminal);
    return RunCopy(plan, dialog);
}

std::string FileCount(std::size_t count) { return std::to_string(count) + (count == 1 ? " file" : " files"); }

int ReportCancelled(const CopyPlan& plan, const CopyResult& result) {
    std::cerr << "roadlyn: cancelled; " << result.files << " of " << FileCount(plan.files.size()) << " copied";
    if (!result.incomplete.empty()) std::cerr << ", " << result.incomplete << " is incomplete";
    std::cerr << '\n';
    return kInterrupted;
}

void ReportDone(const CopyPlan& plan, const CopyResult& result, double seconds) {
    std::cout << FileCount(result.files) << ", " << FormatBytes(plan.bytes) << " copied in " << std::fixed
              << std::setprecision(2) << seconds << " s";
    if (seconds > 0) {
        std::cout << ", " << FormatBytes(static_cast<std::uint64_t>(static_cast<double>(plan.bytes) / seconds)) << "/s";
    }
    if (plan.skipped != 0) std::cout << "; left out: " << plan.skipped << " (links to folders, devices and the like)";
    std::cout << std::endl;
}

int Copy(const CopyOptions& options) {
    try {
        const CopyPlan plan = PlanCopy(options.source, options.target, options.tree);
        const auto start = std::chrono::steady_clock::now();
        const CopyResult result = CopyWithBar(plan);
        if (result.cancelled) return ReportCancelled(plan, result);
        ReportDone(plan, result, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    } catch (const std::exception& error) {
        std::cerr << "roadlyn: " << error.what() << '\n';
        return kBadInput;
    }
    return 0;
}

}  // namespace

void AddCopyCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<CopyOptions>();
    CLI::App* const command = app.add_subcommand(
        "copy",
        "Copies a file, replacing DST, or into DST when that is a folder. On a terminal it shows how far it is. "
        "Ctrl-C cancels; the file under way stays incomplete.");
    command->add_option("SRC", options->source, "What to copy")->required();
    command->add_option("DST", options->target, "The copy")->required();
    command->add_flag("--dir", options->tree, "Copy all that is in the folder SRC into the folder DST");
    command->callback([options, &run] { run = [options] { return Copy(*options); }; });
}

}  // namespace roadlyn
