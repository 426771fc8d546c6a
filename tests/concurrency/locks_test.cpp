#include "dorvutil/concurrency/locks.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "concurrency/thread_support.h"
#include "dorvutil/concurrency/lockable.h"
#include "dorvutil/concurrency/sync.h"
#include "dorvutil/platform/mutex.h"

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

TYPED_TEST(LockContract, ThreadsStartedWhileItIsHeldSleepAndAreAllWoken) {
    TypeParam lock;
    int count = 0;
    lock.Enter();
    test::Sleepers sleepers;
    for (int i = 0; i < 4; ++i) {
        const auto enter = [&] {
            const TScopedLock hold(lock);
            ++count;
        };
        sleepers.emplace_back(enter).WaitUntilAsleep();
    }
    EXPECT_EQ(count, 0);
    lock.Exit();
    sleepers.clear();
    EXPECT_EQ(count, 4);
}

TYPED_TEST(LockContract, OnlyTheHolderReleasesItsHoldsAndOneByOne) {
    TypeParam lock;
    lock.Exit();
    lock.Enter();
    lock.Enter();
    ASSERT_TRUE(lock.TryLock());
    std::thread([&] { lock.Exit(); }).join();
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(OtherThreadGets(lock)) << i;
        lock.Exit();
    }
    EXPECT_TRUE(OtherThreadGets(lock));
}

TYPED_TEST(LockContract, ContendingThreadsExcludeEachOther) {
    constexpr int kThreads = 4, kRounds = 2000;
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

TEST(BaseSync, LockAndUnlockAreEnterAndExitAndTheNullKindNeverLocks) {
    const nullSync plain;
    plain.Enter();
    EXPECT_TRUE(plain.TryLock() && OtherThreadGets(plain));
    const TCompactSync<nullSync> compact;
    const CCustomSync custom(ts_nullSync), locking;
    for (const CBaseSync* const lock : {static_cast<const CBaseSync*>(&compact), static_cast<const CBaseSync*>(&custom),
                                        static_cast<const CBaseSync*>(&locking)}) {
        lock->Lock();
        EXPECT_TRUE(lock->TryLock());
        lock->Unlock();
        EXPECT_EQ(OtherThreadGets(*lock), lock != &locking);
        lock->Unlock();
        EXPECT_TRUE(OtherThreadGets(*lock));
    }
}

TEST(MutexAbandoned, IsRefusedOnceByTryLockAndTakenOverByEnter) {
    const mutex lock;
    const auto abandon = [&] {
        lock.Enter();
        lock.Enter();
    };
    std::thread(abandon).join();
    EXPECT_FALSE(lock.TryLock());
    EXPECT_TRUE(OtherThreadGets(lock)) << "a refused TryLock must leave no hold";
    std::thread(abandon).join();
    lock.Enter();
    EXPECT_FALSE(OtherThreadGets(lock));
    lock.Exit();
    EXPECT_TRUE(OtherThreadGets(lock)) << "the dead holder's nested holds must not count";
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

struct Counted : TLockable<critSec> {
    explicit Counted(int* deaths, std::int32_t initial = 0) : TLockable(initial), m_deaths(deaths) {}
    Counted(const Counted&) = default;
    ~Counted() override { ++*m_deaths; }

    // The count as a Ref and an Unref show it.
    std::int32_t Count() {
        Ref();
        return Unref();
    }

    int* m_deaths;
};

struct Holder : TLocker<Counted> {
    using TLocker::GetLockable;
    using TLocker::TLocker;
};

TEST(Lockable, CopiesNeverTakeTheCount) {
    int deaths = 0;
    auto* const original = new Counted(&deaths, 5);
    auto* const copy = new Counted(*original);
    EXPECT_EQ(copy->Ref(), 1);
    static_cast<TLockable<critSec>&>(*original) = *copy;
    EXPECT_EQ(original->Count(), 5);
    EXPECT_EQ(copy->Unref(), 0);
    delete original;
}

TEST(Lockable, CountSurvivesManyThreads) {
    int deaths = 0;
    auto* const object = new Counted(&deaths, 1);
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        object->Ref();
        threads.emplace_back([object] {
            for (int i = 0; i < 5000; ++i) object->Count();
            object->Unref();
        });
    }
    object->Unref();
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(deaths, 1);
}

TEST(Locker, HoldsOneReferenceWhereverItPoints) {
    int deaths = 0;
    auto* const a = new Counted(&deaths);
    auto* const b = new Counted(&deaths, 1);
    {
        Holder holder(a);
        holder.SetLockable(a);  // the only reference: dropping it first would destroy the object
        EXPECT_EQ(deaths, 0);
        const Holder copy(holder), other(b), none;
        EXPECT_EQ(a->Count(), 2);
        holder = other;
        EXPECT_EQ(a->Count(), 1);
        const Holder& itself = holder;
        holder = itself;
        EXPECT_EQ(b->Count(), 3);
        EXPECT_EQ(holder.GetLockable(), b);
        holder = none;
        EXPECT_EQ(Holder(holder).GetLockable(), nullptr);
        EXPECT_EQ(b->Count(), 2);
    }
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(b->Unref(), 0);
    EXPECT_EQ(deaths, 2);
}

}  // namespace
}  // namespace dorvutil
