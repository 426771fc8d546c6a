#include "dorvutil/system/stack_walker.h"

#include <fcntl.h>
#include <fenv.h>
#include <gtest/gtest.h>
#include <link.h>
#include <regex.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <vector>

#include "concurrency/thread_support.h"
#include "dorvutil/concurrency/crash_reporter.h"
#include "dorvutil/platform/posix/symbol_table.h"
#include "dorvutil/system/crash_log.h"
#include "system/scratch.h"

// The names of this namespace are what the reports are expected to show.
namespace dorvutil::crash_test {

std::atomic<std::uintptr_t> g_nowhere{64};  // on the page of null
volatile double g_zero = 0;
volatile int g_deep = 1;

[[gnu::noinline]] std::int32_t ReadNull(void*) { return *reinterpret_cast<volatile int*>(g_nowhere.load()); }

[[gnu::noinline]] int Descend(int depth) {
    volatile char room[4096];
    room[0] = static_cast<char>(depth);
    return g_deep ? Descend(depth + 1) + room[0] : 0;
}
std::int32_t Overflow(void*) { return Descend(0); }

[[gnu::noinline]] std::int32_t ReadBeyondTheFile(void*) {
    const int file = ::open("empty", O_RDWR | O_CREAT, 0600);
    return *static_cast<volatile char*>(::mmap(nullptr, 1, PROT_READ, MAP_SHARED, file, 0));
}

[[gnu::noinline]] std::int32_t RunOnNoInstruction(void*) { __builtin_trap(); }

[[gnu::noinline]] std::int32_t DivideByZero(void*) {
    ::feenableexcept(FE_DIVBYZERO);
    return 1.0 / g_zero > 0;
}

[[gnu::noinline]] std::int32_t Abort(void*) { std::abort(); }

[[gnu::noinline]] std::int32_t CallNowhere(void*) {
    return reinterpret_cast<std::int32_t (*)(void*)>(g_nowhere.load())(nullptr) + 1;
}

// Spoils the list of free blocks: the next search of it faults with the lock of the heap held.
[[gnu::noinline]] std::int32_t SpoilTheHeap(void*) {
    void* volatile block = std::malloc(4096);
    void* volatile wall = std::malloc(64);
    const auto links = reinterpret_cast<std::uintptr_t>(block);
    std::free(block);
    reinterpret_cast<volatile std::uintptr_t*>(links)[1] = 8;
    block = std::malloc(8192);
    return block == wall;
}

template <ThreadFunction kFunction>
void OnThread() {
    test::Create(kFunction, nullptr, false)->Release(true, false, -1);
}

// The second thread crashes when the first one is in the reporter, and reports when that one has begun to.
std::atomic<int> g_reporting{0};
std::atomic<CrashReporter> g_report{nullptr};

[[gnu::noinline]] std::int32_t CrashSecond(void*) {
    while (g_reporting == 0) std::this_thread::yield();
    return *reinterpret_cast<volatile int*>(g_nowhere.load()) + 1;
}

void OnTwoThreads() {
    g_report = SetCrashReporter([](std::uint32_t code, void* context) {
        const bool first = ++g_reporting == 1;
        while (g_reporting < 2) std::this_thread::yield();
        while (!first && ::access("orv.exceptions.log", F_OK) != 0) std::this_thread::yield();
        g_report.load()(code, context);
    });
    MThread* const second = test::Create(CrashSecond, nullptr, false);
    OnThread<ReadNull>();
    second->Release(true, false, -1);
}

// Keeps what it is given to report.
class Recorder : public StackWalker {
public:
    explicit Recorder(std::uint32_t options = 0) : StackWalker(UserSymbolPath(), options) {}
    using StackWalker::ReportError;
    using StackWalker::ReportModule;
    void ReportFrame(eFramePlace place, const CallstackFrame& frame) override {
        ++(place == eFramePlace::kLast ? m_ends : m_frames);
        StackWalker::ReportFrame(place, frame);
    }
    std::string m_text;
    int m_frames = 0;
    int m_ends = 0;

protected:
    void OutputText(const char* text) override { m_text += text; }
};

void ShowSymbolInit() {
    Recorder recorder(StackWalker::kReportSymbolInit);
    recorder.TraceCallstack(0, nullptr);
    std::fputs(recorder.m_text.c_str(), stderr);
}

volatile int g_calls = 0;  // to come; what is volatile keeps them from becoming a loop, or functions of their own

[[gnu::noinline]] int TraceBelow(StackWalker& walker);
[[gnu::noinline]] int TraceBelowInTurns(StackWalker& walker) {
    volatile int below = g_calls > 0 ? TraceBelow(walker) : walker.TraceCallstack(0, nullptr);
    return below;
}
[[gnu::noinline]] int TraceBelow(StackWalker& walker) {
    g_calls = g_calls - 1;
    volatile int below = TraceBelowInTurns(walker);
    return below;
}
[[gnu::noinline]] int TraceBelowItself(StackWalker& walker) {
    g_calls = g_calls - 1;
    volatile int below = g_calls > 0 ? TraceBelowItself(walker) : walker.TraceCallstack(0, nullptr);
    return below;
}

// Leaves frames out, and says other things than frames.
class Routed : public COrvStackWalker {
public:
    explicit Routed(std::uint32_t leaveOut) { m_framesLeftOut = leaveOut; }
    using COrvStackWalker::OutputText;
    using COrvStackWalker::ReportError;
    using COrvStackWalker::ReportFrame;
};

}  // namespace dorvutil::crash_test

