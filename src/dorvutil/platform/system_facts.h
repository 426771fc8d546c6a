#pragma once

#include <cstddef>
#include <cstdint>

/// What the machine and its operating system are. Every query asks the system anew; a failed one leaves its output as
/// it was. Any thread.
namespace dorvutil::platform {

enum class OsFamily {
    kUnknown,  ///< A Windows of a kind that has no name here.
    kDosBased,
    kNt,
    kOther,  ///< Not Windows.
};

struct OsVersion {
    OsFamily family;
    char16_t name[64];  ///< Of the system itself; used for kOther.
    std::int32_t major;
    std::int32_t minor;
    char16_t servicePack[128];
    bool tabletPc;
};
bool QueryOsVersion(OsVersion& version);

/// In bytes.
struct MemoryFacts {
    std::uint64_t totalPhysical;
    std::uint64_t availablePhysical;  ///< What a program can get without swapping.
};
bool QueryMemory(MemoryFacts& memory);

/// Bytes this process has not used of the addresses it may use.
bool QueryAddressSpace(std::uint64_t& available);

/// Added to the available physical memory from now on, not below 0 (tests only; 0 restores the truth). Any thread.
void ShiftAvailableMemory(std::int64_t bytes);

/// Of the drive that holds `path` (null or empty: the current folder), in bytes.
struct DriveSpace {
    std::uint64_t total;
    std::uint64_t free;
};
bool QueryDriveSpace(const char16_t* path, DriveSpace& space);

struct ProcessorFacts {
    std::uint32_t type;          ///< 8664: x86-64; 0: other.
    std::uint16_t revision;      ///< Model * 256 + stepping.
    std::uint32_t architecture;  ///< 9: x86-64, 12: ARM64, 0xFFFF: other.
};
ProcessorFacts QueryProcessor();

/// The first display that is connected, in pixels; bitsPerPixel is 0 when the system does not tell.
struct DisplayFacts {
    std::int32_t width;
    std::int32_t height;
    std::int32_t bitsPerPixel;
};
bool QueryDisplay(DisplayFacts& display);

bool HasTouchscreen();
bool HasPcmciaBus();

/// The serial of the volume the system itself lies on, by the volume's own account, respectively by that of the first
/// regular file in its root folder that says so. May be 0.
bool QuerySystemVolumeId(std::uint32_t& id);
bool QuerySystemVolumeIdByFile(std::uint32_t& id);

/// The version a program or library file carries, most significant part first; false when it has none.
bool QueryFileVersion(const char16_t* path, std::uint16_t (&parts)[4]);

}  // namespace dorvutil::platform
