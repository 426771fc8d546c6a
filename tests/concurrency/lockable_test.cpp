#include "dorvutil/concurrency/lockable.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace dorvutil {
namespace {

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

TEST(Lockable, DeletesItselfAtTheLastUnref) {
    int deaths = 0;
    auto* const object = new Counted(&deaths);
    EXPECT_EQ(object->Ref(), 1);
    EXPECT_EQ(object->Ref(), 2);
    EXPECT_EQ(object->Unref(), 1);
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(object->Unref(), 0);
    EXPECT_EQ(deaths, 1);
}

TEST(Lockable, InitialCountBelongsToTheCreator) {
    int deaths = 0;
    CBaseLockable* const object = new Counted(&deaths, 1);
    EXPECT_EQ(object->Ref(), 2);
    EXPECT_EQ(object->Unref(), 1);
    EXPECT_EQ(object->Unref(), 0);
    EXPECT_EQ(deaths, 1);
}

TEST(Lockable, CopiesNeverTakeTheCount) {
    int deaths = 0;
    auto* const original = new Counted(&deaths, 5);
    auto* const copy = new Counted(*original);
    EXPECT_EQ(copy->Ref(), 1);
    EXPECT_EQ(original->Ref(), 6);
    static_cast<TLockable<critSec>&>(*original) = *copy;
    EXPECT_EQ(original->Unref(), 5);
    EXPECT_EQ(copy->Unref(), 0);
    EXPECT_EQ(deaths, 1);
    delete original;
}

TEST(Lockable, CountSurvivesManyThreads) {
    int deaths = 0;
    auto* const object = new Counted(&deaths, 1);
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        object->Ref();
        threads.emplace_back([object] {
            for (int i = 0; i < 5000; ++i) {
                object->Ref();
                object->Unref();
            }
            object->Unref();
        });
    }
    EXPECT_GE(object->Unref(), 0);
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(deaths, 1);
}

TEST(Locker, HoldsOneReferenceForItsLife) {
    int deaths = 0;
    auto* const object = new Counted(&deaths, 1);
    {
        const Holder first(object);
        EXPECT_EQ(object->Count(), 2);
        const Holder second(first);
        EXPECT_EQ(object->Count(), 3);
        EXPECT_EQ(second.GetLockable(), object);
    }
    EXPECT_EQ(object->Count(), 1);
    object->Unref();
    EXPECT_EQ(deaths, 1);
}

TEST(Locker, SettingThePointerItHoldsKeepsTheObject) {
    int deaths = 0;
    auto* const object = new Counted(&deaths);
    Holder holder(object);  // the only reference: dropping it first would destroy the object
    holder.SetLockable(object);
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(object->Count(), 1);
    holder.SetLockable(nullptr);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(holder.GetLockable(), nullptr);
}

TEST(Locker, AssignmentMovesTheReference) {
    int deaths = 0;
    auto* const a = new Counted(&deaths, 1);
    auto* const b = new Counted(&deaths, 1);
    Holder holder(a);
    const Holder other(b);
    const Holder none;
    holder = other;
    EXPECT_EQ(a->Count(), 1);
    EXPECT_EQ(b->Count(), 3);
    const Holder& itself = holder;
    holder = itself;
    EXPECT_EQ(b->Count(), 3);
    holder = none;
    EXPECT_EQ(b->Count(), 2);
    EXPECT_EQ(Holder(none).GetLockable(), nullptr);
    a->Unref();
    b->Unref();
    EXPECT_EQ(deaths, 1);
}

}  // namespace
}  // namespace dorvutil
