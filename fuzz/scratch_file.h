#pragma once

#include <filesystem>
#include <fstream>
#include <random>

#include "dorvutil/text/string.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {

/// A file in memory where the system has a place for such, whose content is replaced for each input. Removed at the
/// end.
class ScratchFile {
public:
    explicit ScratchFile(const char* name) {
        const std::filesystem::path memory("/dev/shm");
        std::error_code error;
        const std::filesystem::path folder =
            std::filesystem::is_directory(memory, error) ? memory : std::filesystem::temp_directory_path();
        m_path = folder / (std::string("fuzz_") + name + std::to_string(std::random_device{}()));
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() {
        std::error_code error;
        std::filesystem::remove(m_path, error);
    }

    void Write(std::string_view content) const {
        std::ofstream file(m_path, std::ios::binary | std::ios::trunc);
        file.write(content.data(), static_cast<std::streamsize>(content.size()));
        FUZZ_CHECK(file.flush().good());
    }
    ORVustring Path() const { return ORVustring(m_path.c_str()); }

private:
    std::filesystem::path m_path;
};

}  // namespace dorvutil::fuzz
