#include "dorvutil/storage/file_handle.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/memory/pool.h"
#include "dorvutil/storage/file_mgr.h"
#include "dorvutil/storage/memory_handle.h"
#include "dorvutil/storage/stdio_handle.h"
#include "storage/temp_folder.h"

namespace dorvutil {
namespace {

std::string Text(COrvFileHandleBase& handle) {
    char buffer[256] = {};
    const std::uint32_t n = handle.Read(buffer, sizeof buffer, 1);
    return std::string(buffer, n);
}

TEST(MemoryHandle, AnswersNeutrallyUntilOpened) {
    COrvFileHandleMemory handle(eAccessReadWrite);
    ExpectNotOpen(handle);
}

TEST(MemoryHandle, AccessModeDecidesWhatIsAllowed) {
    static constexpr struct {
        eAccessMode access;
        bool reads, writes;
    } kCases[] = {{eAccessRead, true, false},
                  {eAccessWrite, false, true},
                  {eAccessAppend, true, true},
                  {eAccessReadWrite, true, true},
                  {eAccessNone, false, false}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.access);
        COrvFileHandleMemory handle("abc", 3, true, c.access);
        handle.Open();
        char byte = 0;
        EXPECT_EQ(handle.Read(&byte, 1, 1), c.reads ? 1u : 0u);
        EXPECT_EQ(handle.Write("z", 1, 1), c.writes ? 1u : 0u);
        EXPECT_EQ(handle.Read(&byte, 1, -1), 0u);
    }
}

TEST(MemoryHandle, GrowsItsOwnBytesAndFillsGapsWithZero) {
    COrvFileHandleMemory handle(eAccessReadWrite);
    handle.Open();
    EXPECT_EQ(handle.Write("ab", 2, 1), 2u);
    EXPECT_EQ(handle.Seek(20, eSeekSet), 0);
    EXPECT_EQ(Text(handle), "") << "past the end";
    EXPECT_EQ(handle.Write("c", 1, 1), 1u);
    EXPECT_EQ(handle.Length(), 21);
    EXPECT_EQ(handle.Seek(1, eSeekSet), 0);
    EXPECT_EQ(Text(handle), "b" + std::string(18, '\0') + "c");
    EXPECT_EQ(handle.Seek(-30, eSeekEnd), -1);
    EXPECT_EQ(handle.Tell(), 21) << "a refused seek stays where it was";
    EXPECT_EQ(handle.Seek(-1, eSeekCur), 0);
    EXPECT_EQ(Text(handle), "c");
    EXPECT_EQ(handle.Seek(0, static_cast<eSeekMode>(7)), -1);
    EXPECT_EQ(handle.Open(), 0) << "opening again rewinds";
    EXPECT_EQ(handle.Tell(), 0);
}

TEST(MemoryHandle, WrappedMemoryIsWrittenInPlaceAndNeverGrows) {
    char bytes[4] = {'a', 'b', 'c', 'd'};
    COrvFileHandleMemory handle(bytes, 4, false, eAccessReadWrite);
    handle.Open();
    EXPECT_EQ(handle.Write("XY", 2, 1), 2u);
    EXPECT_EQ(std::string(bytes, 4), "XYcd");
    handle.Seek(3, eSeekSet);
    EXPECT_EQ(handle.Write("12", 2, 1), 0u);
    EXPECT_EQ(std::string(bytes, 4), "XYcd");
    EXPECT_EQ(handle.Length(), 4);
    COrvFileHandleMemory copy(handle.ByteArray(), true, eAccessReadWrite);
    copy.Open();
    EXPECT_EQ(copy.Write("12345", 5, 1), 5u);
    EXPECT_EQ(std::string(bytes, 4), "XYcd");
}

class DiskHandle : public TempFolder {
protected:
    std::unique_ptr<COrvFileHandleBase> Open(const char* name, eAccessMode access) {
        return std::unique_ptr<COrvFileHandleBase>(
            GetFileMgr()->OpenFileHandle(Path(name), access, eBinary, 0, nullptr));
    }
};

TEST_F(DiskHandle, WritesReadsAppendsAndSeeks) {
    EXPECT_EQ(Open("Zürich.txt", eAccessRead), nullptr);
    EXPECT_EQ(Open("Zürich.txt", eAccessReadWrite), nullptr);
    auto writer = Open("Zürich.txt", eAccessWrite);
    ASSERT_NE(writer, nullptr);
    EXPECT_EQ(writer->Write("hello", 5, 1), 5u);
    EXPECT_EQ(writer->Flush(), 0);
    EXPECT_EQ(std::filesystem::file_size(m_native + "Zürich.txt"), 5u);
    EXPECT_EQ(writer->Tell(), 5);
    EXPECT_EQ(writer->Close(), 0);
    EXPECT_EQ(writer->Close(), -1);
    ExpectNotOpen(*writer);

    auto appender = Open("Zürich.txt", eAccessAppend);
    EXPECT_EQ(appender->Write(" world", 6, 1), 6u);
    EXPECT_EQ(appender->Length(), 11);
    appender->Close();

    auto both = Open("Zürich.txt", eAccessReadWrite);
    EXPECT_EQ(both->Length(), 11);
    EXPECT_EQ(Text(*both), "hello world");
    EXPECT_EQ(both->Seek(-5, eSeekEnd), 0);
    EXPECT_EQ(both->Write("W", 1, 1), 1u);
    char next = 0;
    EXPECT_EQ(both->Read(&next, 1, 1), 1u) << "reading right behind a write";
    EXPECT_EQ(next, 'o');
    EXPECT_EQ(both->Write("R", 1, 1), 1u) << "and writing right behind a read";
    EXPECT_EQ(both->Seek(0, eSeekSet), 0);
    EXPECT_EQ(Text(*both), "hello WoRld");
    EXPECT_EQ(both->Seek(-1, eSeekSet), -1);
    EXPECT_EQ(both->Seek(0, static_cast<eSeekMode>(3)), -1);
}

TEST_F(DiskHandle, StepsWithinWhatWasReadAheadEndWhereTheySay) {
    auto file = Open("steps", eAccessWrite);
    EXPECT_EQ(file->Write("0123456789", 10, 1), 10u);
    EXPECT_EQ(file->Close(), 0);
    for (std::int32_t step = -1; step < 12; ++step) {
        file = Open("steps", eAccessRead);
        char byte = 0;
        EXPECT_EQ(file->Read(&byte, 1, 1), 1u);
        EXPECT_EQ(file->Seek(step, eSeekCur), 0);
        EXPECT_EQ(file->Tell(), 1 + step);
        EXPECT_EQ(Text(*file), step < 9 ? std::string("0123456789").substr(static_cast<std::size_t>(1 + step)) : "");
    }
}

TEST_F(DiskHandle, AnUnknownModeDoesNotOpen) {
    EXPECT_EQ(Open("a", eAccessNone), nullptr);
    EXPECT_EQ(Open("a", static_cast<eAccessMode>(5)), nullptr);
    EXPECT_TRUE(std::filesystem::is_empty(m_native));
}

TEST_F(DiskHandle, AFullDiskIsReportedNotSwallowed) {
    std::unique_ptr<COrvFileHandleBase> full(
        GetFileMgr()->OpenFileHandle("\\dev\\full", eAccessWrite, eBinary, 0, nullptr));
    if (!full) GTEST_SKIP() << "no device that is always full";
    EXPECT_EQ(full->Write(std::string(100'000, 'x').data(), 100'000, 1), 0u);
    EXPECT_EQ(full->Write("x", 1, 1), 1u) << "kept for the flush";
    EXPECT_EQ(full->Flush(), -1);
    EXPECT_EQ(full->Flush(), -1) << "and for the next one";
    EXPECT_EQ(full->Tell(), 1);
    EXPECT_EQ(full->Close(), -1);
}

TEST_F(DiskHandle, AFileRemovedWhileOpenStaysUsable) {
    auto file = Open("gone", eAccessWrite);
    EXPECT_EQ(file->Write("abc", 3, 1), 3u);
    std::filesystem::remove(m_native + "gone");
    EXPECT_EQ(file->Write("def", 3, 1), 3u);
    EXPECT_EQ(file->Flush(), 0);
    EXPECT_EQ(file->Length(), 6);
    EXPECT_EQ(file->Close(), 0);
}

// Runs `probe` in another process; whether it answered true.
template <class Probe>
bool InChild(Probe probe) {
    const pid_t child = fork();
    if (child == 0) _exit(probe() ? 0 : 1);
    int status = 1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST_F(DiskHandle, ByteLocksKeepOtherProcessesOut) {
    Put("locked", "0123456789");
    auto mine = Open("locked", eAccessReadWrite);
    const auto childLocks = [&](std::int32_t position, bool wait) {
        return InChild([&] {
            auto theirs = Open("locked", eAccessReadWrite);
            return theirs->Seek(position, eSeekSet) == 0 && theirs->LockBytes(4, true, wait);
        });
    };
    mine->Seek(2, eSeekSet);
    EXPECT_TRUE(mine->LockBytes(4, true, true));
    EXPECT_FALSE(childLocks(0, false));
    EXPECT_FALSE(childLocks(5, false));
    EXPECT_TRUE(childLocks(6, true)) << "behind the range";
    EXPECT_TRUE(mine->LockBytes(4, false, false));
    EXPECT_TRUE(childLocks(0, true));
}

TEST_F(DiskHandle, ObjectsLiveInTheRegistrysPool) {
    const std::unique_ptr<COrvFileHandleBase> handle(
        GetFileMgr()->CreateFileHandle("x", eAccessRead, eBinary, 0, nullptr));
    ASSERT_NE(handle, nullptr);
    EXPECT_FALSE(handle->IsOpen());
    EXPECT_TRUE(FileHandlePool()->Contains(handle.get()));
    EXPECT_STREQ(handle->Path().c_str(false), "x");
    EXPECT_EQ(handle->AccessMode(), eAccessRead);
}

}  // namespace
}  // namespace dorvutil
