#pragma once

#include <cstdint>

#include "dorvutil/concurrency/locks.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

/// What the library asks of the system it runs on, behind virtual operations so that another platform can supply its
/// own manager. The functions of system/system_info.h forward to the one instance (GetSystemMgr).
///
/// Everywhere: text outputs are `size` units with the end mark, cut to fit; outputs may be null when the caller does
/// not want them; a failed call leaves them as they were unless stated. Paths take `\` and `/`. Any thread.
namespace dorvutil {

/// What a shared memory block may be used for.
enum MemoryMap_Protection : std::uint32_t {
    eMemoryMapReadOnly = 2,   ///< SharedMemory refuses to write.
    eMemoryMapReadWrite = 4,  ///< Reading and writing.
};

/// A named shared memory block as one opener holds it.
using MemoryMapHandle = void*;

/// The system manager without a system: the interface, and the answers of a platform that cannot tell.
class DORVUTIL_API COrvSystemMgrBase {
public:
    COrvSystemMgrBase() = default;
    virtual ~COrvSystemMgrBase();
    COrvSystemMgrBase(const COrvSystemMgrBase&) = delete;
    COrvSystemMgrBase& operator=(const COrvSystemMgrBase&) = delete;

    /// Name and version of the operating system and its platform code (10 other; 11 to 20 the Windows versions that
    /// have a code of their own). 0; -1 when it is of an unknown kind (platform 0, text empty) or cannot be asked.
    virtual std::int32_t GetOSVersion(std::int32_t* platform, char16_t* text, std::int32_t size) = 0;
    /// 1; 0 without a buffer.
    virtual std::int32_t GetDeviceName(char16_t* text, std::int32_t size) = 0;
    virtual std::int32_t GetPlatformType(char16_t* text, std::int32_t size) = 0;
    /// Memory a program can get without swapping, address space left to this process, and free space of the drive that
    /// holds `path` (empty: the current folder), all in KB. Only what is asked for is looked up; false when any of it
    /// failed.
    virtual bool GetMemoryStatus(double* availPhysKB, double* availVirtKB, double* freeDiskKB,
                                 const ORVustring& path) = 0;
    /// As GetLocalNumberStrW, in UTF-8; results longer than 254 units fail.
    virtual std::int32_t GetLocalNumberStr(const char* number, char* out, std::int32_t size, std::int32_t decimals,
                                           const char* decimalSep) = 0;
    /// Formats `number` (an optional '-', digits, at most one '.') as the user's locale does: thousands grouped,
    /// rounded half up to `decimals` places (at most 9), with `decimalSep` or (null) the locale's. Negative `decimals`
    /// means the locale's count, or none when no digit follows a point. Returns the units written with the end mark;
    /// with `size` 0 the units needed; 0 for what is no number and when `out` is too small.
    virtual std::int32_t GetLocalNumberStrW(const char16_t* number, char16_t* out, std::int32_t size,
                                            std::int32_t decimals, const char16_t* decimalSep) = 0;
    /// Kind of processor (8664: x86-64; 0: other), model times 256 plus stepping, processors this process may use, and
    /// architecture (9: x86-64, 12: ARM64, 65535: other).
    virtual void GetSystemInfo(std::uint32_t* processorType, std::uint16_t* revision, std::uint32_t* count,
                               std::uint32_t* oemId) = 0;
    /// Opens a file or URL with the desktop's program for it; true when that was started, false without a desktop.
    virtual bool OpenDocument(const ORVustring& target) = 0;

