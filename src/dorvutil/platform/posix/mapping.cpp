#include "dorvutil/platform/mapping.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <new>

#include "dorvutil/platform/posix/named_object.h"
#include "dorvutil/platform/posix/path.h"

namespace dorvutil::platform {

struct SharedMemoryObject {
    NamedObject* named;
};

namespace {

constexpr std::uint64_t kRounding = 64;  // named memory comes in such steps; sizes that differ less are one size

// The system wants the size of a view back when it ends; the interface hands over its address alone.
struct View {
    const void* address;
    std::uint64_t size;
    NamedObject* named;  // null for a file
    View* next;
};

constinit pthread_mutex_t g_guard = PTHREAD_MUTEX_INITIALIZER;
constinit View* g_views = nullptr;  // guarded by g_guard

bool Record(const void* address, std::uint64_t size, NamedObject* named) {
    auto* const view = new (std::nothrow) View{address, size, named, nullptr};
    if (!view) return false;
    ::pthread_mutex_lock(&g_guard);
    view->next = g_views;
    g_views = view;
    ::pthread_mutex_unlock(&g_guard);
    return true;
}

// Takes the record of one view at `address` out of the list; the caller deletes it.
View* TakeRecord(const void* address) {
    ::pthread_mutex_lock(&g_guard);
    View** link = &g_views;
    while (*link && (*link)->address != address) link = &(*link)->next;
    View* const view = *link;
    if (view) *link = view->next;
    ::pthread_mutex_unlock(&g_guard);
    return view;
}

const void* MapDescriptor(int descriptor, std::uint64_t& size) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0) return nullptr;
    const auto bytes = static_cast<std::uint64_t>(status.st_size);
    void* const address = ::mmap(nullptr, bytes, PROT_READ, MAP_SHARED, descriptor, 0);
    if (address == MAP_FAILED) return nullptr;
    if (!Record(address, bytes, nullptr)) {
        ::munmap(address, bytes);
        return nullptr;
    }
    size = bytes;
    return address;
}

bool NothingToConstruct(void*, const void*) { return true; }

}  // namespace

const void* MapFile(const char16_t* path, std::uint64_t& size) {
    // Without O_NONBLOCK a pipe of that name would hold the caller up.
    const int descriptor = ::open(NativePath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return nullptr;
    const void* const view = MapDescriptor(descriptor, size);
    ::close(descriptor);
    return view;
}

SharedMemoryObject* OpenSharedMemory(const char16_t* name, std::uint32_t size) {
    if (!name || !*name || size == 0) return nullptr;
    auto* const object = new (std::nothrow) SharedMemoryObject{};
    if (!object) return nullptr;
    const std::uint64_t rounded = (size + kRounding - 1) / kRounding * kRounding;
    object->named = OpenNamed({'s', static_cast<std::size_t>(rounded), NothingToConstruct, nullptr}, name, nullptr);
    if (object->named) return object;
    delete object;
    return nullptr;
}

void CloseSharedMemory(SharedMemoryObject* object) {
    if (!object) return;
    CloseNamed(object->named);
    delete object;
}

void* MapSharedMemory(SharedMemoryObject* object) {
    if (!object) return nullptr;
    void* const address = BodyOf(object->named);
    if (!Record(address, 0, object->named)) return nullptr;
    ReopenNamed(object->named);
    return address;
}

bool UnmapView(const void* view) {
    View* const record = view ? TakeRecord(view) : nullptr;
    if (!record) return false;
    if (record->named) {
        CloseNamed(record->named);
    } else {
        ::munmap(const_cast<void*>(record->address), record->size);
    }
    delete record;
    return true;
}

}  // namespace dorvutil::platform
