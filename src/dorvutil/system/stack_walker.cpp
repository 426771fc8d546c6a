#include "dorvutil/system/stack_walker.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "dorvutil/platform/descriptor.h"
#include "dorvutil/platform/process.h"
#include "dorvutil/platform/stack_trace.h"
#include "dorvutil/platform/system_facts.h"
#include "dorvutil/platform/thread.h"
#include "dorvutil/system/crash_log.h"
#include "dorvutil/system/report_line.h"
#include "dorvutil/system/search_path.h"

namespace dorvutil {
namespace {

constexpr char kLogFile[] = "./orv.exceptions.log";
constexpr char kHeaderLine[] = "++++++++++++++++++++++++++++++\n";
constexpr char kNoFunction[] = "(function-name not available)";
constexpr char kNoFile[] = "(filename not available)";
constexpr char kNoModule[] = "(module-name not available)";

constexpr std::uint32_t kNothingFound = ENOENT;

constexpr std::uint32_t kMostFrames = 1000;  // functions that call each other without end fill no disk

// In the order of eSymbolKind.
constexpr const char* kSymbolKinds[] = {"-unknown-",  "-nosymbols-", "COFF", "CV",      "PDB",
                                        "-exported-", "-deferred-",  "SYM",  "Virtual", "DIA"};

const char* SymbolKindText(eSymbolKind kind) {
    const auto row = static_cast<std::uint32_t>(kind);
    return kSymbolKinds[row < std::size(kSymbolKinds) ? row : 0];
}

const char* Known(const char* text, const char* otherwise) { return *text ? text : otherwise; }

const char* LastPart(const char* path) {
    const char* const separator = std::strrchr(path, '/');
    return separator ? separator + 1 : path;
}

const char* UserName() {
    for (const char* const variable : {"USERNAME", "USER", "LOGNAME"}) {
        if (const char* const name = std::getenv(variable)) return name;
    }
    return "";
}

// Takes the section of all reports, when there is one yet, and gives what it guards.
const char* EnterReport() {
    const critSec* const section = CrashLogSection();
    if (section) section->Enter();
    return UserSymbolPath();
}

}  // namespace

// A trace under way.
struct StackWalker::Trace {
    StackWalker* walker;
    std::uint32_t frames;
    std::uintptr_t last;  // address of the frame before
    bool endless;
    platform::FrameFacts facts;
};

StackWalker::StackWalker(const char* userSymbolPath, std::uint32_t options)
    : m_processId(platform::ProcessId()), m_options(options), m_userSymbolPath(userSymbolPath) {}

StackWalker::~StackWalker() = default;

bool StackWalker::TraceCallstack(std::uint32_t thread, void* context) {
    if (thread != 0 && thread != platform::CurrentThreadId()) return false;
    InitSymbols();
    Trace trace;
    trace.walker = this;
    trace.frames = 0;
    trace.endless = false;
    platform::WalkStack(context, OnFrame, &trace);
    if (!trace.endless) ReportFrame(eFramePlace::kLast, CallstackFrame());
    return true;
}

void StackWalker::InitSymbols() {
    if (m_symbolsReady) return;
    m_symbolsReady = true;
    if (!platform::PrepareStackTrace()) ReportError("Error while initializing dbghelp.dll", kNothingFound, 0);
    if (m_options & kReportSymbolInit) {
        const SearchPath path(m_userSymbolPath);
        ReportSymbolInit(path.Text(), m_options, UserName());
    }
    if (m_options & kReportModules) platform::VisitModules(OnModule, this);
}

void StackWalker::OnModule(void* walker, const platform::ModuleFacts& facts) {
    CallstackModule module;
    module.m_image = facts.path;
    module.m_name = LastPart(facts.path);
    module.m_base = facts.base;
    module.m_size = static_cast<std::uint32_t>(facts.size);
    module.m_symbols = eSymbolKind::kDeferred;
    static_cast<StackWalker*>(walker)->ReportModule(module);
}

bool StackWalker::OnFrame(void* trace, const platform::StackFrame& frame) {
    auto& state = *static_cast<Trace*>(trace);
    state.endless = state.frames != 0 && frame.address == state.last;
    if (state.endless) {
        state.walker->ReportError("StackWalk64-Endless-Callstack!", 0, frame.address);
        return false;
    }
    const platform::FrameFacts& facts = state.facts;
    platform::DescribeFrame(frame, state.facts);
    state.walker->ReportUnknown(frame.address, facts);
    const CallstackFrame entry{frame.address, facts.symbol, facts.function, facts.file, facts.line, facts.module};
    state.walker->ReportFrame(state.frames == 0 ? eFramePlace::kFirst : eFramePlace::kNext, entry);
    state.last = frame.address;
    return ++state.frames < kMostFrames;
}

// By the names under which the look-ups are known to who reads such reports.
void StackWalker::ReportUnknown(std::uintptr_t address, const platform::FrameFacts& facts) {
    if (!*facts.symbol) ReportError("SymGetSymFromAddr64", kNothingFound, address);
    if (!*facts.file) ReportError("SymGetLineFromAddr64", kNothingFound, address);
    if (!*facts.module) ReportError("SymGetModuleInfo64", kNothingFound, address);
}

void StackWalker::ReportSymbolInit(const char* searchPath, std::uint32_t options, const char* userName) {
    ReportLine symbols;
    symbols.Add("SymInit: Symbol-SearchPath: '").Add(searchPath).Add("', symOptions: ").AddNumber(options);
    OutputText(symbols.Add(", UserName: '").Add(userName).Add("'").Text());
    platform::OsVersion version{};
    platform::QueryOsVersion(version);
    char servicePack[std::size(version.servicePack)];
    for (std::size_t i = 0; i < std::size(servicePack); ++i) servicePack[i] = static_cast<char>(version.servicePack[i]);
    ReportLine system;
    system.Add("OS-Version: ").AddNumber(version.major).Add(".").AddNumber(version.minor).Add(".0 (");
    OutputText(system.Add(servicePack).Add(") 0x0-0x0").Text());
}

void StackWalker::ReportModule(const CallstackModule& module) {
    ReportLine line;
    line.Add(module.m_image).Add(":").Add(module.m_name).Add(" (").AddHex(module.m_base);
    line.Add("), size: ").AddNumber(module.m_size).Add(" (result: ").AddNumber(module.m_result);
    line.Add("), SymType: '").Add(SymbolKindText(module.m_symbols)).Add("', PDB: '").Add(module.m_symbolFile).Add("'");
    for (int i = 0; module.m_hasVersion && i < 4; ++i) {
        line.Add(i == 0 ? ", fileVersion: " : ".").AddNumber(std::uint32_t{module.m_version[i]});
    }
    OutputText(line.Text());
}

void StackWalker::ReportFrame(eFramePlace place, const CallstackFrame& frame) {
    if (place == eFramePlace::kLast) return;
    const char* const function = Known(frame.m_plainFunction, Known(frame.m_function, kNoFunction));
    ReportLine line;
    if (*frame.m_file) {
        line.Add(frame.m_file).Add(" (").AddNumber(frame.m_line).Add("): ").Add(function);
    } else {
        line.AddHex(frame.m_address).Add(" (").Add(Known(frame.m_module, kNoModule)).Add("): ");
        line.Add(kNoFile).Add(": ").Add(function);
    }
    OutputText(line.Text());
}

void StackWalker::ReportError(const char* what, std::uint32_t error, std::uintptr_t address) {
    ReportLine line;
    line.Add("ERROR: ").Add(what).Add(", GetLastError: ").AddNumber(error);
    OutputText(line.Add(" (Address: ").AddHex(address).Add(")").Text());
}

void StackWalker::OutputText(const char* text) { platform::WriteDebuggerText(text); }

void StackWalker::WriteHeader() {}

COrvStackWalker::COrvStackWalker(std::uint32_t options) : StackWalker(EnterReport(), options), m_log(kLogFile) {}

COrvStackWalker::~COrvStackWalker() {
    m_log.Close();
    if (const critSec* const section = CrashLogSection()) section->Exit();
}

void COrvStackWalker::ReportFrame(eFramePlace place, const CallstackFrame& frame) {
    m_inFrame = true;
    StackWalker::ReportFrame(place, frame);
    ++m_framesWritten;
    m_inFrame = false;
    m_log.Flush();
}

void COrvStackWalker::OutputText(const char* text) {
    if (!m_inFrame) return;
    if (m_firstOutput) {
        m_firstOutput = false;
        m_writingHeader = true;
        WriteHeader();
        m_writingHeader = false;
    }
    if (!m_writingHeader && m_framesWritten < m_framesLeftOut) return;
    if (m_log.IsOpen()) {
        m_log.Write(text);
    } else {
        StackWalker::OutputText(text);
    }
}

void COrvStackWalker::WriteHeader() { OutputText(kHeaderLine); }

COrvStackWalker::LogFile::LogFile(const char* path)
    : m_descriptor(platform::OpenDescriptor(path, platform::OpenMode::kAppend, true)) {}

COrvStackWalker::LogFile::~LogFile() { Close(); }

bool COrvStackWalker::LogFile::IsOpen() const { return m_descriptor != platform::kNoDescriptor; }

void COrvStackWalker::LogFile::Write(const char* text) {
    for (std::size_t left = std::strlen(text); left > 0;) {
        const std::size_t room = sizeof m_buffer - m_size;
        const std::size_t n = left < room ? left : room;
        std::memcpy(m_buffer + m_size, text, n);
        m_size += n;
        text += n;
        left -= n;
        if (m_size == sizeof m_buffer) Flush();
    }
}

// What the disk refuses is lost: there is nobody to tell.
void COrvStackWalker::LogFile::Flush() {
    for (std::size_t done = 0; done < m_size;) {
        const std::int64_t written = platform::WriteDescriptor(m_descriptor, m_buffer + done, m_size - done);
        if (written <= 0) break;
        done += static_cast<std::size_t>(written);
    }
    m_size = 0;
}

void COrvStackWalker::LogFile::Close() {
    if (!IsOpen()) return;
    Flush();
    platform::CloseDescriptor(m_descriptor);
    m_descriptor = platform::kNoDescriptor;
}

COrvExceptionStackWalker::COrvExceptionStackWalker(std::uint32_t exceptionCode)
    : COrvStackWalker(std::uint32_t{0}), m_exceptionCode(exceptionCode) {}

void COrvExceptionStackWalker::WriteHeader() {
    COrvStackWalker::WriteHeader();
    OutputText(ReportLine().Add("EXCEPTION: ").AddCode(m_exceptionCode).Text());
}

}  // namespace dorvutil
