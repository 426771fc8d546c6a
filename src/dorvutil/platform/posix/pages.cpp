#include "dorvutil/platform/pages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <atomic>

namespace dorvutil::platform {
namespace {

constinit std::atomic<std::size_t> g_committed{0};
constinit std::atomic<bool> g_refused{false};

bool IsRefused() { return g_refused.load(std::memory_order_relaxed); }

void Count(std::size_t more, std::size_t less) { g_committed.fetch_add(more - less, std::memory_order_relaxed); }

}  // namespace

std::size_t PageSize() { return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)); }

bool CommitPages(void* base, std::size_t size) {
    if (IsRefused() || ::mprotect(base, size, PROT_READ | PROT_WRITE) != 0) return false;
    Count(size, 0);
    return true;
}

bool DecommitPages(void* base, std::size_t size) {
    // A new mapping in place of the old one drops its memory and what the system had set aside for it in one step.
    const int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED;
    if (::mmap(base, size, PROT_NONE, flags, -1, 0) == MAP_FAILED) return false;
    Count(0, size);
    return true;
}

void* MapPages(std::size_t size) {
    if (IsRefused()) return nullptr;
    void* const base = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED) return nullptr;
    Count(size, 0);
    return base;
}

void UnmapPages(void* base, std::size_t size) {
    ::munmap(base, size);
    Count(0, size);
}

void* RemapPages(void* base, std::size_t oldSize, std::size_t newSize) {
    if (IsRefused()) return nullptr;
    void* const moved = ::mremap(base, oldSize, newSize, MREMAP_MAYMOVE);
    if (moved == MAP_FAILED) return nullptr;
    Count(newSize, oldSize);
    return moved;
}

std::size_t CommittedBytes() { return g_committed.load(std::memory_order_relaxed); }

void RefusePages(bool refuse) { g_refused.store(refuse, std::memory_order_relaxed); }

}  // namespace dorvutil::platform
