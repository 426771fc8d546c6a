#include "dorvutil/platform/posix/named_object.h"

#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>

namespace dorvutil::platform {

// A name is a POSIX shared memory object. Each process that has it open holds a shared file lock on it, which the
// system takes away however the process ends. Who gets the lock exclusively is alone: at opening it makes the contents
// new (whatever a dead process left there), at closing it takes the name away.
struct NamedObject {
    explicit NamedObject(const NamedKind& ofKind) : kind(ofKind) {}

    const NamedKind kind;
    NamedObject* next = nullptr;
    std::uint32_t openings = 1;
    pid_t opener = 0;
    int descriptor = -1;
    void* mapping = nullptr;
    std::size_t size = 0;
    char file[NAME_MAX + 1] = {};
};

namespace {

constexpr std::uint32_t kMagic = 0x4F56524Fu;
constexpr std::size_t kAlignment = 64;
constexpr std::size_t kLongestReadableName = 160;  // bytes of a name that is spelled out in the file name
constexpr int kMostAttempts = 1000;                // each is lost to another process that opens or closes just then

// Start of the memory; the body and then the name follow, each at a multiple of kAlignment.
struct Header {
    std::uint32_t magic;  // written last
    std::uint32_t nameUnits;
    std::uint64_t bodySize;
};
static_assert(sizeof(Header) <= kAlignment);

constexpr std::size_t RoundUp(std::size_t size) { return (size + kAlignment - 1) / kAlignment * kAlignment; }

struct Request {
    const NamedKind& kind;
    std::u16string_view name;
    const void* setting;

