#include <algorithm>
#include <atomic>
#include <cstring>
#include <string_view>

#include "dorvutil/platform/mapping.h"
#include "dorvutil/platform/network.h"
#include "dorvutil/platform/process.h"
#include "dorvutil/platform/system_facts.h"
#include "dorvutil/platform/thread.h"
#include "dorvutil/platform/user_locale.h"
#include "dorvutil/system/mac_text.h"
#include "dorvutil/system/number_format.h"
#include "dorvutil/system/os_version.h"
#include "dorvutil/system/system_mgr.h"
#include "dorvutil/system/text_out.h"
#include "dorvutil/system/volume_serial.h"
#include "dorvutil/text/encoding.h"

namespace dorvutil {
namespace {

constexpr double kKBPerByte = 0.0009765625;
constexpr std::int32_t kNumberTextSize = 255;   // units of a number on its way to the narrow form
constexpr std::uint32_t kLocaleTextSize = 256;  // bytes
constexpr std::size_t kMostInterfaces = 64;
constexpr std::size_t kHostNameSize = 255;  // bytes with the end mark
constexpr std::uint32_t kInvariantLocale = 0x7F;
constexpr std::uint32_t kUserLocales[] = {0, 0x400, 0x800};

constinit std::atomic<std::uint32_t> g_volumeSerial{0};

template <class T, class V>
void Put(T* out, V value) {
    if (out) *out = static_cast<T>(value);
}

bool PutKB(double* out, std::uint64_t bytes) {
    *out = static_cast<double>(bytes) * kKBPerByte;
    return true;
}

std::uint32_t Saturated(std::uint64_t value) {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(value, 0xFFFFFFFFu));
}

std::u16string_view View(const char16_t* text) { return text ? std::u16string_view(text) : std::u16string_view(); }

// A text of the system's locale in UTF-16.
template <std::uint32_t Size>
void Widen(const char* text, char16_t (&out)[Size]) {
    ORVConvertUTF8toUTF16(text, static_cast<std::uint32_t>(std::strlen(text)), out, Size - 1);
    out[Size - 1] = u'\0';
}

}  // namespace

std::int32_t COrvSystemMgrWin::GetOSVersion(std::int32_t* platform, char16_t* text, std::int32_t size) {
    platform::OsVersion version;
    if (!platform::QueryOsVersion(version)) return -1;
    char16_t name[kOsTextSize];
    const std::int32_t code = DescribeOs(version, name);
    Put(platform, code);
    CopyOut(name, text, size);
    return code != 0 ? 0 : -1;
}

bool COrvSystemMgrWin::GetMemoryStatus(double* availPhysKB, double* availVirtKB, double* freeDiskKB,
                                       const ORVustring& path) {
    // Each is asked on its own, so that one that fails keeps nothing back of the others.
    platform::MemoryFacts memory;
    const bool physical =
        !availPhysKB || (platform::QueryMemory(memory) && PutKB(availPhysKB, memory.availablePhysical));
    std::uint64_t addresses = 0;
    const bool addressSpace = !availVirtKB || (platform::QueryAddressSpace(addresses) && PutKB(availVirtKB, addresses));
    platform::DriveSpace space;
    const bool disk =
        !freeDiskKB || (platform::QueryDriveSpace(ORVwstring(path).T_str(), space) && PutKB(freeDiskKB, space.free));
    return physical && addressSpace && disk;
}

std::int32_t COrvSystemMgrWin::GetLocalNumberStr(const char* number, char* out, std::int32_t size,
                                                 std::int32_t decimals, const char* decimalSep) {
    if (!number || size < 0) return 0;
    char16_t text[kNumberTextSize];
    const ORVwstring separator(decimalSep, -1);
    const std::int32_t units = GetLocalNumberStrW(ORVwstring(number, -1).T_str(), text, kNumberTextSize, decimals,
                                                  decimalSep ? separator.T_str() : nullptr);
    if (units == 0) return 0;
    const auto count = static_cast<std::uint32_t>(units) - 1;
    const auto needed = static_cast<std::int32_t>(GetNumBytesConvertedToUTF8(text, count)) + 1;
    if (size == 0) return needed;
    if (!out || size < needed) return 0;
    return ORVConvertUTF16toUTF8(text, count, out, static_cast<std::uint32_t>(size)) ? needed : 0;
}

std::int32_t COrvSystemMgrWin::GetLocalNumberStrW(const char16_t* number, char16_t* out, std::int32_t size,
                                                  std::int32_t decimals, const char16_t* decimalSep) {
    if (!number || size < 0) return 0;
    platform::LocaleNumbers locale;
    platform::QueryLocaleNumbers(locale);
    char16_t decimal[std::size(locale.decimal) + 1], thousands[std::size(locale.thousands) + 1];
    Widen(locale.decimal, decimal);
    Widen(locale.thousands, thousands);
    const std::int32_t usual = HasFraction(number) ? locale.digits : 0;
    const NumberFormat format{decimalSep ? View(decimalSep) : View(decimal), View(thousands),
                              decimals >= 0 ? decimals : usual, locale.negativeOrder};
    return FormatNumber(number, format, out, size);
}

