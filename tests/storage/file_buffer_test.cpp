#include "dorvutil/storage/file_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

#include "dorvutil/storage/file_api.h"
#include "dorvutil/storage/memory_handle.h"
#include "storage/temp_folder.h"

namespace dorvutil {
namespace {

constexpr COrvFileOptions kSmall{4, 8};

// The bytes and the faults of a file, seen from outside the handle that owns it.
struct Disk {
    TVector<char> m_bytes;
    std::uint32_t m_room = 0xFFFF;  // bytes still taken before writes fall short
    bool m_appends = false;
    bool m_closes = true;
};

class Device : public COrvFileHandleMemory {
public:
    explicit Device(Disk& disk, const char* text = "")
        : COrvFileHandleMemory(text, static_cast<std::uint32_t>(std::strlen(text)), true, eAccessReadWrite),
          m_disk(disk) {
        Open();
        m_disk.m_bytes = ByteArray();
    }
    std::uint32_t Write(const void* from, std::uint32_t size, std::int32_t) override {
        const std::uint32_t n = std::min(size, m_disk.m_room);
        m_disk.m_room -= n;
        if (m_disk.m_appends) Seek(0, eSeekEnd);
        COrvFileHandleMemory::Write(from, n, 1);
        m_disk.m_bytes = ByteArray();
        return n;
    }
    std::int32_t Close() override { return m_disk.m_closes ? 0 : -1; }

private:
    Disk& m_disk;
};

template <class Buffer>
Buffer Over(Disk& disk, eAccessMode access, const char* text = "") {
    return Buffer(new Device(disk, text), ORVustring(), access, eBinary, 3, &kSmall);
}

std::string Text(const Disk& disk) { return {disk.m_bytes.begin(), disk.m_bytes.end()}; }

std::string Read(COrvFileHandleBase& handle, std::uint32_t n) {
    std::string text(n, '#');
    text.resize(handle.Read(text.data(), n, 1));
    return text;
}

TEST(FileBuffer, WithoutAHandleBeneathItIsNotOpen) {
    COrvReadWriteBuffer buffer(nullptr, "p", eAccessReadWrite, eBinary, 3, nullptr);
    ExpectNotOpen(buffer);
    EXPECT_EQ(buffer.Open(), -1);
    EXPECT_EQ(buffer.Close(), 1);
    EXPECT_STREQ(buffer.Path().c_str(), "p");
}

TEST(ReadBuffer, ReadsAheadSeeksAndCannotWrite) {
    Disk disk;
    auto buffer = Over<COrvReadBuffer>(disk, eAccessRead, "0123456789ab");
    EXPECT_EQ(Read(buffer, 6), "012345") << "over the end of the buffer";
    EXPECT_EQ(buffer.Seek(-2, eSeekEnd), 0);
    EXPECT_EQ(Read(buffer, 9), "ab");
    EXPECT_EQ(buffer.Seek(-13, eSeekEnd), -1);
    EXPECT_EQ(buffer.Seek(1, static_cast<eSeekMode>(3)), -1);
    EXPECT_EQ(buffer.Tell(), 12);
    EXPECT_EQ(buffer.Write("x", 1, 1), 0xFFFFFFFFu);
    EXPECT_EQ(buffer.Flush(), 0);
    EXPECT_EQ(buffer.Close(), 0);
}

TEST(WriteBuffer, CollectsAndReportsTheBufferedEnd) {
    Disk disk;
    auto buffer = Over<COrvWriteBuffer>(disk, eAccessWrite);
    EXPECT_EQ(buffer.Write("abc", 3, 1), 3u);
    EXPECT_EQ(Text(disk), "");
    EXPECT_EQ(buffer.Length(), 3);
    EXPECT_EQ(buffer.Seek(1, eSeekSet), 0);
    EXPECT_EQ(buffer.Flush(), 0);
    EXPECT_EQ(buffer.Tell(), 1) << "flushing moves nothing";
    EXPECT_EQ(buffer.Write("XYZVWabcd", 9, 1), 9u) << "past the buffer";
    EXPECT_EQ(Text(disk), "aXYZVWabcd");
    EXPECT_EQ(buffer.Write("12345", 5, 1), 5u);
    EXPECT_EQ(buffer.Write("6789", 4, 1), 4u) << "fills up and goes on";
    EXPECT_EQ(Text(disk), "aXYZVWabcd12345678");
    EXPECT_EQ(buffer.Read(nullptr, 1, 1), 0xFFFFFFFFu);
    EXPECT_EQ(buffer.Seek(0, eSeekSet), 0);
    EXPECT_EQ(buffer.Write("_", 1, 1), 1u);
    EXPECT_EQ(buffer.Length(), 19) << "the file's own end counts too";
    EXPECT_EQ(buffer.Close(), 0);
    EXPECT_EQ(Text(disk), "_XYZVWabcd123456789");
}

TEST(WriteBuffer, WhatAShortFlushLeavesIsWrittenOnceLater) {
    static constexpr struct {
        const char* name;
        std::uint32_t room, second;  // bytes that fit; what the second write of 5 reports
    } kCases[] = {{"disk full at once", 0, 2}, {"in the middle of the flush", 5, 2}, {"enough", 8, 5}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Disk disk;
        disk.m_room = c.room;
        disk.m_appends = true;
        auto buffer = Over<COrvAppendBuffer>(disk, eAccessAppend, "old");
        EXPECT_EQ(buffer.Write("abcdef", 6, 1), 6u);
        EXPECT_EQ(buffer.Seek(0, eSeekSet), 0);
        EXPECT_EQ(buffer.Tell(), 9);
        const std::uint32_t reported = buffer.Write("ghijk", 5, 1);
        EXPECT_EQ(reported, c.second);
        EXPECT_EQ(buffer.Tell(), static_cast<std::int32_t>(9 + reported));
        if (disk.m_room == 0 && c.room != 8) {
            EXPECT_EQ(buffer.Flush(), -1);
        }
        disk.m_room = 100;
        EXPECT_EQ(buffer.Flush(), 0);
        EXPECT_EQ(Text(disk), "old" + std::string("abcdefghijk").substr(0, 6 + reported));
    }
}

TEST(WriteBuffer, ClosingTellsWhatWasLost) {
    for (const bool closes : {true, false}) {
        Disk disk;
        disk.m_room = closes ? 1 : 9;
        disk.m_closes = closes;
        auto buffer = Over<COrvWriteBuffer>(disk, eAccessWrite);
        buffer.Write("ab", 2, 1);
        EXPECT_EQ(buffer.Close(), 1);
        EXPECT_FALSE(buffer.IsOpen());
    }
    Disk disk;
    { Over<COrvWriteBuffer>(disk, eAccessWrite).Write("ab", 2, 1); }
    EXPECT_EQ(Text(disk), "ab") << "destruction writes what is left";
}

TEST(ReadWriteBuffer, AnyMixtureIsThatOfAPlainFile) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int run = 0; run < 300; ++run) {
        Disk disk;
        auto buffer = Over<COrvReadWriteBuffer>(disk, eAccessReadWrite, "0123456789abcdefghij");
        std::string model = "0123456789abcdefghij";
        std::size_t at = 0;
        for (int step = 0; step < 60; ++step) {
            const std::size_t n = random() % 13;
            const auto kind = random() % 4;
            if (kind == 0) {
                at = random() % (model.size() + 1);
                const auto end = static_cast<std::int32_t>(model.size());
                ASSERT_EQ(buffer.Seek(static_cast<std::int32_t>(at) - end, eSeekEnd), 0);
            } else if (kind == 1) {
                const std::string text(n, static_cast<char>('A' + step % 26));
                ASSERT_EQ(buffer.Write(text.data(), static_cast<std::uint32_t>(n), 1), n);
                model.replace(at, n, text);
                at += n;
            } else if (kind == 2) {
                const std::string expected = model.substr(at, n);
                ASSERT_EQ(Read(buffer, static_cast<std::uint32_t>(n)), expected) << step;
                at += expected.size();
            } else {
                ASSERT_EQ(buffer.Flush(), 0);
            }
            ASSERT_EQ(buffer.Tell(), static_cast<std::int32_t>(at));
            ASSERT_EQ(buffer.Length(), static_cast<std::int32_t>(model.size()));
        }
        EXPECT_EQ(buffer.Close(), 0);
        ASSERT_EQ(Text(disk), model);
    }
}

