#include "dorvutil/concurrency/locks.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "dorvutil/concurrency/sync.h"
#include "dorvutil/platform/mutex.h"
#include "sleeping_thread.h"

namespace dorvutil {
namespace {

template <std::int32_t kKind>
struct CustomSync : CCustomSync {
    CustomSync() : CCustomSync(static_cast<tstype>(kKind)) {}
};

template <class L>
bool OtherThreadGets(const L& lock) {
    bool taken = false;
    std::thread([&] {
        taken = lock.TryLock();
        if (taken) lock.Exit();
    }).join();
    return taken;
}

template <class L>
class LockContract : public testing::Test {};
using Locks = testing::Types<critSec, mutex, TCompactSync<critSec>, TCompactSync<mutex>, CCustomSync,
                             CustomSync<ts_critSec>, CustomSync<ts_mutex>, CustomSync<7>, CustomSync<-1>>;
TYPED_TEST_SUITE(LockContract, Locks);

TYPED_TEST(LockContract, ThreadStartedWhileTheLockIsHeldWaitsForIt) {
    TypeParam lock;
    int order = 0;
    lock.Enter();
    SleepingThread other([&] {
        lock.Enter();
        order = order * 10 + 2;
        lock.Exit();
    });
    other.WaitUntilAsleep();
    order = order * 10 + 1;
    lock.Exit();
    other.Join();
    EXPECT_EQ(order, 12);
}

TYPED_TEST(LockContract, RecursiveHoldsAreReleasedOneByOne) {
    TypeParam lock;
    lock.Enter();
    lock.Enter();
    ASSERT_TRUE(lock.TryLock());
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(OtherThreadGets(lock)) << i;
        lock.Exit();
    }
    EXPECT_TRUE(OtherThreadGets(lock));
}

TYPED_TEST(LockContract, ExitByAnotherThreadReleasesNothing) {
    TypeParam lock;
    lock.Exit();
    lock.Enter();
    std::thread([&] { lock.Exit(); }).join();
    EXPECT_FALSE(OtherThreadGets(lock));
    lock.Exit();
    EXPECT_TRUE(OtherThreadGets(lock));
}

TYPED_TEST(LockContract, ContendingThreadsExcludeEachOther) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 2000;
    TypeParam lock;
    int count = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kRounds; ++i) {
                while (t == 0 && !lock.TryLock()) std::this_thread::yield();
                if (t != 0) lock.Enter();
                const TScopedLock again(lock);
                ++count;
                lock.Exit();
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(count, kThreads * kRounds);
}

TYPED_TEST(LockContract, EverySleeperIsWoken) {
    TypeParam lock;
    int count = 0;
    lock.Enter();
    std::vector<std::unique_ptr<SleepingThread>> sleepers;
    for (int i = 0; i < 5; ++i) {
        sleepers.push_back(std::make_unique<SleepingThread>([&] {
            const TScopedLock hold(lock);
            ++count;
        }));
        sleepers.back()->WaitUntilAsleep();
    }
    lock.Exit();
    for (auto& sleeper : sleepers) sleeper->Join();
    EXPECT_EQ(count, 5);
}

TEST(CritSec, MayBeDestroyedByTheThreadThatEntersNext) {
    struct Shared {
        critSec lock;
        int holders = 2;
    };
    const auto letGo = [](Shared* shared) {
        shared->lock.Enter();
        const bool last = --shared->holders == 0;
        shared->lock.Exit();
        if (last) delete shared;
    };
    for (int i = 0; i < 200; ++i) {
        auto* const shared = new Shared;
        std::thread other(letGo, shared);
        letGo(shared);
        other.join();
    }
}

TEST(NullSync, NeverLocks) {
    const nullSync plain;
    const TCompactSync<nullSync> compact;
    const CCustomSync custom(ts_nullSync);
    plain.Enter();
    EXPECT_TRUE(plain.TryLock());
    EXPECT_TRUE(OtherThreadGets(plain));
    plain.Exit();
    for (const CBaseSync* lock : {static_cast<const CBaseSync*>(&compact), static_cast<const CBaseSync*>(&custom)}) {
        lock->Lock();
        EXPECT_TRUE(lock->TryLock());
        EXPECT_TRUE(OtherThreadGets(*lock));
        lock->Unlock();
    }
}

TEST(BaseSync, LockAndUnlockAreEnterAndExit) {
    const TCompactSync<critSec> lock;
    const CBaseSync& base = lock;
    base.Lock();
    EXPECT_FALSE(OtherThreadGets(base));
    base.Unlock();
    EXPECT_TRUE(OtherThreadGets(base));
}

TEST(MutexAbandoned, TryLockRefusesItOnce) {
    const mutex lock;
    std::thread([&] {
        lock.Enter();
        lock.Enter();
    }).join();
    EXPECT_FALSE(lock.TryLock());
    EXPECT_TRUE(OtherThreadGets(lock)) << "a refused TryLock must leave no hold";
    ASSERT_TRUE(lock.TryLock());
    EXPECT_FALSE(OtherThreadGets(lock));
    lock.Exit();
    EXPECT_TRUE(OtherThreadGets(lock)) << "the dead holder's nested holds must not count";
}

TEST(MutexAbandoned, EnterTakesItOver) {
    const mutex lock;
    std::thread([&] { lock.Enter(); }).join();
    lock.Enter();
    EXPECT_FALSE(OtherThreadGets(lock));
    lock.Exit();
    EXPECT_TRUE(OtherThreadGets(lock));
}

TEST(PlatformMutex, ClosingEndsTheHoldsOfTheClosingThread) {
    for (const char16_t* name : {static_cast<const char16_t*>(nullptr), u"dorvutil closed while held"}) {
        platform::MutexObject* const held = platform::OpenMutex(name);
        ASSERT_EQ(platform::LockMutex(held, true), platform::MutexWait::kAcquired);
        ASSERT_EQ(platform::LockMutex(held, false), platform::MutexWait::kAcquired);
        platform::CloseMutex(held);
        const mutex other;  // would be linked to the memory now gone, in the thread's list of held mutexes
        EXPECT_TRUE(other.TryLock());
        other.Exit();
    }
}

TEST(PlatformMutex, AnswersForNoObject) {
    EXPECT_EQ(platform::LockMutex(nullptr, true), platform::MutexWait::kFailed);
    EXPECT_EQ(platform::LockMutex(nullptr, false), platform::MutexWait::kFailed);
    EXPECT_FALSE(platform::UnlockMutex(nullptr));
    platform::CloseMutex(nullptr);
}

}  // namespace
}  // namespace dorvutil
