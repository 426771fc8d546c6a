#include "dorvutil/concurrency/reader_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "concurrency/thread_support.h"

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
              if (kind == 'w') lock.WaitToWrite();
              EXPECT_TRUE(kind == 'w' || lock.WaitToRead(true));
              m_granted.SignalEvent();
              m_letGo.WaitForEvent(kWaitForever);
              lock.Done();
          }) {
        m_thread.WaitUntilAsleep();  // for its hold, or with it
    }
    ~Holder() { LetGo(); }

    bool Granted(std::uint32_t waitMs = 0) const { return m_granted.WaitForEvent(waitMs) == 1; }
    void LetGo() {
        m_letGo.SignalEvent();
        m_thread.Join();
    }

private:
    event m_granted;
    event m_letGo;
    test::SleepingThread m_thread;
};

TEST(ReaderWriter, ReadersShareAndAWriterNestsAloneWithADoneForEachHold) {
    const Lock lock;
    lock.Done();  // of a free lock: nothing
    ASSERT_TRUE(lock.WaitToRead(false));
    EXPECT_TRUE(OtherThreadReads(lock));
    lock.Done();
    lock.Done();
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
    EXPECT_FALSE(OtherThreadReads(lock));
    EXPECT_TRUE(lock.WaitToRead(false)) << "this thread reads already";
    lock.Done();
    EXPECT_FALSE(writer.Granted());
    lock.Done();
    EXPECT_TRUE(writer.Granted(test::kSoonMs));
    EXPECT_FALSE(OtherThreadReads(lock));
    writer.LetGo();
    EXPECT_TRUE(OtherThreadReads(lock));
}

// A trace in the holder list would let the refused thread in at its next try; one in the counts would hand the lock to
// a reader who is not there.
TEST(ReaderWriter, RefusedReadLeavesNoTrace) {
    const Lock lock;
    Holder writer(lock, 'w');
    for (int i = 0; i < 2; ++i) EXPECT_FALSE(lock.WaitToRead(false)) << i;
    writer.LetGo();
    lock.WaitToWrite();
    lock.Done();
    EXPECT_TRUE(OtherThreadReads(lock));
}

// Threads r(ead) and w(rite) queue up while the test writes; at every release those of the next turn, and no others,
// get their holds, and more threads may queue up behind them.
TEST(ReaderWriter, TurnsAlternateWhileBothWaitAndPassToWhoeverWaitsAlone) {
    static const struct {
        const char* name;
        std::string queue;
        std::vector<std::pair<std::vector<std::size_t>, std::string>> turns;  // who is served, who arrives meanwhile
    } kCases[] = {
        {"both wait", "rrwwwr", {{{2}, ""}, {{0, 1, 5}, "r"}, {{3}, ""}, {{6}, ""}, {{4}, ""}}},
        {"writers alone, then both", "ww", {{{0}, ""}, {{1}, "rw"}, {{2}, ""}, {{3}, ""}}},
        {"readers alone, then both", "rr", {{{0, 1}, "wr"}, {{2}, ""}, {{3}, ""}}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Lock lock;
        std::deque<Holder> holders;
        const auto queue = [&](const std::string& kinds) {
            for (const char kind : kinds) holders.emplace_back(lock, kind);
        };
        lock.WaitToWrite();
        queue(c.queue);
        lock.Done();
        std::ptrdiff_t granted = 0;
        for (const auto& [served, arriving] : c.turns) {
            for (const auto i : served) EXPECT_TRUE(holders[i].Granted(test::kSoonMs)) << i;
            queue(arriving);
            granted += static_cast<std::ptrdiff_t>(served.size());
            EXPECT_EQ(std::count_if(holders.begin(), holders.end(), [](auto& h) { return h.Granted(); }), granted);
            for (const auto i : served) holders[i].LetGo();
        }
        EXPECT_TRUE(OtherThreadReads(lock));
    }
}

// Writers keep the two values equal; readers must never see them differ.
TEST(ReaderWriter, InvariantHoldsUnderLoad) {
    const Lock lock;
    std::int64_t first = 0, second = 0;
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
