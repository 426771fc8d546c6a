#include "dorvutil/platform/stack_trace.h"

#include <link.h>
#include <sys/uio.h>
#include <ucontext.h>
#include <unistd.h>
#include <unwind.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include "dorvutil/platform/posix/module_map.h"
#include "dorvutil/platform/posix/source_lines.h"
#include "dorvutil/platform/posix/symbol_table.h"
#include "dorvutil/platform/posix/text_copy.h"

namespace dorvutil::platform {
namespace {

constexpr char kProgramFile[] = "/proc/self/exe";

struct Walk {
    FrameVisitor visit;
    void* user;
    const std::uintptr_t* from;  // program counter of the last frame that is left out; null: the first one is
    bool reached;                // that frame is behind
};

// The unwinder starts here, in the handler. The frames up to the one of the fault are those of the handler.
_Unwind_Reason_Code OnFrame(_Unwind_Context* context, void* user) {
    auto& walk = *static_cast<Walk*>(user);
    int exact = 0;
    const std::uintptr_t address = _Unwind_GetIPInfo(context, &exact);
    if (!walk.reached) {
        walk.reached = !walk.from || address == *walk.from;
        return _URC_NO_REASON;
    }
    if (address == 0) return _URC_END_OF_STACK;
    return walk.visit(walk.user, {address, exact == 0}) ? _URC_NO_REASON : _URC_END_OF_STACK;
}

// Where the processor stood. On a machine that is not known here the handler's frames are visited too.
#if defined(__x86_64__)
constexpr bool kMachineKnown = true;
std::uintptr_t ProgramCounter(const ucontext_t& context) {
    return static_cast<std::uintptr_t>(context.uc_mcontext.gregs[REG_RIP]);
}
#elif defined(__aarch64__)
constexpr bool kMachineKnown = true;
std::uintptr_t ProgramCounter(const ucontext_t& context) { return static_cast<std::uintptr_t>(context.uc_mcontext.pc); }
#else
constexpr bool kMachineKnown = false;
std::uintptr_t ProgramCounter(const ucontext_t&) { return 0; }
#endif

#if defined(__x86_64__)

// The system copies: an address that is none gives a failure and not a fault.
bool ReadWord(std::uintptr_t address, std::uintptr_t& word) {
    const iovec here{&word, sizeof word};
    const iovec there{reinterpret_cast<void*>(address), sizeof word};
    return ::process_vm_readv(::getpid(), &here, 1, &there, 1, 0) == sizeof word;
}

// A call through a wild pointer lands where no code is, and the unwinder gives up at once. But the call has done
// nothing yet than leave its return address on the stack: while an object of this class lives, the record of the fault
// shows the machine as after a return.
class UndoneCall {
public:
    explicit UndoneCall(ucontext_t& context) : m_registers(context.uc_mcontext.gregs) {
        ModuleSpan module;
        const auto stack = static_cast<std::uintptr_t>(m_registers[REG_RSP]);
        m_undone =
            !FindModule(ProgramCounter(context), module) && ReadWord(stack, m_caller) && FindModule(m_caller, module);
        if (!m_undone) return;
        m_wild = m_registers[REG_RIP];
        m_registers[REG_RIP] = static_cast<greg_t>(m_caller);
        m_registers[REG_RSP] += static_cast<greg_t>(sizeof m_caller);
    }
    ~UndoneCall() {
        if (!m_undone) return;
        m_registers[REG_RIP] = m_wild;
        m_registers[REG_RSP] -= static_cast<greg_t>(sizeof m_caller);
    }
    UndoneCall(const UndoneCall&) = delete;
    UndoneCall& operator=(const UndoneCall&) = delete;

