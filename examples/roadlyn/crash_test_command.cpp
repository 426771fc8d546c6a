#include "crash_test_command.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "dorvutil/concurrency/thread.h"

namespace roadlyn {
namespace {

constexpr char kLogFile[] = "orv.exceptions.log";
constexpr char kHeaderLine[] = "++++++++++++++++++++++++++++++\n";
constexpr int kExitBase = 128;  // the library ends a crashing process with this and the number of the signal
constexpr int kNotStarted = 127;

volatile std::uintptr_t g_nowhere = 64;  // on the page of null
volatile bool g_deeper = true;

std::int32_t WriteToNull(void*) {
    *reinterpret_cast<volatile int*>(g_nowhere) = 1;
    return 0;
}

int Descend(int depth) {
    volatile char room[4096];
    room[0] = static_cast<char>(depth);
    return g_deeper ? Descend(depth + 1) + room[0] : 0;
}

std::int32_t OverflowStack(void*) { return Descend(0); }

std::int32_t RaiseBusError(void*) { return std::raise(SIGBUS); }

std::int32_t RunOnNoInstruction(void*) { __builtin_trap(); }

std::int32_t RaiseArithmeticError(void*) { return std::raise(SIGFPE); }

std::int32_t Abort(void*) { std::abort(); }

struct Kind {
    const char* name;
    dorvutil::ThreadFunction crash;
    int signal;
};

constexpr Kind kKinds[] = {
    {"segv", WriteToNull, SIGSEGV},        {"bus", RaiseBusError, SIGBUS}, {"ill", RunOnNoInstruction, SIGILL},
    {"fpe", RaiseArithmeticError, SIGFPE}, {"abort", Abort, SIGABRT},      {"stack", OverflowStack, SIGSEGV},
};

const Kind& FindKind(const std::string& name) {
    for (const Kind& kind : kKinds) {
        if (name == kind.name) return kind;
    }
    throw std::invalid_argument("no such crash: " + name);
}

// What the child does; nothing comes after it.
int Crash(const Kind& kind) {
    using namespace dorvutil;
    MThread* const thread = CreateThread("crash test", kind.crash, nullptr, eThreadPriorityNormal, 0, false);
    if (thread != nullptr) thread->Release(true, false, -1);
    std::cerr << "roadlyn: the thread did not crash\n";
    return 1;
}

int StatusOfChild(const Kind& kind) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::execl("/proc/self/exe", "roadlyn", "crash-test", "--child", kind.name, nullptr);
        ::_exit(kNotStarted);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child) throw std::runtime_error("cannot start another process");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::uintmax_t LogSize() {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(kLogFile, error);
    return error ? 0 : size;
}

// What the log has got since it had `size` bytes.
std::string ReportBehind(std::uintmax_t size) {
    std::ifstream log(kLogFile, std::ios::binary);
    log.seekg(static_cast<std::streamoff>(size));
    std::ostringstream text;
    text << log.rdbuf();
    return text.str();
}

int Run(const std::string& name, bool child) {
    try {
        const Kind& kind = FindKind(name);
        if (child) return Crash(kind);
        const std::uintmax_t before = LogSize();
        const int status = StatusOfChild(kind);
        const std::string report = ReportBehind(before);
        std::cout << "log: " << std::filesystem::absolute(kLogFile).string() << '\n'
                  << report << "exit status: " << status << std::endl;
        const bool good = report.starts_with(kHeaderLine) && status == kExitBase + kind.signal;
        return good && std::cout.good() ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << "roadlyn: " << error.what() << '\n';
        return 2;
    }
}

}  // namespace

void AddCrashTestCommand(CLI::App& app, std::function<int()>& run) {
    struct Options {
        std::string kind;
        bool child = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* const command = app.add_subcommand(
        "crash-test",
        "Crashes a thread of the library, in a process of its own, and shows the report that the library appends to "
        "orv.exceptions.log in this folder, and the exit status");
    command->add_option("KIND", options->kind, "segv, bus, ill, fpe, abort or stack")->required()->option_text("TEXT");
    command->add_flag("--child", options->child, "Crash this process itself");
    command->callback([options, &run] { run = [options] { return Run(options->kind, options->child); }; });
}

}  // namespace roadlyn
