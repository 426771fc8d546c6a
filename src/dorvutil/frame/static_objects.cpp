// Every static object of the library that needs construction, in the order of construction; at unload they go in
// reverse order, the registry last. No other file may have one.
#include <bit>
#include <cstdint>
#include <cstdlib>

#include "dorvutil/frame/random_state.h"
#include "dorvutil/frame/registry.h"
#include "dorvutil/platform/clock.h"
#include "dorvutil/platform/thread.h"
#include "dorvutil/system/crash_log.h"
#include "dorvutil/text/empty_strings.h"

namespace dorvutil {
namespace {

ORVUtilGlobals g_registry;
CRandState g_random;

std::uint32_t Random32() { return static_cast<std::uint32_t>(std::rand()); }

std::uint32_t AddressBits(const void* address) {
    return static_cast<std::uint32_t>(std::bit_cast<std::uintptr_t>(address));
}

}  // namespace

CRandState::CRandState() {
    const std::uint32_t onStack = Random32();
    std::srand(onStack ^ platform::TickCount() ^ platform::CurrentThreadId() ^ AddressBits(this) ^
               AddressBits(&onStack));
    for (std::uint32_t& word : m_words) {
        word = Random32() << 16;
        word ^= Random32();
    }
}

// Constant from the start; compilers may still register their empty destructors.
constinit EmptyStrings::Holder<ORVustring> EmptyStrings::s_narrow;
constinit EmptyStrings::Holder<ORVwstring> EmptyStrings::s_wide;

namespace {

CrashLogSetup g_crashLog;

}  // namespace

CRandState& RandomState() { return g_random; }

ORVUtilGlobals* GetORVUtilGlobals() { return &g_registry; }

}  // namespace dorvutil