class BufferedFiles : public TempFolder {};

TEST_F(BufferedFiles, EveryModeOpensItsBufferOverADiskFile) {
    const std::string part(5000, 'x');
    EXPECT_EQ(FileOpenBuffered(Path("a"), eAccessRead, eBinary, 3, nullptr), nullptr);
    EXPECT_EQ(FileOpenBuffered(Path("a"), eAccessNone, eBinary, 3, nullptr), nullptr);
    COrvFileHandleBase* file = FileOpenBuffered(Path("new/a"), eAccessWrite, eBinary, kFileBufferWrites, nullptr);
    ASSERT_NE(dynamic_cast<COrvWriteBuffer*>(file), nullptr);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(FileWrite(file, part.data(), 5000), 5000u);
    EXPECT_EQ(FileLength(file), 15000);
    EXPECT_TRUE(FileClose(file));
    EXPECT_EQ(file, nullptr);
    file = FileOpenBuffered(Path("new/a"), eAccessAppend, eBinary, 3, nullptr);
    ASSERT_NE(dynamic_cast<COrvAppendBuffer*>(file), nullptr);
    EXPECT_EQ(FileTell(file), 15000);
    EXPECT_EQ(FileWrite(file, "end\n", 4), 4u);
    EXPECT_TRUE(FileClose(file));
    EXPECT_EQ(Bytes("new/a"), part + part + part + "end\n");
    file = FileOpenBuffered(Path("new/a"), eAccessReadWrite, eBinary, kFileBufferReads, nullptr);
    EXPECT_NE(dynamic_cast<COrvReadWriteBuffer*>(file), nullptr);
    EXPECT_TRUE(FileClose(file));
    file = FileOpenBuffered(Path("new/a"), eAccessRead, eBinary, kFileBufferWrites, nullptr);
    EXPECT_EQ(dynamic_cast<COrvReadBuffer*>(file), nullptr) << "reading keeps only the flag for reads";
    EXPECT_EQ(FileRead(file, const_cast<char*>(part.data()), 5000), 5000u);
    EXPECT_TRUE(FileClose(file));
}

}  // namespace
}  // namespace dorvutil