namespace dorvutil {
namespace {

using crash_test::OnThread;
using testing_support::Scratch;

#if defined(DORVUTIL_TEST_DEMANGLED)
constexpr char kPlace[] = "dorvutil::crash_test::";
#else
constexpr char kPlace[] = "_ZN8dorvutil10crash_test";  // the rest has another form
#endif
constexpr char kHeader[] = "++++++++++++++++++++++++++++++\n";
constexpr char kKindVariable[] = "DORVUTIL_TEST_CRASH";

const bool kOwnHeap = !test::kAnySanitizer;  // a sanitizer's heap has other lists and finds such faults itself

const struct {
    const char* name;
    void (*run)();
    int signal;
    const char* function;  // that the fault is in, or that called where it is
    std::size_t frame;     // which one that is at most, counted from 0
    bool possible = true;  // as one among the crashes
} kKinds[] = {
    {"bad address", OnThread<crash_test::ReadNull>, SIGSEGV, "ReadNull(void*)", 0},
    {"stack overflow", OnThread<crash_test::Overflow>, SIGSEGV, "Descend(int)", 0},
    {"bus error", OnThread<crash_test::ReadBeyondTheFile>, SIGBUS, "ReadBeyondTheFile(void*)", 0},
    {"bad instruction", OnThread<crash_test::RunOnNoInstruction>, SIGILL, "RunOnNoInstruction(void*)", 0},
    {"arithmetic", OnThread<crash_test::DivideByZero>, SIGFPE, "DivideByZero(void*)", 0},
    {"abort", OnThread<crash_test::Abort>, SIGABRT, "Abort(void*)", 4},
    {"wild call", OnThread<crash_test::CallNowhere>, SIGSEGV, "CallNowhere(void*)", 1},
    {"fault in the heap", OnThread<crash_test::SpoilTheHeap>, SIGSEGV, "SpoilTheHeap(void*)", 4, kOwnHeap},
    {"symbol initialisation", crash_test::ShowSymbolInit, 0, "", 0, false},
    {"two threads at once", crash_test::OnTwoThreads, SIGSEGV, "", 0, false},
};

struct Outcome {
    int status = 0;
    std::string log;
    std::string errors;  // standard error
};

std::string ContentOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// Starts this program anew in `folder`, to do what CrashChild does.
Outcome RunChild(const Scratch& folder, const std::string& kind) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::setenv(kKindVariable, kind.c_str(), 1);
        const int errors = ::open(folder.Path("errors").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (::chdir(folder.Path("").c_str()) != 0 || ::dup2(errors, 2) < 0 || ::dup2(errors, 1) < 0) ::_exit(9);
        ::execl("/proc/self/exe", "crash_child", "--gtest_also_run_disabled_tests", "--gtest_brief=1",
                "--gtest_filter=CrashChild.*", nullptr);
        ::_exit(9);
    }
    Outcome outcome;
    EXPECT_EQ(::waitpid(child, &outcome.status, 0), child);
    outcome.log = ContentOf(folder.Path("orv.exceptions.log"));
    outcome.errors = ContentOf(folder.Path("errors"));
    return outcome;
}

TEST(CrashChild, DISABLED_Crashes) {
    const char* const kind = std::getenv(kKindVariable);
    for (const auto& c : kKinds) {
        if (kind && kind == std::string(c.name)) c.run();
    }
}

bool Matches(const std::string& text, const char* pattern) {
    regex_t expression;
    EXPECT_EQ(::regcomp(&expression, pattern, REG_EXTENDED | REG_NOSUB), 0);
    const bool matches = ::regexec(&expression, text.c_str(), 0, nullptr, 0) == 0;
    ::regfree(&expression);
    return matches;
}

// The reports of a log: for each the lines of its frames. Fails for anything else in it.
std::vector<std::vector<std::string>> ReportsIn(const std::string& log, int signal) {
    constexpr char kFrame[] =
        "^(.+ \\([1-9][0-9]*\\): .+|0x[0-9a-f]+ \\(([^()]+|\\(module-name not available\\))\\): "
        "\\(filename not available\\): .+)$";
    char code[32];
    std::snprintf(code, sizeof code, "EXCEPTION: %08X", static_cast<unsigned>(signal));
    std::vector<std::vector<std::string>> reports;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        if (line + "\n" == kHeader) {
            reports.emplace_back();
            std::getline(lines, line);
            EXPECT_EQ(line, code);
        } else if (reports.empty() || !Matches(line, kFrame)) {
            ADD_FAILURE() << "no frame: " << line;
        } else {
            reports.back().push_back(line);
        }
    }
    return reports;
}

