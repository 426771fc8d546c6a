#include "dorvutil/platform/serial_ports.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <new>

#include "dorvutil/platform/posix/directory_scan.h"
#include "dorvutil/platform/posix/text_file.h"

namespace dorvutil::platform {
namespace {

constexpr char kTerminals[] = "/sys/class/tty";
constexpr std::uint64_t kNumbersOfFamily = 1000;
constexpr std::uint64_t kOtherPorts = 1'000'000;
constexpr std::uint64_t kMostMajors = 4096;

// The families of ports that have numbers of their own, kNumbersOfFamily each.
constexpr const char* kFamilies[] = {"ttyS", "ttyUSB", "ttyACM", "ttyAMA", "rfcomm"};

constinit std::atomic<const char*> g_root{nullptr};

struct Path {
    char text[512];
    Path(const char* root, const char* port, const char* file) {
        const int length = std::snprintf(text, sizeof(text), "%s/%s/%s", root, port, file);
        if (length < 0 || static_cast<std::size_t>(length) >= sizeof(text)) text[0] = '\0';
    }
};

// The decimal number that `text` is; nothing before or behind it.
bool IsNumber(const char* text, std::uint64_t& number) {
    const char* end = nullptr;
    return *text >= '0' && *text <= '9' && ReadNumber(text, number, &end) && *end == '\0';
}

// A device number such as "240:3".
bool ReadDeviceNumber(const Path& file, std::uint64_t& major, std::uint64_t& minor) {
    LineReader lines(file.text);
    const char* const line = lines.Next();
    const char* rest = nullptr;
    return line && ReadNumber(line, major, &rest) && *rest == ':' && IsNumber(rest + 1, minor);
}

bool NumberOf(const char* root, const char* port, std::uint64_t& number) {
    for (std::size_t i = 0; i < std::size(kFamilies); ++i) {
        const char* const unit = Behind(port, kFamilies[i]);
        if (!unit || !IsNumber(unit, number) || number + 1 >= kNumbersOfFamily) continue;
        number += i * kNumbersOfFamily + 1;
        return true;
    }
    std::uint64_t major = 0, minor = 0;
    if (!ReadDeviceNumber(Path(root, port, "dev"), major, minor)) return false;
    if (major >= kMostMajors || minor >= kNumbersOfFamily) return false;
    number = kOtherPorts + major * kNumbersOfFamily + minor;
    return true;
}

// Consoles and pseudo-terminals have no device. The driver of standard ports makes more of them than the machine has:
// those are of type 0, or, on kernels that do not tell the type, belong to its placeholder.
bool IsPort(const char* root, const char* port) {
    if (::access(Path(root, port, "device").text, F_OK) != 0) return false;
    LineReader lines(Path(root, port, "type").text);
    std::uint64_t type = 0;
    const char* const line = lines.Next();
    if (line && ReadNumber(line, type)) return type != 0;
    char driver[512];
    const auto length = ::readlink(Path(root, port, "device/driver").text, driver, sizeof(driver) - 1);
    if (length < 0) return true;
    driver[length] = '\0';
    const char* const name = std::strrchr(driver, '/');
    return std::strcmp(name ? name + 1 : driver, "serial8250") != 0;
}

bool Describe(const char* root, const char* port, SerialPort& out) {
    std::uint64_t number = 0;
    if (std::strlen(port) > 64 || !IsPort(root, port) || !NumberOf(root, port, number)) return false;
    std::snprintf(out.name, sizeof(out.name), "\\Device\\Serial\\%.64s", port);
    std::snprintf(out.data, sizeof(out.data), "COM%u", static_cast<unsigned>(number));
    std::snprintf(out.device, sizeof(out.device), "/dev/%.64s", port);
    return true;
}

// By number: the texts differ in nothing else.
bool IsBefore(const SerialPort& a, const SerialPort& b) {
    const std::size_t lengthA = std::strlen(a.data), lengthB = std::strlen(b.data);
    return lengthA != lengthB ? lengthA < lengthB : std::strcmp(a.data, b.data) < 0;
}

}  // namespace

SerialPortList ListSerialPorts(const char* root) {
    if (!root) root = g_root.load();
    if (!root) root = kTerminals;
    std::size_t room = 0;
    AnyEntry(root, [&](const char*) { return ++room, false; });
    SerialPortList list;
    list.ports.reset(new (std::nothrow) SerialPort[room]);
    if (!list.ports) return list;
    AnyEntry(root, [&](const char* port) {
        if (list.count == room) return true;
        if (Describe(root, port, list.ports[list.count])) ++list.count;
        return false;
    });
    std::sort(list.ports.get(), list.ports.get() + list.count, IsBefore);
    return list;
}

void UseSerialPortRoot(const char* root) { g_root.store(root); }

}  // namespace dorvutil::platform
