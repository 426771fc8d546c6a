#pragma once

#include <atomic>
#include <cstdint>

namespace dorvutil {

/// Where the serial of the system's volume comes from; each answers whether it could be asked.
struct VolumeQueries {
    bool (*byVolume)(std::uint32_t& id);
    bool (*byFile)(std::uint32_t& id);  ///< Asked when the volume itself says 0.
};

/// The result of GetVolumeSerialNumber. `cache` keeps a serial once found; 0 is none.
std::int32_t FindVolumeSerial(const VolumeQueries& queries, std::atomic<std::uint32_t>& cache, std::uint32_t* serial);

}  // namespace dorvutil
