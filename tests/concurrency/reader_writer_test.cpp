#include "dorvutil/concurrency/reader_writer.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "sleeping_thread.h"

namespace dorvutil {
namespace {

using Lock = SingleWriterMultiReader;

bool OtherThreadReads(const Lock& lock) {
    bool read = false;
    std::thread([&] {
        read = lock.WaitToRead(false);
        if (read) lock.Done();
    }).join();
    return read;
}

// A thread that takes one hold and keeps it until told.
class Holder {
public:
    Holder(const Lock& lock, char kind)
        : m_thread([this, &lock, kind] {
              if (kind == 'w') {
                  lock.WaitToWrite();
              } else {
                  EXPECT_TRUE(lock.WaitToRead(true));
              }
              m_granted.SignalEvent();
              m_letGo.WaitForEvent(kWaitForever);
              lock.Done();
          }) {
        m_thread.WaitUntilAsleep();  // for its hold, or with it
    }
    ~Holder() { LetGo(); }

    bool Granted() const { return m_granted.WaitForEvent(0) == 1; }
    void WaitUntilGranted() const { m_granted.WaitForEvent(kWaitForever); }
    void LetGo() {
        m_letGo.SignalEvent();
        m_thread.Join();
    }

private:
    event m_granted;
    event m_letGo;
    SleepingThread m_thread;
};

TEST(ReaderWriter, ReadersShareAndWritersDoNot) {
    const Lock lock;
    ASSERT_TRUE(lock.WaitToRead(false));
    EXPECT_TRUE(OtherThreadReads(lock));
    lock.Done();
    lock.WaitToWrite();
    EXPECT_FALSE(OtherThreadReads(lock));
    lock.Done();
    EXPECT_TRUE(OtherThreadReads(lock));
}

TEST(ReaderWriter, WriterNestsReadsAndWritesEachWithItsOwnDone) {
    const Lock lock;
    lock.WaitToWrite();
    EXPECT_TRUE(lock.WaitToRead(false));
    lock.WaitToWrite();
    EXPECT_TRUE(lock.WaitToRead(true));
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(OtherThreadReads(lock)) << i;
        lock.Done();
    }
    EXPECT_TRUE(OtherThreadReads(lock));
}

TEST(ReaderWriter, WaitingWriterStopsNewReadersButNotHolders) {
    const Lock lock;
    ASSERT_TRUE(lock.WaitToRead(true));
    Holder writer(lock, 'w');
    EXPECT_FALSE(writer.Granted());
    EXPECT_FALSE(OtherThreadReads(lock));
    EXPECT_TRUE(lock.WaitToRead(false)) << "this thread reads already";
    lock.Done();
    EXPECT_FALSE(writer.Granted());
    lock.Done();
    writer.WaitUntilGranted();
    EXPECT_FALSE(OtherThreadReads(lock));
    writer.LetGo();
    EXPECT_TRUE(OtherThreadReads(lock));
}

// A trace in the holder list would let the refused thread in while the writer holds; one in the counts would hand the
// lock to a reader who is not there.
TEST(ReaderWriter, RefusedReadLeavesNoTrace) {
    const Lock lock;
    std::atomic<int> step{0};
    std::thread refused([&] {
        while (step != 1) std::this_thread::yield();
        EXPECT_FALSE(lock.WaitToRead(false));
        EXPECT_FALSE(lock.WaitToRead(false));
        step = 2;
        while (step != 3) std::this_thread::yield();
        lock.WaitToWrite();
        lock.Done();
        EXPECT_TRUE(lock.WaitToRead(false));
        lock.Done();
    });
    lock.WaitToWrite();
    step = 1;
    while (step != 2) std::this_thread::yield();
    lock.Done();
    step = 3;
    refused.join();
    EXPECT_TRUE(OtherThreadReads(lock));
}

TEST(ReaderWriter, DoneOnAFreeLockChangesNothing) {
    const Lock lock;
    lock.Done();
    lock.Done();
    lock.WaitToWrite();
    EXPECT_FALSE(OtherThreadReads(lock));
    lock.Done();
    lock.Done();
    ASSERT_TRUE(lock.WaitToRead(false));
    Holder writer(lock, 'w');
    EXPECT_FALSE(writer.Granted());
    lock.Done();
    writer.WaitUntilGranted();
}

// Each holder in turn, as '1' for a hold granted and '0' for one waited for.
std::string Granted(const std::vector<std::unique_ptr<Holder>>& holders) {
    std::string text;
    for (const auto& holder : holders) text += holder->Granted() ? '1' : '0';
    return text;
}

TEST(ReaderWriter, TurnsAlternateWhileBothWait) {
    const Lock lock;
    std::vector<std::unique_ptr<Holder>> holders;
    const auto queue = [&](char kind) { holders.push_back(std::make_unique<Holder>(lock, kind)); };
    lock.WaitToWrite();
    for (const char kind : {'r', 'r', 'w', 'w', 'w', 'r'}) queue(kind);
    EXPECT_EQ(Granted(holders), "000000");
    lock.Done();
    holders[2]->WaitUntilGranted();  // readers were first in line, but the first turn is the writers'
    EXPECT_EQ(Granted(holders), "001000");
    holders[2]->LetGo();
    for (const std::size_t reader : {0u, 1u, 5u}) holders[reader]->WaitUntilGranted();
    EXPECT_EQ(Granted(holders), "111001") << "all readers together";
    queue('r');
    EXPECT_EQ(Granted(holders), "1110010");
    for (const std::size_t reader : {0u, 1u, 5u}) holders[reader]->LetGo();
    holders[3]->WaitUntilGranted();
    EXPECT_EQ(Granted(holders), "1111010");
    holders[3]->LetGo();
    holders[6]->WaitUntilGranted();
    EXPECT_EQ(Granted(holders), "1111011");
    holders[6]->LetGo();
    holders[4]->WaitUntilGranted();
}

TEST(ReaderWriter, TurnPassesToWhoeverWaitsAlone) {
    const Lock lock;
    lock.WaitToWrite();
    {
        Holder writer1(lock, 'w');
        Holder writer2(lock, 'w');
        lock.Done();
        writer1.WaitUntilGranted();
        EXPECT_FALSE(writer2.Granted());
        writer1.LetGo();
        writer2.WaitUntilGranted();  // although it is the readers' turn
        Holder reader(lock, 'r');
        Holder writer3(lock, 'w');
        writer2.LetGo();
        reader.WaitUntilGranted();
        EXPECT_FALSE(writer3.Granted());
        reader.LetGo();
        writer3.WaitUntilGranted();
    }
    EXPECT_TRUE(OtherThreadReads(lock));
}

// Writers keep the two values equal; readers must never see them differ.
TEST(ReaderWriter, InvariantHoldsUnderLoad) {
    const Lock lock;
    std::int64_t first = 0;
    std::int64_t second = 0;
    std::atomic<int> writes{0};
    const auto work = [&](std::uint32_t seed) {
        std::minstd_rand random(seed);
        for (int i = 0; i < 1500; ++i) {
            const auto choice = random() % 8;
            const bool write = choice == 0;
            if (write) lock.WaitToWrite();
            if (!write && !lock.WaitToRead(choice != 1)) continue;
            const bool nested = choice < 4 && lock.WaitToRead(false);
            ASSERT_EQ(first, second);
            if (write) {
                first += 3;
                ++writes;
                second += 3;
            }
            if (nested) lock.Done();
            lock.Done();
        }
    };
    std::vector<std::thread> threads;
    for (std::uint32_t t = 1; t <= 4; ++t) threads.emplace_back(work, t);
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(first, 3 * writes);
    EXPECT_TRUE(OtherThreadReads(lock));
}

}  // namespace
}  // namespace dorvutil
