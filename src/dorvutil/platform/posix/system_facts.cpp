#include "dorvutil/platform/system_facts.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>

#include "dorvutil/platform/posix/directory_scan.h"
#include "dorvutil/platform/posix/path.h"
#include "dorvutil/platform/posix/text_file.h"
#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace dorvutil::platform {
namespace {

constexpr std::uint64_t kUserAddresses = std::uint64_t{1} << 47;  // what the kernel gives a 64-bit process by default
constexpr char kRoot[] = "/";

constinit std::atomic<std::int64_t> g_memoryShift{0};

std::uint64_t Shifted(std::uint64_t bytes) {
    const std::int64_t shift = g_memoryShift.load(std::memory_order_relaxed);
    const auto step = static_cast<std::uint64_t>(shift);
    if (shift >= 0) return bytes + step;
    return bytes > 0 - step ? bytes + step : 0;
}

// Lines such as "MemTotal:       24684096 kB".
bool ReadMemInfo(std::uint64_t& total, std::uint64_t& available) {
    LineReader lines("/proc/meminfo");
    bool haveTotal = false, haveAvailable = false;
    while (const char* const line = lines.Next()) {
        if (const char* const size = Behind(line, "MemTotal:")) haveTotal = ReadNumber(size, total);
        if (const char* const size = Behind(line, "MemAvailable:")) haveAvailable = ReadNumber(size, available);
        if (haveTotal && haveAvailable) break;
    }
    total *= 1024;
    available *= 1024;
    return haveTotal && haveAvailable;
}

}  // namespace

bool QueryOsVersion(OsVersion& version) {
    utsname names{};
    if (::uname(&names) != 0) return false;
    version = {};
    version.family = OsFamily::kOther;
    for (std::size_t i = 0; names.sysname[i] != '\0' && i + 1 < std::size(version.name); ++i) {
        version.name[i] = static_cast<unsigned char>(names.sysname[i]);
    }
    std::uint64_t major = 0, minor = 0;
    const char* rest = nullptr;
    if (ReadNumber(names.release, major, &rest) && *rest == '.') ReadNumber(rest + 1, minor);
    version.major = static_cast<std::int32_t>(major);
    version.minor = static_cast<std::int32_t>(minor);
    return true;
}

bool QueryMemory(MemoryFacts& memory) {
    MemoryFacts found{};
    if (!ReadMemInfo(found.totalPhysical, found.availablePhysical)) return false;
    found.availablePhysical = Shifted(found.availablePhysical);
    memory = found;
    return true;
}

void ShiftAvailableMemory(std::int64_t bytes) { g_memoryShift.store(bytes, std::memory_order_relaxed); }

bool QueryAddressSpace(std::uint64_t& available) {
    LineReader lines("/proc/self/statm");
    const char* const line = lines.Next();
    std::uint64_t pages = 0;
    if (!line || !ReadNumber(line, pages)) return false;
    std::uint64_t most = kUserAddresses;
    rlimit limit{};
    if (::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
        most = std::min<std::uint64_t>(most, limit.rlim_cur);
    }
    const std::uint64_t used = pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    available = used < most ? most - used : 0;
    return true;
}

bool QueryDriveSpace(const char16_t* path, DriveSpace& space) {
    struct statvfs status {};
    const bool here = !path || !*path;
    if (::statvfs(here ? "." : NativePath(path).c_str(), &status) != 0) return false;
    space.total = std::uint64_t{status.f_blocks} * status.f_frsize;
    space.free = std::uint64_t{status.f_bfree} * status.f_frsize;
    return true;
}

ProcessorFacts QueryProcessor() {
#if defined(__x86_64__)
    unsigned signature = 0, b = 0, c = 0, d = 0;
    ::__get_cpuid(1, &signature, &b, &c, &d);
    const unsigned family = signature >> 8 & 0xF;
    unsigned model = signature >> 4 & 0xF;
    if (family == 0x6 || family == 0xF) model |= signature >> 12 & 0xF0;
    return {8664, static_cast<std::uint16_t>(model << 8 | (signature & 0xF)), 9};
#elif defined(__aarch64__)
    return {0, 0, 12};
#else
    return {0, 0, 0xFFFF};
#endif
}

bool HasPcmciaBus() { return ::access("/sys/bus/pcmcia", F_OK) == 0; }

bool QuerySystemVolumeId(std::uint32_t& id) {
    struct statfs status {};
    if (::statfs(kRoot, &status) != 0) return false;
    std::uint32_t halves[2];
    static_assert(sizeof(halves) == sizeof(status.f_fsid));
    std::memcpy(halves, &status.f_fsid, sizeof(halves));
    id = halves[0] ^ halves[1];
    return true;
}

bool QuerySystemVolumeIdByFile(std::uint32_t& id) {
    return AnyEntry(kRoot, [&](const char* name) {
        char path[512];
        std::snprintf(path, sizeof(path), "%s%s", kRoot, name);
        struct stat status {};
        if (::lstat(path, &status) != 0 || !S_ISREG(status.st_mode)) return false;
        id = static_cast<std::uint32_t>(status.st_dev ^ status.st_dev >> 32);
        return true;
    });
}

}  // namespace dorvutil::platform
