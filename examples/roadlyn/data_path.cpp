#include "data_path.h"

#include <filesystem>

namespace roadlyn {

std::string DataPath(const std::string& name) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
    const fs::path candidates[] = {program.parent_path() / ".." / ROADLYN_SHARE_DIR / name,
                                   fs::path(ROADLYN_DATA_DIR) / name};
    for (const fs::path& candidate : candidates) {
        if (fs::exists(candidate, ignored)) return candidate.lexically_normal().string();
    }
    return candidates[0].lexically_normal().string();
}

}  // namespace roadlyn
