#pragma once

#include <cstddef>
#include <cstdint>

/// The call stack of the calling thread, and what its addresses mean. Everything may be called in a fault handler, once
/// PrepareStackTrace has been called outside of one: nothing allocates from the heap, and where a lock is taken it says
/// so. Texts are the system's bytes. Any thread.
namespace dorvutil::platform {

/// Does ahead of time what the first trace would load or allocate; false when no stack can be traced here. Cheap.
bool PrepareStackTrace();

struct StackFrame {
    std::uintptr_t address;  ///< Program counter.
    bool returned;  ///< It is where a call comes back to: the call lies before it. Otherwise the instruction itself.
};

/// Gets the frames one after the other; false ends the walk.
using FrameVisitor = bool (*)(void* user, const StackFrame& frame);

/// Visits the frames from the innermost on. With a fault's record (Fault::systemContext; of this thread, whose handler
/// runs) that is where the fault happened, and it is visited before anything else on the stack is looked at; with null
/// it is the caller.
void WalkStack(void* systemContext, FrameVisitor visit, void* user);

/// What is known of a frame; unknown texts are empty, overlong ones cut.
struct FrameFacts {
    char symbol[2048];    ///< The function as the linker has it.
    char function[2048];  ///< As the source has it; the symbol itself when that cannot be told.
    char file[2048];      ///< Source file; when it is known, `line` is.
    std::int32_t line;
    char module[256];  ///< File name of the program or library.
};
/// Reads the symbol table and the line numbers from the module's own file. Where line numbers are known to the build,
/// the first call takes the loader's lock for a moment and may map a lot of memory.
void DescribeFrame(const StackFrame& frame, FrameFacts& facts);

struct ModuleFacts {
    const char* path;  ///< Lives as long as the visit.
    std::uintptr_t base;
    std::uint64_t size;  ///< Bytes of address space.
};
using ModuleVisitor = void (*)(void* user, const ModuleFacts& module);
/// Visits the programs and libraries in the address space. Holds the loader's lock meanwhile.
void VisitModules(ModuleVisitor visit, void* user);

/// The current folder, respectively the one of the running program, without a separator at its end. False, with an
/// empty text, when the system does not tell or it does not fit.
bool CurrentFolder(char* out, std::size_t size);
bool ProgramFolder(char* out, std::size_t size);

/// Shows a text where a debugger of this process shows them. POSIX: standard error.
void WriteDebuggerText(const char* text);

}  // namespace dorvutil::platform
