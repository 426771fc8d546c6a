#include "system_command.h"

#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

#include "dorvutil/system.h"
#include "dorvutil/text/string.h"

namespace roadlyn {
namespace {

constexpr std::int32_t kTextUnits = 256;
constexpr std::uint32_t kUserLocale = 0;
constexpr std::uint32_t kLocaleDecimalMark = 0x0E;
constexpr std::uint32_t kLocaleThousandsMark = 0x0F;

std::string Utf8(const char16_t* text) { return dorvutil::ORVustring(text).c_str(); }

void PrintFact(const char* name, const std::string& value) { std::cout << name << '\t' << value << '\n'; }

void PrintNames() {
    char16_t text[kTextUnits];
    std::int32_t platform = 0;
    const bool known = dorvutil::System_GetOSVersion(&platform, text, kTextUnits) == 0;
    PrintFact("os", known ? Utf8(text) : "");
    PrintFact("platform_code", known ? std::to_string(platform) : "");
    PrintFact("device", dorvutil::System_GetDeviceName(text, kTextUnits) > 0 ? Utf8(text) : "");
    char host[kTextUnits] = "";
    char address[kTextUnits] = "";
    const bool named = dorvutil::System_GetHostName(host, address) == 0;
    PrintFact("host", named ? host : "");
    PrintFact("address", named ? address : "");
    char mac[kTextUnits];
    PrintFact("mac", dorvutil::System_GetMACAddress(mac, sizeof mac) ? mac : "");
}

void PrintHardware() {
    std::uint32_t type = 0, count = 0, architecture = 0;
    std::uint16_t revision = 0;
    dorvutil::System_GetSystemInfo(&type, &revision, &count, &architecture);
    PrintFact("processor_type", std::to_string(type));
    PrintFact("processor_revision", std::to_string(revision));
    PrintFact("processors", std::to_string(count));
    PrintFact("architecture", std::to_string(architecture));
    double physical = 0, address = 0, disk = 0;
    const bool measured = dorvutil::System_GetMemoryStatus(&physical, &address, &disk);
    PrintFact("free_memory_kb", measured ? std::to_string(static_cast<std::int64_t>(physical)) : "");
    PrintFact("free_disk_kb", measured ? std::to_string(static_cast<std::int64_t>(disk)) : "");
    std::uint32_t serial = 0;
    const bool volume = dorvutil::System_GetVolumeSerialNumber(u"\\", &serial) == 0;
    PrintFact("volume_serial", volume ? std::to_string(serial) : "");
    // Filled when a display is connected, whatever the call answers.
    std::int32_t width = 0, height = 0, depth = 0;
    dorvutil::System_GetDisplayInfo(&width, &height, &depth);
    PrintFact("display", width != 0 ? std::to_string(width) + "x" + std::to_string(height) : "");
    PrintFact("touch_screen", dorvutil::System_IsTouchscreen() ? "yes" : "no");
}

void PrintLocale() {
    char16_t text[kTextUnits];
    const auto mark = [&text](std::uint32_t type) {
        return dorvutil::System_GetLocaleInfo(kUserLocale, type, text, kTextUnits) > 0 ? Utf8(text) : std::string();
    };
    PrintFact("decimal_mark", mark(kLocaleDecimalMark));
    PrintFact("thousands_mark", mark(kLocaleThousandsMark));
    char number[kTextUnits];
    const bool formatted = dorvutil::System_GetLocalNumberStr("-1234567.891", number, sizeof number) > 0;
    PrintFact("number", formatted ? number : "");
}

int ShowSystem(bool tsv) {
    if (tsv) {
        PrintFact("fact", "value");
        PrintNames();
        PrintHardware();
        PrintLocale();
        return std::cout.flush().good() ? 0 : 1;
    }
    dorvutil::ORVustring text;
    dorvutil::CSysAttr().DumpAllSysAttrStrings(text);
    std::string lines = text.c_str();
    std::erase(lines, '\r');
    std::cout << lines << std::flush;
    return std::cout.good() ? 0 : 1;
}

}  // namespace

void AddSystemCommand(CLI::App& app, std::function<int()>& run) {
    const auto tsv = std::make_shared<bool>(false);
    CLI::App* const command = app.add_subcommand("system", "Shows what the library knows of this machine");
    command->add_flag("--tsv", *tsv, "One fact a line: name, tab, value");
    command->callback([tsv, &run] { run = [tsv] { return ShowSystem(*tsv); }; });
}

}  // namespace roadlyn
