#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/frame/export.h"

/// Call stacks as text, and the log of crashes. A crash of a library thread appends its report to
/// "./orv.exceptions.log" by itself; these classes are for who wants the text elsewhere, or other text.
///
/// Everything here may run in the handler of a fault: it neither allocates nor asks a lock that the faulting thread may
/// hold. A derived class that is to be used there keeps to the same. Texts are bytes as the system has them.
namespace dorvutil {

namespace platform {
struct FrameFacts;
struct ModuleFacts;
struct StackFrame;
}  // namespace platform

/// Where a frame stands in a trace. After the innermost frames come the others and then an empty one.
enum class eFramePlace : std::int32_t { kFirst = 0, kNext = 1, kLast = 2 };

/// One frame. The texts live as long as the report that gets them; what is not known is empty.
struct CallstackFrame {
    std::uintptr_t m_address = 0;      ///< Program counter; 0 in the last, empty frame.
    const char* m_function = "";       ///< As the linker has it.
    const char* m_plainFunction = "";  ///< As the source has it, with its parameters.
    const char* m_file = "";
    std::int32_t m_line = 0;  ///< Counted from 1, when the file is known.
    const char* m_module = "";
};

/// Where the symbols of a module come from.
enum class eSymbolKind : std::int32_t {
    kUnknown,
    kNone,
    kCoff,
    kCv,
    kPdb,
    kExported,
    kDeferred,  ///< Nobody has looked yet.
    kSym,
    kVirtual,
    kDia,
};

/// One program or library in the address space. The texts live as long as the report that gets them.
struct CallstackModule {
    const char* m_image = "";  ///< Path of the file.
    const char* m_name = "";   ///< Its name alone.
    std::uintptr_t m_base = 0;
    std::uint32_t m_size = 0;    ///< Bytes of address space.
    std::uint32_t m_result = 0;  ///< The system's error code from reading it; 0: none.
    eSymbolKind m_symbols = eSymbolKind::kUnknown;
    const char* m_symbolFile = "";  ///< When it is another file than the image.
    bool m_hasVersion = false;
    std::uint16_t m_version[4] = {};  ///< Most significant part first.
};

/// Traces a stack and reports it, as text unless a derived class overrides the report. Not synchronised: one thread
/// uses one object. The objects are large (several KiB) but fit the stack of a fault handler.
class DORVUTIL_API StackWalker {
public:
    /// What a trace reports; the value is part of the symbol initialisation's text.
    enum : std::uint32_t {
        kReportSymbolInit = 1,
        kReportModules = 2,  ///< Takes the loader's lock for a moment.
        kReportAll = kReportSymbolInit | kReportModules,
    };

    /// `userSymbolPath` heads the symbol search path (null: no such part). It is not copied.
    explicit StackWalker(const char* userSymbolPath = nullptr, std::uint32_t options = kReportAll);
    virtual ~StackWalker();
    StackWalker(const StackWalker&) = delete;
    StackWalker& operator=(const StackWalker&) = delete;

    /// Reports the symbol initialisation and the modules, once for each object, and then every frame of a stack:
    /// innermost first, 1000 at most, ended by an empty one. With `context`, the machine state a fault handler was
    /// given on this thread, the first frame is where the fault happened; without (null) it is this function. `thread`
    /// is the calling thread's identifier, or 0. False, with nothing reported, for any other: the system does not let a
    /// thread see the stack of another. A frame at the same address as the one before (also of a function that calls
    /// itself) ends the trace with an error instead.
    bool TraceCallstack(std::uint32_t thread, void* context);

protected:
    virtual void ReportSymbolInit(const char* searchPath, std::uint32_t options, const char* userName);
    virtual void ReportModule(const CallstackModule& module);
    virtual void ReportFrame(eFramePlace place, const CallstackFrame& frame);
    /// `what` failed: a look-up of the symbol, the line or the module of a frame, or the trace as a whole.
    virtual void ReportError(const char* what, std::uint32_t error, std::uintptr_t address);
    /// Where the text goes: here to the debugger output (POSIX: standard error). Each text is whole lines.
    virtual void OutputText(const char* text);
    /// Writes what heads a report, through OutputText; nothing here. For derived classes.
    virtual void WriteHeader();

private:
    struct Trace;

    void InitSymbols();
    static void OnModule(void* walker, const platform::ModuleFacts& facts);
    static bool OnFrame(void* trace, const platform::StackFrame& frame);
    void ReportUnknown(std::uintptr_t address, const platform::FrameFacts& facts);

    bool m_symbolsReady = false;
    const std::uint32_t m_processId;
    const std::uint32_t m_options;
    const char* const m_userSymbolPath;
};

/// Appends the frames, and nothing but the frames, to "./orv.exceptions.log" behind a header line. While the object
/// lives no other thread can make one: reports do not interleave. Without the file the text goes to the debugger
/// output. A report without a frame leaves nothing in the file.
class DORVUTIL_API COrvStackWalker : public StackWalker {
public:
    /// Waits for the end of any other thread's report. The symbol path is the one read at library start.
    COrvStackWalker() : COrvStackWalker(kReportAll) {}
    ~COrvStackWalker() override;

protected:
    explicit COrvStackWalker(std::uint32_t options);

    void ReportFrame(eFramePlace place, const CallstackFrame& frame) override;
    void OutputText(const char* text) override;
    void WriteHeader() override;

    /// A file that gathers what is written to it; flushed after each frame.
    class LogFile {
    public:
        explicit LogFile(const char* path);  ///< Opens for appending.
        ~LogFile();
        LogFile(const LogFile&) = delete;
        LogFile& operator=(const LogFile&) = delete;

        bool IsOpen() const;
        void Write(const char* text);
        void Flush();
        void Close();

    private:
        std::intptr_t m_descriptor;
        std::size_t m_size = 0;  // bytes in m_buffer
        char m_buffer[4096];
    };

    LogFile m_log;
    bool m_inFrame = false;
    bool m_firstOutput = true;
    bool m_writingHeader = false;
    std::uint32_t m_framesWritten = 0;  ///< Frames reported, those left out included.
    std::uint32_t m_framesLeftOut = 0;  ///< How many leading frames to leave out; a derived class may set it.
};

/// The report of a crash: its header has the code of the exception too. It is made of frames alone: what the log would
/// drop is not asked of a system that may be the one that crashed.
class DORVUTIL_API COrvExceptionStackWalker : public COrvStackWalker {
public:
    explicit COrvExceptionStackWalker(std::uint32_t exceptionCode);

protected:
    void WriteHeader() override;

private:
    const std::uint32_t m_exceptionCode;
};

}  // namespace dorvutil
