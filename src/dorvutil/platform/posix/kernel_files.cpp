#include "dorvutil/platform/posix/kernel_files.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "dorvutil/platform/posix/directory_scan.h"
#include "dorvutil/platform/posix/text_file.h"

namespace dorvutil::platform {
namespace {

constexpr std::uint64_t kMostPixels = 0xFFFF;
constexpr std::uint64_t kMostBits = 64;
constexpr std::uint64_t kDirectInput = 2;  // the kernel's property 1: coordinates are those of a screen

// A mode such as "1920x1080".
bool ReadMode(const char* mode, DisplayFacts& display) {
    std::uint64_t width = 0, height = 0;
    const char* rest = nullptr;
    if (!ReadNumber(mode, width, &rest) || *rest != 'x' || !ReadNumber(rest + 1, height)) return false;
    if (width > kMostPixels || height > kMostPixels) return false;
    display.width = static_cast<std::int32_t>(width);
    display.height = static_cast<std::int32_t>(height);
    return true;
}

// The first mode of a connector is the one the display prefers.
bool ReadConnector(const char* connectors, const char* connector, DisplayFacts& display) {
    char path[512];
    std::snprintf(path, sizeof(path), "%s/%s/status", connectors, connector);
    LineReader status(path);
    const char* const state = status.Next();
    if (!state || std::strcmp(state, "connected") != 0) return false;
    std::snprintf(path, sizeof(path), "%s/%s/modes", connectors, connector);
    LineReader modes(path);
    const char* const mode = modes.Next();
    return mode && ReadMode(mode, display);
}

}  // namespace

bool DisplayIn(const char* connectors, const char* depthFile, DisplayFacts& display) {
    DisplayFacts found{};
    const auto isIt = [&](const char* connector) { return ReadConnector(connectors, connector, found); };
    if (!AnyEntry(connectors, isIt)) return false;
    LineReader depth(depthFile);
    std::uint64_t bits = 0;
    const char* const line = depth.Next();
    if (line && ReadNumber(line, bits) && bits <= kMostBits) found.bitsPerPixel = static_cast<std::int32_t>(bits);
    display = found;
    return true;
}

bool HasTouchscreenIn(const char* devices) {
    LineReader lines(devices);
    while (const char* const line = lines.Next()) {
        std::uint64_t properties = 0;
        const char* const set = Behind(line, "B: PROP=");
        if (set && ReadNumber(set, properties, nullptr, 16) && (properties & kDirectInput) != 0) return true;
    }
    return false;
}

bool QueryDisplay(DisplayFacts& display) {
    return DisplayIn("/sys/class/drm", "/sys/class/graphics/fb0/bits_per_pixel", display);
}

bool HasTouchscreen() { return HasTouchscreenIn("/proc/bus/input/devices"); }

}  // namespace dorvutil::platform
