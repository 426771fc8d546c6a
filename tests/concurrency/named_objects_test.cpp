#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <chrono>
#include <deque>
#include <memory>
#include <vector>

#include "concurrency/thread_support.h"
#include "dorvutil/concurrency/locks.h"
#include "dorvutil/platform/mutex.h"

namespace dorvutil {
namespace {

using test::kSoonMs;
using test::UniqueName;

// A process of its own that runs `work` and reports what it returns; unlike the parent's, its openings end with it.
class Child {
public:
    template <class F>
    explicit Child(F work) : m_process(::fork()) {
        if (m_process == 0) ::_exit(work());
    }
    ~Child() { Status(); }

    void Kill() {
        if (m_process > 0) ::kill(m_process, SIGKILL);
        Status();
    }
    int Status() {
        int status = 0;
        if (m_process > 0) ::waitpid(std::exchange(m_process, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t m_process;
};

TEST(NamedMutex, ExcludesAnotherProcessUntilThatLetsGoOrIsKilled) {
    enum End { kLetsGo, kKilledBeforeTryLock, kKilledBeforeEnter };
    for (const End end : {kLetsGo, kKilledBeforeTryLock, kKilledBeforeEnter}) {
        SCOPED_TRACE(end);
        const std::string name = UniqueName("exclude");
        const event ready(false, (name + " ready").c_str()), goOn(false, (name + " go on").c_str());
        const mutex lock(name.c_str());
        Child child([&] {
            const mutex childLock(name.c_str());
            childLock.Enter();
            childLock.Enter();
            event(false, (name + " ready").c_str()).SignalEvent();
            event(false, (name + " go on").c_str()).WaitForEvent(kSoonMs);
            childLock.Exit();
            childLock.Exit();
            return 7;
        });
        ASSERT_EQ(ready.WaitForEvent(kSoonMs), 1);
        EXPECT_FALSE(lock.TryLock());
        if (end == kLetsGo) {
            goOn.SignalEvent();
            EXPECT_EQ(child.Status(), 7);
        }
        child.Kill();
        EXPECT_EQ(end != kKilledBeforeEnter && lock.TryLock(), end == kLetsGo) << "abandoned if killed";
        lock.Enter();
        lock.Exit();
    }
}

TEST(NamedEvent, KindIsItsCreators) {
    const std::string name = UniqueName("kind");
    const event manual(true, name.c_str()), second(false, name.c_str());
    manual.SignalEvent();
    EXPECT_EQ(second.WaitForEvent(0), 1);
    EXPECT_EQ(second.WaitForEvent(0), 1);
}

TEST(NamedEvent, KilledSleeperTakesNoSignalWithIt) {
    const std::string name = UniqueName("sleeper");
    const event on(false, name.c_str()), ready(false, (name + " ready").c_str());
    Child child([&] {
        ready.SignalEvent();
        return event(false, name.c_str()).WaitForEvent(kSoonMs);
    });
    ASSERT_EQ(ready.WaitForEvent(kSoonMs), 1);
    child.Kill();
    on.SignalEvent();
    EXPECT_EQ(on.WaitForEvent(0), 1);
}

TEST(NamedObjects, LiveUntilTheirLastOpenerCloses) {
    const std::string name = UniqueName("life");
    const auto state = [&] { return event(true, name.c_str()).WaitForEvent(0); };
    auto* const first = new event(true, name.c_str());
    first->SignalEvent();
    for (const bool closesInherited : {false, true}) {
        Child visitor([&] {
            if (closesInherited) delete first;
            return state();
        });
        EXPECT_EQ(visitor.Status(), 1);
        EXPECT_EQ(state(), 1) << "another process that closes it leaves the name";
    }
    {
        const event second(true, name.c_str());
        delete first;
        EXPECT_EQ(second.WaitForEvent(0), 1);
        EXPECT_EQ(state(), 1);
    }
    EXPECT_EQ(state(), 0) << "gone with its last opener";
}

TEST(NamedObjects, KilledOnlyOpenerLeavesNothing) {
    const std::string name = UniqueName("leftover");
    const event ready(false, (name + " ready").c_str());
    Child child([&] {
        const event on(false, name.c_str());
        const mutex lock(name.c_str());
        lock.Enter();
        if (on.WaitForEvent(0) == 0) ready.SignalEvent();  // event and mutex do not meet
        on.SignalEvent();
        return event().WaitForEvent(kSoonMs);
    });
    ASSERT_EQ(ready.WaitForEvent(kSoonMs), 1);
    child.Kill();
    EXPECT_EQ(event(true, name.c_str()).WaitForEvent(0), 0);
    EXPECT_TRUE(mutex(name.c_str()).TryLock()) << "not even abandoned: it is a new one";
}

// Every pair of these is two objects.
TEST(NamedObjects, DifferentNamesAreDifferentObjects) {
    const std::string stem = UniqueName("names");
    std::vector<std::string> names = {"Global\\" + stem, stem + std::string(9000, 'a'), stem + std::string(9001, 'a'),
                                      stem + std::string(9000, 'b')};
    for (const char* end : {"", "x", "X", "/", "\\", "%002F", "\xC3\xA9", "\xF0\x9F\x9A\x97", "\xFF"}) {
        names.push_back(stem + end);
    }
    std::deque<event> events;
    for (const auto& name : names) events.emplace_back(true, name.c_str());
    for (std::size_t i = 0; i < names.size(); ++i) {
        events[i].SignalEvent();
        for (std::size_t j = 0; j < names.size(); ++j) {
            EXPECT_EQ(event(true, names[j].c_str()).WaitForEvent(0), i == j ? 1 : 0) << i << " " << j;
        }
        events[i].ClearEvent();
    }
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        const event anonymous(true, name);
        anonymous.SignalEvent();
        EXPECT_EQ(event(true, name).WaitForEvent(0), 0);
    }
}

// Opens, takes, leaves and closes the mutex over and over; 0 when never two processes were inside at once.
int UseTogether(const char16_t* name, std::atomic<int>& inside) {
    for (int i = 0; i < 1500; ++i) {
        platform::MutexObject* const lock = platform::OpenMutex(name);
        if (!lock) return 1;
        if (platform::LockMutex(lock, true) != platform::MutexWait::kAcquired) return 2;
        if (++inside != 1) return 3;
        std::this_thread::sleep_for(std::chrono::microseconds(1));
        --inside;
        if (!platform::UnlockMutex(lock)) return 4;
        platform::CloseMutex(lock);
    }
    return 0;
}

// Creation and removal of the name meet in every order: two objects of one name would let two processes in.
TEST(NamedObjects, CreationAndRemovalDoNotRace) {
    void* const memory =
        ::mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto& inside = *new (memory) std::atomic<int>(0);
    const auto use = [&] { return UseTogether(u"dorvutil race", inside); };
    Child first(use), second(use);
    EXPECT_EQ(first.Status(), 0);
    EXPECT_EQ(second.Status(), 0);
    ::munmap(memory, sizeof(std::atomic<int>));
}

}  // namespace
}  // namespace dorvutil