    std::size_t NameOffset() const { return kAlignment + RoundUp(kind.bodySize); }
    std::size_t Size() const { return NameOffset() + name.size() * sizeof(char16_t); }
};

constinit pthread_mutex_t g_guard = PTHREAD_MUTEX_INITIALIZER;
constinit NamedObject* g_open = nullptr;  // guarded by g_guard

class Guard {
public:
    Guard() { ::pthread_mutex_lock(&g_guard); }
    ~Guard() { ::pthread_mutex_unlock(&g_guard); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
};

constexpr bool IsPlain(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9') ||
           unit == u'_' || unit == u'-' || unit == u'.';
}

// FNV-1a over the name's bytes (Fowler, Noll, Vo).
std::uint64_t HashOf(std::u16string_view name, std::uint64_t hash) {
    for (const char16_t unit : name) {
        hash = (hash ^ (unit & 0xFFu)) * 0x100000001B3u;
        hash = (hash ^ (unit >> 8u)) * 0x100000001B3u;
    }
    return hash;
}

// Spells the name out with everything unusual as %XXXX; false when that is too long.
bool SpellOut(std::u16string_view name, char* out) {
    const char* const end = out + kLongestReadableName;
    for (const char16_t unit : name) {
        if (end - out < 5) return false;
        if (IsPlain(unit)) {
            *out++ = static_cast<char>(unit);
        } else {
            out += std::snprintf(out, 6, "%%%04X", static_cast<unsigned>(unit));
        }
    }
    *out = '\0';
    return true;
}

// One user's objects do not meet another's. A long name is told by two hashes and its length; should that ever not
// suffice, the name kept inside shows it and the second one is refused.
void MakeFileName(const Request& request, char (&file)[NAME_MAX + 1]) {
    char spelled[kLongestReadableName + 8];
    const auto user = static_cast<unsigned>(::geteuid());
    if (SpellOut(request.name, spelled)) {
        std::snprintf(file, sizeof(file), "/dorvutil.%u.%c.n.%s", user, request.kind.letter, spelled);
        return;
    }
    std::snprintf(file, sizeof(file), "/dorvutil.%u.%c.h.%016llX%016llX%zX", user, request.kind.letter,
                  static_cast<unsigned long long>(HashOf(request.name, 0xCBF29CE484222325u)),
                  static_cast<unsigned long long>(HashOf(request.name, 0x9E3779B97F4A7C15u)), request.name.size());
}

bool Flock(int descriptor, int operation) {
    int result = 0;
    do {
        result = ::flock(descriptor, operation);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

// False when the object is not this user's or its name is already gone.
bool IsOurs(int descriptor, struct stat& status) {
    return ::fstat(descriptor, &status) == 0 && status.st_nlink != 0 && status.st_uid == ::geteuid();
}

void* Map(int descriptor, std::size_t size) {
    void* const mapping = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    return mapping == MAP_FAILED ? nullptr : mapping;
}

// Makes the contents new; only while alone.
bool Initialise(int descriptor, const Request& request) {
    const std::size_t size = request.Size();
    // The memory is taken now: later, a lack of it would end the process at its first access.
    if (::ftruncate(descriptor, 0) != 0 || ::posix_fallocate(descriptor, 0, static_cast<off_t>(size)) != 0)
        return false;
    auto* const base = static_cast<char*>(Map(descriptor, size));
    if (!base) return false;
    std::memcpy(base + request.NameOffset(), request.name.data(), request.name.size() * sizeof(char16_t));
    const bool constructed = request.kind.construct(base + kAlignment, request.setting);
    if (constructed) {
        const Header header{kMagic, static_cast<std::uint32_t>(request.name.size()), request.kind.bodySize};
        std::memcpy(base, &header, sizeof(header));
    }
    ::munmap(base, size);
    return constructed;
}

enum class Attempt { kDone, kAgain, kRefused };

// With the shared lock held: maps the memory if it is what the request names.
Attempt Attach(NamedObject& object, const Request& request) {
    struct stat status {};
    if (!IsOurs(object.descriptor, status)) return Attempt::kAgain;
    const auto size = static_cast<std::size_t>(status.st_size);
    if (size < kAlignment) return Attempt::kAgain;
    auto* const base = static_cast<char*>(Map(object.descriptor, size));
    if (!base) return Attempt::kRefused;
    Header header{};
    std::memcpy(&header, base, sizeof(header));
    const bool whole = header.magic == kMagic;
    const bool same = whole && size == request.Size() && header.bodySize == request.kind.bodySize &&
                      header.nameUnits == request.name.size() &&
                      std::memcmp(base + request.NameOffset(), request.name.data(), size - request.NameOffset()) == 0;
    if (!same) {
        ::munmap(base, size);
        return whole ? Attempt::kRefused : Attempt::kAgain;
    }
    object.mapping = base;
    object.size = size;
    return Attempt::kDone;
}

// One try at opening. Turning a file lock from exclusive into shared lets others in between; whatever they did (opened,
// made new once more, closed and removed the name) is seen by Attach, which looks with the shared lock held.
Attempt TryOpen(NamedObject& object, const Request& request) {
    object.descriptor = ::shm_open(object.file, O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (object.descriptor < 0) return Attempt::kRefused;
    struct stat status {};
    Attempt attempt = Attempt::kAgain;
    if (::fstat(object.descriptor, &status) != 0 || status.st_uid != ::geteuid()) {
        attempt = Attempt::kRefused;
    } else {
        const bool alone = Flock(object.descriptor, LOCK_EX | LOCK_NB);
        if (alone && IsOurs(object.descriptor, status) && !Initialise(object.descriptor, request)) {
            ::shm_unlink(object.file);
            attempt = Attempt::kRefused;
        } else if (Flock(object.descriptor, LOCK_SH)) {
            attempt = Attach(object, request);
        }
    }
    if (attempt != Attempt::kDone) ::close(object.descriptor);
    return attempt;
}

NamedObject* FindOpen(const char* file) {
    for (NamedObject* object = g_open; object; object = object->next) {
        if (object->opener == ::getpid() && std::strcmp(object->file, file) == 0) return object;
    }
    return nullptr;
}

bool HasName(const NamedObject& object, const Request& request) {
    return object.size == request.Size() && std::memcmp(static_cast<const char*>(object.mapping) + request.NameOffset(),
                                                        request.name.data(), object.size - request.NameOffset()) == 0;
}

}  // namespace

NamedObject* OpenNamed(const NamedKind& kind, const char16_t* name, const void* setting) {
    const Request request{kind, name, setting};
    auto* const object = new (std::nothrow) NamedObject(kind);
    if (!object) return nullptr;
    MakeFileName(request, object->file);
    object->opener = ::getpid();

    const Guard guard;
    if (NamedObject* const known = FindOpen(object->file)) {
        delete object;
        if (!HasName(*known, request)) return nullptr;
        ++known->openings;
        return known;
    }
    Attempt attempt = Attempt::kAgain;
    for (int i = 0; i < kMostAttempts && attempt == Attempt::kAgain; ++i) {
        if (i != 0) ::sched_yield();
        attempt = TryOpen(*object, request);
    }
    if (attempt != Attempt::kDone) {
        delete object;
        return nullptr;
    }
    object->next = g_open;
    g_open = object;
    return object;
}

void ReopenNamed(NamedObject* object) {
    const Guard guard;
    ++object->openings;
}

void* BodyOf(NamedObject* object) { return static_cast<char*>(object->mapping) + kAlignment; }

void CloseNamed(NamedObject* object) {
    const Guard guard;
    if (--object->openings != 0) return;
    NamedObject** link = &g_open;
    while (*link != object) link = &(*link)->next;
    *link = object->next;
    if (object->kind.leave) object->kind.leave(BodyOf(object));
    ::munmap(object->mapping, object->size);
    // A forked process shares its parent's lock and must not judge by it.
    const bool mayJudge = object->opener == ::getpid();
    if (mayJudge && Flock(object->descriptor, LOCK_EX | LOCK_NB)) ::shm_unlink(object->file);
    ::close(object->descriptor);
    delete object;
}

}  // namespace dorvutil::platform
