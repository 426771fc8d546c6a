#include "dorvutil/system/crash_log.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <new>

#include "dorvutil/concurrency/crash_reporter.h"
#include "dorvutil/platform/descriptor.h"
#include "dorvutil/platform/file.h"
#include "dorvutil/platform/stack_trace.h"
#include "dorvutil/system/stack_walker.h"

namespace dorvutil {
namespace {

constexpr char kSymbolPathFile[] = "./orvsymbolpath.txt";

constinit critSec g_section;
constinit std::atomic<bool> g_sectionReady{false};
constinit std::atomic<const char*> g_symbolPath{nullptr};  // owned; changed under the section

void ReportCrash(std::uint32_t code, void* context) {
    COrvExceptionStackWalker walker(code);
    walker.TraceCallstack(0, context);
}

// All that is in the file, ended; null when there is none, or no memory.
const char* ReadSymbolPath() {
    platform::FileStatus status;
    // Opening a pipe would wait for whoever writes to it.
    if (!platform::GetFileStatus(kSymbolPathFile, status) || status.m_directory || status.m_device) return nullptr;
    const platform::Descriptor file = platform::OpenDescriptor(kSymbolPathFile, platform::OpenMode::kRead, true);
    if (file == platform::kNoDescriptor) return nullptr;
    const auto size = static_cast<std::size_t>(status.m_size);
    std::unique_ptr<char[]> text(new (std::nothrow) char[size + 1]);
    std::size_t used = 0;
    while (text && used < size) {
        const std::int64_t got = platform::ReadDescriptor(file, text.get() + used, size - used);
        if (got <= 0) break;
        used += static_cast<std::size_t>(got);
    }
    platform::CloseDescriptor(file);
    if (text) text[used] = '\0';
    return text.release();
}

}  // namespace

CrashLogSetup::CrashLogSetup() {
    g_symbolPath.store(ReadSymbolPath());
    g_sectionReady.store(true);
    platform::PrepareStackTrace();
    SetCrashReporter(ReportCrash);
}

// The reporter stays: what else is torn down after this may crash too.
CrashLogSetup::~CrashLogSetup() {
    const TScopedLock<critSec> lock(g_section);
    delete[] g_symbolPath.exchange(nullptr);
}

const critSec* CrashLogSection() { return g_sectionReady.load() ? &g_section : nullptr; }

const char* UserSymbolPath() { return g_symbolPath.load(); }

}  // namespace dorvutil