// Whether a frame is in that function of crash_test.
bool Shows(const std::string& frame, const std::string& function) {
    const std::size_t at = frame.find(kPlace);
    const std::string name = *kPlace == '_' ? function.substr(0, function.find('(')) : kPlace + function;
    return at != std::string::npos && frame.find(name, at) != std::string::npos;
}

TEST(CrashLog, HasTheReportOfEveryKindOfCrashAndTheProcessEndsWithItsCode) {
    for (const auto& c : kKinds) {
        if (!c.possible) continue;
        SCOPED_TRACE(c.name);
        const Scratch folder;
        const Outcome outcome = RunChild(folder, c.name);
        SCOPED_TRACE(outcome.log + outcome.errors);
        EXPECT_TRUE(WIFEXITED(outcome.status)) << WTERMSIG(outcome.status);
        EXPECT_EQ(WEXITSTATUS(outcome.status), 128 + c.signal);
        const auto reports = ReportsIn(outcome.log, c.signal);
        ASSERT_FALSE(reports.empty());
        std::size_t at = 0;
        while (at < reports[0].size() && !Shows(reports[0][at], c.function)) ++at;
        ASSERT_LE(at, c.frame);
        ASSERT_GT(reports[0].size(), at + 1) << "who called it";
#if defined(DORVUTIL_TEST_LINES)
        EXPECT_TRUE(Matches(reports[0][at], "stack_walker_test\\.cpp \\([0-9]+\\): "));
#endif
    }
}

TEST(CrashLog, OfTwoThreadsAtOnceHasBothReportsOneAfterTheOther) {
    const Scratch folder;
    const auto reports = ReportsIn(RunChild(folder, "two threads at once").log, SIGSEGV);
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].size(), reports[1].size());
    EXPECT_NE(Shows(reports[0].at(0), "ReadNull(void*)"), Shows(reports[1].at(0), "ReadNull(void*)"));
    EXPECT_NE(Shows(reports[0].at(0), "CrashSecond(void*)"), Shows(reports[1].at(0), "CrashSecond(void*)"));
}