    std::uintptr_t Caller() const { return m_undone ? m_caller : 0; }

private:
    gregset_t& m_registers;
    greg_t m_wild = 0;
    std::uintptr_t m_caller = 0;
    bool m_undone = false;
};

#else

class UndoneCall {
public:
    explicit UndoneCall(ucontext_t&) {}
    std::uintptr_t Caller() const { return 0; }
};

#endif

void WalkFromFault(ucontext_t& context, FrameVisitor visit, void* user) {
    if (!visit(user, {ProgramCounter(context), false})) return;
    const UndoneCall call(context);
    if (call.Caller() != 0 && !visit(user, {call.Caller(), true})) return;
    const std::uintptr_t from = ProgramCounter(context);
    Walk walk{visit, user, &from, false};
    _Unwind_Backtrace(OnFrame, &walk);
}

// Cuts the last part of a path off, and the separator before it.
bool CutLastPart(char* path) {
    char* const separator = std::strrchr(path, '/');
    if (separator) *separator = '\0';
    return separator != nullptr;
}

// The loader calls the running program nothing.
bool ProgramPath(char* out, std::size_t size) {
    const ssize_t length = ::readlink(kProgramFile, out, size);
    const bool whole = length > 0 && static_cast<std::size_t>(length) < size;
    out[whole ? static_cast<std::size_t>(length) : 0] = '\0';
    return whole;
}

template <std::size_t kSize>
void NameModule(const char* path, char (&out)[kSize]) {
    char program[PATH_MAX];
    if (*path == '\0' && ProgramPath(program, sizeof program)) path = program;
    const char* const separator = std::strrchr(path, '/');
    CopyText(separator ? separator + 1 : path, out);
}

struct Visit {
    ModuleVisitor visit;
    void* user;
};

int OnModule(dl_phdr_info* info, std::size_t, void* user) {
    const auto& visit = *static_cast<Visit*>(user);
    std::uintptr_t low = UINTPTR_MAX, high = 0;
    for (ElfW(Half) i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = info->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD) continue;
        low = std::min<std::uintptr_t>(low, info->dlpi_addr + segment.p_vaddr);
        high = std::max<std::uintptr_t>(high, info->dlpi_addr + segment.p_vaddr + segment.p_memsz);
    }
    char program[PATH_MAX];
    const char* path = info->dlpi_name;
    if (*path == '\0' && ProgramPath(program, sizeof program)) path = program;
    if (low < high) visit.visit(visit.user, {path, low, high - low});
    return 0;
}

}  // namespace

bool PrepareStackTrace() {
    PrepareSourceLines();
    bool works = false;
    WalkStack(
        nullptr,
        [](void* user, const StackFrame&) {
            *static_cast<bool*>(user) = true;
            return false;
        },
        &works);
    return works;
}

void WalkStack(void* systemContext, FrameVisitor visit, void* user) {
    if (systemContext && kMachineKnown) {
        WalkFromFault(*static_cast<ucontext_t*>(systemContext), visit, user);
    } else {
        Walk walk{visit, user, nullptr, false};
        _Unwind_Backtrace(OnFrame, &walk);
    }
}

void DescribeFrame(const StackFrame& frame, FrameFacts& facts) {
    const std::uintptr_t address = frame.address - (frame.returned ? 1 : 0);
    facts.symbol[0] = facts.module[0] = '\0';
    ModuleSpan module;
    if (FindModule(address, module)) {
        NameModule(module.path, facts.module);
        ReadFunctionSymbol(*module.path ? module.path : kProgramFile, address - module.bias, facts.symbol,
                           sizeof facts.symbol);
    }
    SourcePlace place;
    FindSourcePlace(address, place);
    CopyText(place.file, facts.file);
    facts.line = place.line;
    if (!*facts.symbol) CopyText(place.function, facts.symbol);
    if (!Demangle(facts.symbol, facts.function, sizeof facts.function)) CopyText(facts.symbol, facts.function);
}

void VisitModules(ModuleVisitor visit, void* user) {
    Visit each{visit, user};
    ::dl_iterate_phdr(OnModule, &each);
}

bool CurrentFolder(char* out, std::size_t size) {
    const bool known = ::getcwd(out, size) != nullptr;
    if (!known) *out = '\0';
    return known;
}

bool ProgramFolder(char* out, std::size_t size) { return ProgramPath(out, size) && CutLastPart(out); }

void WriteDebuggerText(const char* text) {
    for (std::size_t left = std::strlen(text); left > 0;) {
        const ssize_t written = ::write(STDERR_FILENO, text, left);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        text += written;
        left -= static_cast<std::size_t>(written);
    }
}

}  // namespace dorvutil::platform