void COrvSystemMgrWin::GetSystemInfo(std::uint32_t* processorType, std::uint16_t* revision, std::uint32_t* count,
                                     std::uint32_t* oemId) {
    const platform::ProcessorFacts processor = platform::QueryProcessor();
    Put(processorType, processor.type);
    Put(revision, processor.revision);
    Put(count, platform::ProcessorCount());
    Put(oemId, processor.architecture);
}

bool COrvSystemMgrWin::GetUNCPath(const char16_t* path, char16_t* out, std::int32_t size) {
    return path && out && size > 0 && platform::QueryNetworkPath(path, out, static_cast<std::size_t>(size));
}

bool COrvSystemMgrWin::HasPCMCIASupport() { return platform::HasPcmciaBus(); }

std::int32_t COrvSystemMgrWin::GetLocaleInfo(std::uint32_t locale, std::uint32_t type, char16_t* out,
                                             std::int32_t size) {
    const bool invariant = locale == kInvariantLocale;
    const bool known = invariant || std::count(std::begin(kUserLocales), std::end(kUserLocales), locale) != 0;
    char text[kLocaleTextSize];
    if (!known || size < 0 || !platform::QueryLocaleText(invariant, type, text, sizeof(text))) return 0;
    char16_t wide[kLocaleTextSize];
    Widen(text, wide);
    return CopyWhole(wide, out, size);
}

bool COrvSystemMgrWin::GetFileVersion(const char16_t* file, char16_t* out, std::int32_t size) {
    COrvSystemMgrBase::GetFileVersion(file, out, size);
    std::uint16_t parts[4];
    if (!file || !platform::QueryFileVersion(file, parts)) return false;
    const ORVustring text = ORVustring::printf("%d.%d.%d.%d", parts[0], parts[1], parts[2], parts[3]);
    return CopyOut(text.wc_str(), out, size);
}

bool COrvSystemMgrWin::GetMACAddress(char* text, std::int32_t size) {
    platform::EthernetAddress addresses[kMostInterfaces];
    const std::size_t count = platform::QueryEthernetAddresses(addresses, kMostInterfaces);
    char mac[kMacTextSize];
    if (!text || size < static_cast<std::int32_t>(kMacTextSize) || !FirstMacText(addresses, count, mac)) return false;
    std::memcpy(text, mac, kMacTextSize);
    return true;
}

std::int32_t COrvSystemMgrWin::GetVolumeSerialNumber(const char16_t*, std::uint32_t* serial) {
    static constexpr VolumeQueries kQueries{platform::QuerySystemVolumeId, platform::QuerySystemVolumeIdByFile};
    return FindVolumeSerial(kQueries, g_volumeSerial, serial);
}

std::int32_t COrvSystemMgrWin::GetHostName(char* name, char* address) {
    char hostName[kHostNameSize];
    char hostAddress[16];
    if (!platform::QueryHostName(hostName, sizeof(hostName)) || !platform::QueryHostAddress(hostAddress)) return -1;
    if (name) std::strcpy(name, hostName);
    if (address) std::strcpy(address, hostAddress);
    return 0;
}

void* COrvSystemMgrWin::MemoryMapFile(const char* path, std::uint64_t* size) {
    if (!path) return nullptr;
    std::uint64_t bytes = 0;
    const void* const view = platform::MapFile(ORVwstring(path, -1).T_str(), bytes);
    if (view) Put(size, bytes);
    return const_cast<void*>(view);
}

bool COrvSystemMgrWin::MemoryUnMapFile(void* view) { return platform::UnmapView(view); }

// The protection binds the users of the block (SharedMemory); a view is always for reading and writing.
MemoryMapHandle COrvSystemMgrWin::CreateSharedMemMapping(const char* name, std::uint32_t size, MemoryMap_Protection) {
    return name ? platform::OpenSharedMemory(ORVwstring(name, -1).T_str(), size) : nullptr;
}

void* COrvSystemMgrWin::MapMemView(MemoryMapHandle mapping) {
    return platform::MapSharedMemory(static_cast<platform::SharedMemoryObject*>(mapping));
}

std::uint32_t COrvSystemMgrWin::GetProcessId() { return platform::ProcessId(); }

bool COrvSystemMgrWin::GetMemorySize(std::uint32_t* storageBytes, std::uint32_t* ramBytes) {
    platform::MemoryFacts memory;
    if (ramBytes && platform::QueryMemory(memory)) *ramBytes = Saturated(memory.totalPhysical);
    platform::DriveSpace space;
    if (!platform::QueryDriveSpace(nullptr, space)) return false;
    Put(storageBytes, space.total);
    return true;
}

}  // namespace dorvutil
