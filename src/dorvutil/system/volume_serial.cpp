#include "dorvutil/system/volume_serial.h"

namespace dorvutil {

std::int32_t FindVolumeSerial(const VolumeQueries& queries, std::atomic<std::uint32_t>& cache, std::uint32_t* serial) {
    std::uint32_t id = cache.load(std::memory_order_relaxed);
    std::int32_t result = 0;
    if (id == 0) {
        if (!queries.byVolume(id)) {
            id = 0;
            result = -1;
        } else if (id == 0 && !queries.byFile(id)) {
            id = 0;
            result = -1;
        }
        if (id != 0) cache.store(id, std::memory_order_relaxed);
    }
    if (serial) *serial = id;
    return result;
}

}  // namespace dorvutil