TEST(CrashLog, GoesBehindWhatIsThereOrToTheDebuggerOutput) {
    const Scratch folder;
    folder.Write("orv.exceptions.log", "before\n");
    const std::string log = RunChild(folder, "bad address").log;
    EXPECT_EQ(log.find(std::string("before\n") + kHeader + "EXCEPTION: 0000000B\n"), 0u) << log;
    const Scratch other;
    other.Write("orv.exceptions.log/no file", "");
    const Outcome outcome = RunChild(other, "bad address");
    EXPECT_EQ(WEXITSTATUS(outcome.status), 128 + SIGSEGV);
    EXPECT_NE(outcome.errors.find(std::string(kHeader) + "EXCEPTION: 0000000B\n"), std::string::npos);
}

TEST(SymbolPath, OfTheUserComesFirst) {
    const Scratch folder;
    folder.Write("orvsymbolpath.txt", "C:\\symbols;/more");
    ::setenv("SYSTEMROOT", "D:\\sys", 1);
    const std::string text = RunChild(folder, "symbol initialisation").errors;
    ::unsetenv("SYSTEMROOT");
    const std::string here = std::filesystem::canonical(folder.Path("")).string();
    const std::string program = std::filesystem::canonical("/proc/self/exe").parent_path().string();
    EXPECT_NE(text.find("SymInit: Symbol-SearchPath: 'C:\\symbols;/more;.;" + here + ";" + program +
                        ";D:\\sys;D:\\sys\\system32;SRV*c:\\websymbols*;', symOptions: 1, UserName: '"),
              std::string::npos)
        << text;
    EXPECT_TRUE(Matches(text, "\nOS-Version: [0-9]+\\.[0-9]+\\.0 \\(\\) 0x0-0x0\n")) << text;
    EXPECT_EQ(RunChild(Scratch(), "symbol initialisation").errors.find("'.;"), text.find("'C:"));
}

TEST(StackWalker, PutsReportsIntoTheirForms) {
    crash_test::Recorder recorder;
    for (const CallstackFrame& frame :
         {CallstackFrame{0x1F, "_Z1fv", "f()", "a/b.cpp", 12, "m"}, CallstackFrame{0x1F, "_Z1fv", "", "b.cpp", 1, ""},
          CallstackFrame{0xABC, "", "", "", 0, "libm.so"}, CallstackFrame{}}) {
        recorder.ReportFrame(eFramePlace::kNext, frame);
    }
    recorder.ReportFrame(eFramePlace::kLast, CallstackFrame{1, "f", "f", "f", 1, "f"});
    CallstackModule module{"/lib/a.so", "a.so", 0x7F00, 4096, 2, eSymbolKind::kPdb, "a.pdb", false, {1, 2, 3, 65535}};
    recorder.ReportModule(module);
    module.m_hasVersion = true;
    module.m_symbols = static_cast<eSymbolKind>(10);
    recorder.ReportModule(module);
    recorder.ReportError("SymLoadModule64", 0xC0000005u, 0x10);
    EXPECT_EQ(recorder.m_text,
              "a/b.cpp (12): f()\n"
              "b.cpp (1): _Z1fv\n"
              "0xabc (libm.so): (filename not available): (function-name not available)\n"
              "0x0 ((module-name not available)): (filename not available): (function-name not available)\n"
              "/lib/a.so:a.so (0x7f00), size: 4096 (result: 2), SymType: 'PDB', PDB: 'a.pdb'\n"
              "/lib/a.so:a.so (0x7f00), size: 4096 (result: 2), SymType: '-unknown-', PDB: 'a.pdb', "
              "fileVersion: 1.2.3.65535\n"
              "ERROR: SymLoadModule64, GetLastError: -1073741819 (Address: 0x10)\n");
}

TEST(StackWalker, TracesItsOwnThreadAlone) {
    crash_test::Recorder recorder(StackWalker::kReportModules);
    EXPECT_FALSE(recorder.TraceCallstack(GetThreadID() + 1, nullptr));
    EXPECT_EQ(recorder.m_text, "");
    EXPECT_TRUE(recorder.TraceCallstack(GetThreadID(), nullptr));
    EXPECT_NE(recorder.m_text.find("/system_tests:system_tests (0x"), std::string::npos);
    EXPECT_NE(recorder.m_text.find("TraceCallstack"), std::string::npos);
    EXPECT_EQ(recorder.m_ends, 1);
}

