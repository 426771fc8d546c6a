#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "dorvutil/storage/file_handle.h"

namespace dorvutil {

/// What any handle answers that is not open.
inline void ExpectNotOpen(COrvFileHandleBase& handle) {
    char byte = 'x';
    EXPECT_FALSE(handle.IsOpen());
    EXPECT_EQ(handle.Read(&byte, 1, 1), 0u);
    EXPECT_EQ(handle.Write(&byte, 1, 1), 0u);
    EXPECT_EQ(handle.Seek(0, eSeekSet), -1);
    EXPECT_EQ(handle.Tell(), -1);
    EXPECT_EQ(handle.Length(), -1);
    EXPECT_EQ(handle.Flush(), -1);
    EXPECT_FALSE(handle.LockBytes(1, true, false));
    EXPECT_EQ(handle.StopRead(), 0);
    EXPECT_EQ(handle.StopWrite(), 0);
}

/// A fresh folder for each test, removed afterwards. The library gets its path with the interface's separator; the test
/// looks at the files behind the library's back.
class TempFolder : public testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/dorvutil_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_native = std::string(pattern) + "/";
    }
    void TearDown() override { std::filesystem::remove_all(m_native); }

    ORVustring Path(const std::string& name) const {
        std::string path = m_native + name;
        for (char& c : path) c = c == '/' ? '\\' : c;
        return path.c_str();
    }
    void Put(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories(std::filesystem::path(m_native + name).parent_path());
        std::ofstream(m_native + name, std::ios::binary) << bytes;
    }
    std::string Bytes(const std::string& name) const {
        std::ifstream file(m_native + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool Has(const std::string& name) const { return std::filesystem::exists(m_native + name); }

    std::string m_native;  // ends in '/'
};

}  // namespace dorvutil
