#include "dorvutil/system/system_mgr.h"

#include <gtest/gtest.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/messaging/callback.h"
#include "dorvutil/platform/network.h"
#include "dorvutil/platform/system_facts.h"
#include "dorvutil/system.h"
#include "dorvutil/system/mac_text.h"
#include "dorvutil/system/os_version.h"
#include "dorvutil/system/volume_serial.h"
#include "messaging/registry_down.h"

namespace dorvutil {
namespace {

using platform::OsFamily;

TEST(DescribeOs, EveryVersionHasItsTextAndCode) {
    static constexpr struct {
        OsFamily family;
        std::int32_t major, minor;
        bool tablet;
        std::int32_t code;
        const char16_t* text;
    } cases[] = {
        {OsFamily::kDosBased, 4, 0, false, 11, u"Windows 95"},
        {OsFamily::kDosBased, 5, 0, false, 10, u"Windows 5.0"},
        {OsFamily::kNt, 3, 51, false, 14, u"Windows NT 3.51 with SP"},
        {OsFamily::kNt, 5, 0, false, 15, u"Windows 2000 With SP"},
        {OsFamily::kNt, 5, 1, false, 16, u"Windows XP SP"},
        {OsFamily::kNt, 5, 1, true, 20, u"Windows XP TabletPC SP"},
        {OsFamily::kNt, 5, 2, true, 10, u"Windows 5.2"},
        {OsFamily::kNt, 6, 1, false, 18, u"Windows 7 6.1 with SP"},
        {OsFamily::kOther, 6, 1, false, 10, u"Linux 6.1"},
        {OsFamily::kUnknown, 5, 1, false, 0, u""},
    };
    for (const auto& c : cases) {
        const platform::OsVersion version{c.family, u"Linux", c.major, c.minor, u"SP", c.tablet};
        char16_t text[kOsTextSize];
        EXPECT_EQ(DescribeOs(version, text), c.code) << c.major << "." << c.minor;
        EXPECT_EQ(std::u16string(text), c.text);
    }
}

TEST(MacText, SkipsAddressesThatBelongToNoDevice) {
    const platform::EthernetAddress zero{}, dest{{'D', 'E', 'S', 'T', 0, 1}}, near{{'D', 'E', 'S', 'T', 1, 0}};
    const platform::EthernetAddress real{{0x02, 0xFC, 0, 0xA, 0xFF, 1}};
    char text[kMacTextSize] = "untouched";
    const platform::EthernetAddress none[] = {zero, dest};
    EXPECT_FALSE(FirstMacText(none, 2, text));
    EXPECT_STREQ(text, "untouched");
    const platform::EthernetAddress all[] = {dest, zero, real, near};
    EXPECT_TRUE(FirstMacText(all, 4, text));
    EXPECT_STREQ(text, "02fc000aff01");
    EXPECT_TRUE(FirstMacText(&near, 1, text));
    EXPECT_STREQ(text, "444553540100");
}

template <std::uint32_t Id, bool Answer>
bool Volume(std::uint32_t& id) {
    id = Id;
    return Answer;
}

TEST(VolumeSerial, FallsBackOnAFileAndIsKeptOnceFound) {
    static constexpr struct {
        const char* name;
        VolumeQueries queries;
        std::int32_t result;
        std::uint32_t serial;
    } cases[] = {
        {"volume says 0", {Volume<0, true>, Volume<9, true>}, 0, 9},
        {"volume says 0, no file", {Volume<0, true>, Volume<9, false>}, -1, 0},
        {"query fails", {Volume<7, false>, Volume<9, true>}, -1, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::atomic<std::uint32_t> cache{0};
        std::uint32_t serial = 99;
        EXPECT_EQ(FindVolumeSerial(c.queries, cache, &serial), c.result);
        EXPECT_EQ(serial, c.serial);
        EXPECT_EQ(cache, c.serial);
        EXPECT_EQ(FindVolumeSerial({Volume<0, false>, Volume<0, false>}, cache, &serial), c.serial != 0 ? 0 : -1);
        EXPECT_EQ(serial, c.serial) << "without another query";
        EXPECT_EQ(FindVolumeSerial(c.queries, cache, nullptr), c.result);
    }
}

TEST(SystemMgr, MemoryAndDiskAreTheSystems) {
    const double pageKB = static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1024;
    double physical = 0, address = 0, disk = 0;
    ASSERT_TRUE(System_GetMemoryStatus(&physical, &address, &disk));
    EXPECT_GT(physical, 0);
    EXPECT_LE(physical, static_cast<double>(::sysconf(_SC_PHYS_PAGES)) * pageKB);
    EXPECT_GT(address, physical) << "64-bit addresses exceed any memory";
    struct statvfs here {};
    ASSERT_EQ(::statvfs(".", &here), 0);
    const double freeKB = static_cast<double>(here.f_bfree) * static_cast<double>(here.f_frsize) / 1024;
    EXPECT_NEAR(disk, freeKB, freeKB / 4 + 1024) << "others write too";
    EXPECT_TRUE(System_HasSufficientMemory(0));
    EXPECT_EQ(System_HasSufficientMemory(0xFFFFFFFF), disk > 4294967295.0);

    platform::ShiftAvailableMemory(-(std::int64_t{1} << 50));
    EXPECT_TRUE(System_GetMemoryStatus(&physical, nullptr, nullptr));
    EXPECT_EQ(physical, 0);
    platform::ShiftAvailableMemory(0);
    disk = -1;
    EXPECT_FALSE(System_GetMemoryStatus(nullptr, nullptr, &disk, "\\no such folder\\"));
    EXPECT_EQ(disk, -1);
    EXPECT_TRUE(System_GetMemoryStatus(nullptr, nullptr, &disk, "\\proc\\"));
    EXPECT_EQ(disk, 0) << "another drive than the current one";

    std::uint32_t storage = 0, memory = 0;
    EXPECT_TRUE(System_GetMemorySize(&storage, &memory));
    EXPECT_EQ(storage, static_cast<std::uint32_t>(here.f_blocks * here.f_frsize));
}

TEST(SystemMgr, TextsAreCutToTheCallersRoom) {
    std::int32_t code = 0;
    char16_t text[64];
    utsname names{};
    ASSERT_EQ(::uname(&names), 0);
    EXPECT_EQ(System_GetOSVersion(&code, text, 64), 0);
    EXPECT_EQ(code, 10);
    const std::string version = ORVustring(text, -1).c_str();
    EXPECT_EQ((std::string(names.sysname) + " " + names.release).substr(0, version.size()), version);
    EXPECT_NE(version.find('.'), std::string::npos);
    EXPECT_EQ(System_GetPlatformType(text, 6), 1);
    EXPECT_EQ(std::u16string(text), u"Win32");
    EXPECT_EQ(System_GetPlatformType(nullptr, 6), 0);

    static constexpr std::pair<std::uint32_t, const char16_t*> kTexts[] = {
        {0x0E, u"."}, {0x2A, u"Monday"}, {0x30, u"Sunday"}, {0x37, u"Sun"}, {0x38, u"January"}, {0x4F, u"Dec"}};
    for (const auto& [type, expected] : kTexts) {
        SCOPED_TRACE(type);
        const auto units = static_cast<std::int32_t>(std::u16string(expected).size()) + 1;
        EXPECT_EQ(System_GetLocaleInfo(0x7F, type, nullptr, 0), units);
        EXPECT_EQ(System_GetLocaleInfo(0x7F, type, text, units - 1), 0);
        EXPECT_EQ(System_GetLocaleInfo(0x7F, type, text, units), units);
        EXPECT_EQ(std::u16string(text), expected);
    }
    EXPECT_EQ(System_GetLocaleInfo(0x407, 0x2A, text, 64), 0) << "neither the user's nor the invariant";
    EXPECT_EQ(System_GetLocaleInfo(0x400, 0x7777, text, 64), 0);
}

TEST(SystemMgr, NamesTheMachine) {
    char name[255] = "", hostName[255] = "", address[16] = "";
    ASSERT_EQ(::gethostname(hostName, sizeof(hostName)), 0);
    EXPECT_EQ(System_GetHostName(name, address), 0);
    EXPECT_STREQ(name, hostName);
    EXPECT_EQ(std::count(address, address + sizeof(address), '.'), 3);
    EXPECT_EQ(System_GetProcessId(), static_cast<std::uint32_t>(::getpid()));

    std::uint32_t type = 0, count = 0, oem = 0, serial = 1, again = 2;
    std::uint16_t revision = 0;
    System_GetSystemInfo(&type, &revision, &count, &oem);
    EXPECT_GE(count, 1u);
    EXPECT_EQ(type == 8664, oem == 9);
    EXPECT_EQ(System_GetVolumeSerialNumber(u"C:\\", &serial), 0);
    EXPECT_EQ(System_GetVolumeSerialNumber(nullptr, &again), 0);
    EXPECT_EQ(serial, again);

    char mac[13] = "x";
    const bool hasEthernet = System_GetMACAddress(mac, sizeof(mac));
    EXPECT_EQ(std::strspn(mac, "0123456789abcdef"), hasEthernet ? 12u : 0u);
    EXPECT_FALSE(System_GetMACAddress(mac, 12));
}

int g_quits = 0;

TEST(SystemMgr, SaysNoToWhatThisMachineLacks) {
    COrvSystemMgrBase& manager = *GetSystemMgr();
    const auto onQuit = [](EMsgID, const CBDataBase*) { ++g_quits; };
    DORV_RegisterCallbackListener(onQuit, EMsgID{0});
    manager.OpenDocumentAndQuit("");
    DORV_UnRegisterCallbackListener(onQuit);
    EXPECT_EQ(g_quits, 1);
    std::uint8_t status = 5;
    EXPECT_FALSE(manager.ClearStatusByte(&status));
    EXPECT_EQ(status, 0);
    std::int32_t number = 3;
    EXPECT_FALSE(System_GetPixelFormat(&number) || System_GetIMEINumber(nullptr, 0) || System_GetCarrier(nullptr, 0));
    EXPECT_EQ(number, 3);
    EXPECT_EQ(PM_GetRoadlynWindow(), nullptr);
    EXPECT_EQ(PM_TerminateProcess(), -1);
    EXPECT_FALSE(SMS_CanSMS() || SMS_SendSMSMessage(u"1", u"x") || MMS_SendMMSMessage(u"1", u"x", u"y"));
    EXPECT_FALSE(GetMagneticCompass()->GetHeading(nullptr) || GetGSensor()->GetAcceleration(nullptr, nullptr, nullptr));
    System_SetUILocaleID(0x407);
    EXPECT_EQ(System_GetUILocaleID(), 0x407u);
}

TEST(SysAttr, DumpsAllLinesInTheirFrame) {
    GetSystemMgr()->SetDeviceId("device \xC3\xA9 1");
    ORVustring text;
    EXPECT_EQ(GetSysAttr()->DumpAllSysAttrStrings(text), 0);
    std::string form;  // with # for each number
    for (const char c : std::string(text.c_str())) {
        const bool digit = (c >= '0' && c <= '9') || c == '.';
        if (!digit && !(c == '-' && !form.empty() && form.back() == ' ')) form += c;  // sizes are signed numbers
        if (digit && (form.empty() || form.back() != '#')) form += '#';
    }
    const std::string dashes(79, '-');
    EXPECT_EQ(form, "," + dashes +
                        "\r\n| AppVersion = #\r\n"
                        "| Platform = Win# Desktop, DeviceName = Win# Desktop\r\n"
                        "| DeviceID = device \xC3\xA9 #\r\n"
                        "| CPUType = #, CPURevision = #, NumberOfCPUs = #, CPU_OEM_ID = #\r\n"
                        "| OSName = Linux #, OSVersionID = #\r\n"
                        "| RAMSize = #, FlashStorageSize = #\r\n"
                        "| Display = # x # x # bpp\r\n`" +
                        dashes + "\r\n");
    GetSystemMgr()->SetDeviceId("");
    char mac[13] = "";
    GetSystemMgr()->GetMACAddress(mac, sizeof(mac));
    GetSysAttr()->GetHwIDString(text);
    EXPECT_EQ(text.c_str(), std::string("DeviceID = ") + mac);
}

TEST(SystemManagers, ComeAndGoWithTheRegistry) {
    ASSERT_NE(GetSysAttr(), nullptr);
    const SharedMemory block("dorvutil registry test", nullptr, 64, eMemoryMapReadWrite);
    testing_support::RegistryDown down;
    EXPECT_EQ(GetSystemMgr(), nullptr);
    EXPECT_EQ(GetSysAttr(), nullptr);
    EXPECT_EQ(GetGSensor(), nullptr);
    EXPECT_EQ(GetMagneticCompass(), nullptr);
    EXPECT_EQ(GetCacheMgr(), nullptr);
    EXPECT_EQ(System_GetOSVersion(nullptr, nullptr, 0), -1);
    EXPECT_FALSE(SetIntConnAddress("host:80"));
    EXPECT_GT(CheckIntConn(), 1u);
    const CSysAttr lone;
    ORVustring text;
    lone.GetOSString(text);
    EXPECT_STREQ(text.c_str(), "OSName = , OSVersionID = 0");
    down.BringBack();
    EXPECT_NE(GetSystemMgr(), nullptr);
}

}  // namespace
}  // namespace dorvutil