TEST(StackWalker, EndsWhereAFrameRepeatsAndAfterAThousand) {
    crash_test::Recorder recursive, deep;
    crash_test::g_calls = 4;
    crash_test::TraceBelowItself(recursive);
    EXPECT_NE(recursive.m_text.find("ERROR: StackWalk64-Endless-Callstack!, GetLastError: 0 (Address: 0x"),
              std::string::npos);
    EXPECT_EQ(recursive.m_frames, 3) << "the tracing function, the innermost call, the one that repeats";
    EXPECT_EQ(recursive.m_ends, 0);
    crash_test::g_calls = 600;
    crash_test::TraceBelow(deep);
    EXPECT_EQ(deep.m_frames, 1000);
    EXPECT_EQ(deep.m_ends, 1);
}

TEST(OrvStackWalker, LetsOnlyFramesIntoTheLogBehindOneHeader) {
    const Scratch folder;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path(""));
    const CallstackFrame frame{1, "f", "f", "f.c", 1, ""};
    {
        crash_test::Routed silent(0);
        silent.OutputText("outside\n");
        silent.ReportError("outside", 0, 0);
    }
    EXPECT_EQ(ContentOf("orv.exceptions.log"), "");
    for (const std::uint32_t leaveOut : {0u, 2u, 9u}) {
        crash_test::Routed walker(leaveOut);
        for (int i = 0; i < 3; ++i) {
            walker.ReportFrame(eFramePlace::kNext, frame);
            walker.ReportError("between", 0, 0);
        }
        walker.ReportFrame(eFramePlace::kLast, CallstackFrame{});
    }
    const std::string header = kHeader, line = "f.c (1): f\n";
    EXPECT_EQ(ContentOf("orv.exceptions.log"), header + line + line + line + header + line + header);
    crash_test::Routed(1).TraceCallstack(0, nullptr);
    const std::string last =
        ContentOf("orv.exceptions.log").substr(4 * header.size() - header.size() + 4 * line.size());
    EXPECT_EQ(last.find(header), 0u) << last;
    EXPECT_EQ(last.find("TraceCallstack"), std::string::npos) << last;
    EXPECT_NE(last.find("LetsOnlyFramesIntoTheLogBehindOneHeader"), std::string::npos) << last;
    std::filesystem::current_path(before);
}

TEST(OrvStackWalker, KeepsTheOthersOutWhileItLives) {
    auto first = std::make_unique<crash_test::Routed>(0);
    test::SleepingThread second([] { crash_test::Routed waiting(0); });
    second.WaitUntilAsleep();
    EXPECT_FALSE(second.Done());
    first.reset();
    second.Join();
    std::filesystem::remove("orv.exceptions.log");
}

TEST(SymbolTable, OfADamagedFileIsReadAsFarAsItGoes) {
    const Scratch folder;
    char name[64];
    const std::string program = ContentOf("/proc/self/exe");
    ElfW(Ehdr) header;
    std::memcpy(&header, program.data(), sizeof header);
    for (std::size_t size = 0; size <= sizeof header; ++size) {
        const std::string path = folder.Write("cut", program.substr(0, size));
        EXPECT_FALSE(platform::ReadFunctionSymbol(path.c_str(), header.e_entry, name, sizeof name));
    }
    const std::string path = folder.Write("whole", program);
    EXPECT_TRUE(platform::ReadFunctionSymbol(path.c_str(), header.e_entry, name, sizeof name));
    EXPECT_STREQ(name, "_start");
    const auto seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    for (int round = 0; round < 300; ++round) {  // bytes of the header, and of the list of sections
        const std::size_t listed = header.e_shnum * sizeof(ElfW(Shdr));
        const std::size_t at = round % 3 == 0 ? random() % sizeof header : header.e_shoff + random() % listed;
        file.seekp(static_cast<std::streamoff>(at)).put(round % 2 == 0 ? '\xFF' : static_cast<char>(random())).flush();
        platform::ReadFunctionSymbol(path.c_str(), header.e_entry, name, sizeof name);
        EXPECT_LT(std::strlen(name), sizeof name);
        file.seekp(static_cast<std::streamoff>(at)).put(program[at]).flush();
    }
}

}  // namespace
}  // namespace dorvutil
