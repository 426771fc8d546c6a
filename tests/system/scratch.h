#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace dorvutil::testing_support {

/// A folder of one test alone, gone with what is in it.
class Scratch {
public:
    Scratch() { EXPECT_NE(::mkdtemp(m_folder), nullptr); }
    ~Scratch() { std::filesystem::remove_all(m_folder); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    std::string Path(const std::string& name) const { return std::string(m_folder) + "/" + name; }
    /// Writes a file, and the folders it lies in; returns its path.
    std::string Write(const std::string& name, const std::string& bytes) const {
        const std::string path = Path(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        ::unlink(path.c_str());
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

private:
    char m_folder[32] = "/tmp/dorvutil_test_XXXXXX";
};

}  // namespace dorvutil::testing_support
