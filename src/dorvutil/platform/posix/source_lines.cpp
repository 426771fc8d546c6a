#include "dorvutil/platform/posix/source_lines.h"

// The compiler that builds has the header; one that only looks at the source may not.
#if defined(DORVUTIL_HAS_BACKTRACE) && __has_include(<backtrace.h>)

#include <backtrace.h>

#include <atomic>

#include "dorvutil/platform/posix/text_copy.h"

namespace dorvutil::platform {
namespace {

constinit std::atomic<backtrace_state*> g_state{nullptr};

// Called from the inlined code outwards: the first call has the line, the last one the function.
int OnPlace(void* user, std::uintptr_t, const char* file, int line, const char* function) {
    auto& place = *static_cast<SourcePlace*>(user);
    if (!*place.file && file && line > 0) {
        CopyText(file, place.file);
        place.line = line;
    }
    if (function) CopyText(function, place.function);
    return 0;
}

void OnError(void*, const char*, int) {}

}  // namespace

// The state is for good: the library has no way of giving it back. What it reads it reads with the first question.
void PrepareSourceLines() {
    if (!g_state.load()) g_state.store(::backtrace_create_state(nullptr, 1, OnError, nullptr));
}

bool FindSourcePlace(std::uintptr_t address, SourcePlace& place) {
    place.file[0] = place.function[0] = '\0';
    place.line = 0;
    backtrace_state* const state = g_state.load();
    if (state) ::backtrace_pcinfo(state, address, OnPlace, OnError, &place);
    return place.line != 0;
}

}  // namespace dorvutil::platform

#else

namespace dorvutil::platform {

void PrepareSourceLines() {}

bool FindSourcePlace(std::uintptr_t, SourcePlace& place) {
    place.file[0] = place.function[0] = '\0';
    place.line = 0;
    return false;
}

}  // namespace dorvutil::platform

#endif