    /// The network form ("\\server\share\…") of a path on a network drive; false for any other path, and when it does
    /// not fit.
    virtual bool GetUNCPath(const char16_t* path, char16_t* out, std::int32_t size);
    virtual bool HasPCMCIASupport();
    /// One text of a locale. `locale`: 0, 0x400 or 0x800 the user's, 0x7F the invariant one. `type`: a number of the
    /// Windows locale types for number format, currency sign, language and country code, and names of days and months.
    /// Returns the units written with the end mark, with `size` 0 the units needed; 0 for anything else and when `out`
    /// is too small.
    virtual std::int32_t GetLocaleInfo(std::uint32_t locale, std::uint32_t type, char16_t* out, std::int32_t size);
    /// "a.b.c.d", the version that a program or library file carries: the version resource of a Windows one, the
    /// package note of an ELF one, or else the number in the file name of a shared library. `out` is emptied first.
    /// False when it has none.
    virtual bool GetFileVersion(const char16_t* file, char16_t* out, std::int32_t size);
    /// The first usable Ethernet address as 12 lower-case hexadecimal digits; `size` at least 13.
    virtual bool GetMACAddress(char* text, std::int32_t size);
    /// Serial of the system's volume, whatever the path; kept once found. 0; -1 with serial 0.
    virtual std::int32_t GetVolumeSerialNumber(const char16_t* path, std::uint32_t* serial);
    /// The machine's name (room for 255 bytes) and first IPv4 address as dotted text (room for 16): 0 or -1. Asks no
    /// other machine.
    virtual std::int32_t GetHostName(char* name, char* address);
    /// Maps a file for reading; `size` receives its bytes. Null for a file that is missing, empty or no file. The
    /// mapping shows what others write to the file; reading beyond its end, should it be cut, is a fault. Ended by
    /// MemoryUnMapFile.
    [[nodiscard]] virtual void* MemoryMapFile(const char* path, std::uint64_t* size);
    /// Ends a view of either kind; false when it is none.
    virtual bool MemoryUnMapFile(void* view);
    /// Creates or opens memory shared by name with other processes of this user: `size` bytes, zero at first. Null
    /// without a name, for 0 bytes, and when the name exists in another size. It lives until its last opener closes it,
    /// ends or is killed. Ended by System_CloseSharedMemMapping; views live on.
    [[nodiscard]] virtual MemoryMapHandle CreateSharedMemMapping(const char* name, std::uint32_t size,
                                                                 MemoryMap_Protection protection);
    /// A view of all of it for reading and writing; null for null. Ended by MemoryUnMapFile.
    [[nodiscard]] virtual void* MapMemView(MemoryMapHandle mapping);
    virtual std::uint32_t GetProcessId();
    virtual bool IsTouchscreen();  ///< Whether a touch screen is connected.
    /// Pixels and colour depth of the display; they are left alone when none is connected, and a depth nobody tells is
    /// 0. Always false.
    virtual bool GetDisplayInfo(std::int32_t* width, std::int32_t* height, std::int32_t* bitsPerPixel);
    /// Size of the current drive (its low 32 bits) and of the memory (0xFFFFFFFF: that or more); true when the drive
    /// could be asked.
    virtual bool GetMemorySize(std::uint32_t* storageBytes, std::uint32_t* ramBytes);
    virtual bool ClearStatusByte(std::uint8_t* status);  ///< Sets the byte to 0; false.
    virtual bool GetPixelFormat(std::int32_t* format);   ///< False, as the next two: no desktop knows them.
    virtual bool GetIMEINumber(char16_t* text, std::int32_t size);
    virtual bool GetCarrier(char16_t* text, std::int32_t size);
    /// OpenDocument, then message 0 through the callback manager, whatever came of it.
    virtual void OpenDocumentAndQuit(const ORVustring& target);
    virtual void PlatformIdle();  ///< Nothing.
    virtual const char* GetBundleId();
    virtual ORVustring GetAppVersion();  ///< GetFileVersion of the running program; empty when it has none.
    virtual void Reserved();             ///< Nothing.

    /// What identifies this device: what the host set, else the Ethernet address, else empty.
    ORVustring GetDeviceId();
    void SetDeviceId(const ORVustring& id);
    /// Whom CheckIntConn asks, "host:port"; empty: nobody.
    ORVustring GetProbeAddress() const;
    void SetProbeAddress(const ORVustring& address);

private:
    critSec m_lock;
    ORVustring m_deviceId;      // guarded by m_lock
    ORVustring m_probeAddress;  // guarded by m_lock
};

/// What every desktop system answers the same way, from the platform layer.
class DORVUTIL_API COrvSystemMgrWin : public COrvSystemMgrBase {
public:
    std::int32_t GetOSVersion(std::int32_t* platform, char16_t* text, std::int32_t size) override;
    bool GetMemoryStatus(double* availPhysKB, double* availVirtKB, double* freeDiskKB, const ORVustring& path) override;
    std::int32_t GetLocalNumberStr(const char* number, char* out, std::int32_t size, std::int32_t decimals,
                                   const char* decimalSep) override;
    std::int32_t GetLocalNumberStrW(const char16_t* number, char16_t* out, std::int32_t size, std::int32_t decimals,
                                    const char16_t* decimalSep) override;
    void GetSystemInfo(std::uint32_t* processorType, std::uint16_t* revision, std::uint32_t* count,
                       std::uint32_t* oemId) override;
    bool GetUNCPath(const char16_t* path, char16_t* out, std::int32_t size) override;
    bool HasPCMCIASupport() override;
    std::int32_t GetLocaleInfo(std::uint32_t locale, std::uint32_t type, char16_t* out, std::int32_t size) override;
    bool GetFileVersion(const char16_t* file, char16_t* out, std::int32_t size) override;
    bool GetMACAddress(char* text, std::int32_t size) override;
    std::int32_t GetVolumeSerialNumber(const char16_t* path, std::uint32_t* serial) override;
    std::int32_t GetHostName(char* name, char* address) override;
    void* MemoryMapFile(const char* path, std::uint64_t* size) override;
    bool MemoryUnMapFile(void* view) override;
    MemoryMapHandle CreateSharedMemMapping(const char* name, std::uint32_t size,
                                           MemoryMap_Protection protection) override;
    void* MapMemView(MemoryMapHandle mapping) override;
    std::uint32_t GetProcessId() override;
    bool GetMemorySize(std::uint32_t* storageBytes, std::uint32_t* ramBytes) override;
};

/// The manager of a desktop computer; the one the registry creates.
class DORVUTIL_API COrvSystemMgrPc : public COrvSystemMgrWin {
public:
    std::int32_t GetDeviceName(char16_t* text, std::int32_t size) override;
    std::int32_t GetPlatformType(char16_t* text, std::int32_t size) override;
    bool OpenDocument(const ORVustring& target) override;
    bool IsTouchscreen() override;
    bool GetDisplayInfo(std::int32_t* width, std::int32_t* height, std::int32_t* bitsPerPixel) override;
    void OpenDocumentAndQuit(const ORVustring& target) override;
    const char* GetBundleId() override;
    ORVustring GetAppVersion() override;
};

}  // namespace dorvutil
