#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/locks.h"
#include "dorvutil/platform/event.h"
#include "dorvutil/platform/mutex.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kPatience = 20'000;  // milliseconds a lost signal may cost a test

// Names of this run alone, so that two runs of the suite do not meet.
std::string NameOf(const std::string& topic) { return "dorvutil test/" + std::to_string(::getpid()) + " " + topic; }

// A process of its own that runs `work` and reports what it returns; unlike the parent's, its openings end with it.
class Child {
public:
    template <class F>
    explicit Child(F work) : m_process(::fork()) {
        if (m_process == 0) ::_exit(work());
    }
    ~Child() { Status(); }

    void Kill() const { ::kill(m_process, SIGKILL); }
    int Status() {
        int status = 0;
        if (m_process > 0) ::waitpid(std::exchange(m_process, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t m_process;
};

// Both sides of a conversation, by way of two named events: that they arrive shows that events are shared.
struct Conversation {
    explicit Conversation(const std::string& topic)
        : ready(false, (topic + " ready").c_str()), goOn(false, (topic + " go on").c_str()) {}
    bool Await() const { return ready.WaitForEvent(kPatience) == 1; }
    void TellAndAwait() const {
        ready.SignalEvent();
        goOn.WaitForEvent(kPatience);
    }
    event ready;
    event goOn;
};

TEST(NamedMutex, ExcludesAnotherProcess) {
    const std::string name = NameOf("exclude");
    Child child([&] {
        const Conversation talk(name);
        const mutex lock(name.c_str());
        lock.Enter();
        talk.TellAndAwait();
        lock.Exit();
        talk.TellAndAwait();
        return lock.TryLock() ? 1 : 7;
    });
    const Conversation talk(name);
    const mutex lock(name.c_str());
    ASSERT_TRUE(talk.Await());
    EXPECT_FALSE(lock.TryLock());
    talk.goOn.SignalEvent();
    ASSERT_TRUE(talk.Await());
    EXPECT_TRUE(lock.TryLock());
    talk.goOn.SignalEvent();
    EXPECT_EQ(child.Status(), 7);
    lock.Exit();
}

TEST(NamedMutex, KilledHolderLeavesItAbandoned) {
    const std::string name = NameOf("killed");
    const Conversation talk(name);
    const mutex lock(name.c_str());
    for (const bool byTryLock : {true, false}) {
        SCOPED_TRACE(byTryLock);
        Child child([&] {
            const Conversation childTalk(name);
            const mutex childLock(name.c_str());
            childLock.Enter();
            childLock.Enter();
            childTalk.TellAndAwait();
            return 0;
        });
        ASSERT_TRUE(talk.Await());
        EXPECT_FALSE(lock.TryLock());
        child.Kill();
        child.Status();
        if (byTryLock) {
            EXPECT_FALSE(lock.TryLock()) << "abandoned";
        }
        lock.Enter();
        lock.Exit();
    }
}

TEST(NamedEvent, KindIsItsCreators) {
    const std::string name = NameOf("kind");
    event manual(true, name.c_str());
    const event second(false, name.c_str());
    manual.SignalEvent();
    EXPECT_EQ(second.WaitForEvent(0), 1);
    EXPECT_EQ(second.WaitForEvent(0), 1);
    manual.ClearEvent();
    EXPECT_EQ(second.WaitForEvent(0), 0);
}

TEST(NamedEvent, KilledSleeperTakesNoSignalWithIt) {
    const std::string name = NameOf("sleeper");
    const Conversation talk(name);
    event on(false, name.c_str());
    {
        Child child([&] {
            const Conversation childTalk(name);
            childTalk.ready.SignalEvent();
            const event childOn(false, name.c_str());
            return childOn.WaitForEvent(kPatience);
        });
        ASSERT_TRUE(talk.Await());
        child.Kill();
    }
    on.SignalEvent();
    EXPECT_EQ(on.WaitForEvent(0), 1);
}

TEST(NamedObjects, LiveAsLongAsSomebodyHasThemOpen) {
    const std::string name = NameOf("life");
    auto first = std::make_unique<event>(true, name.c_str());
    first->SignalEvent();
    {
        const event second(true, name.c_str());
        first.reset();
        EXPECT_EQ(second.WaitForEvent(0), 1) << "a closed one must not take the name along";
    }
    EXPECT_EQ(event(true, name.c_str()).WaitForEvent(0), 0) << "gone with its last opener";
}

TEST(NamedObjects, KilledOnlyOpenerLeavesNothing) {
    const std::string name = NameOf("leftover");
    const Conversation talk(name + " talk");
    Child child([&] {
        const Conversation childTalk(name + " talk");
        const event on(false, name.c_str());
        const mutex lock(name.c_str());
        on.SignalEvent();
        lock.Enter();
        childTalk.TellAndAwait();
        return 0;
    });
    ASSERT_TRUE(talk.Await());
    child.Kill();
    child.Status();
    EXPECT_EQ(event(true, name.c_str()).WaitForEvent(0), 0);
    EXPECT_TRUE(mutex(name.c_str()).TryLock()) << "not even abandoned: it is a new one";
}

TEST(NamedObjects, ForkedProcessDoesNotEndTheParentsObject) {
    const std::string name = NameOf("fork");
    auto* const on = new event(true, name.c_str());
    on->SignalEvent();
    Child child([&] {
        delete on;
        return event(true, name.c_str()).WaitForEvent(0);
    });
    EXPECT_EQ(child.Status(), 1);
    EXPECT_EQ(event(true, name.c_str()).WaitForEvent(0), 1);
    delete on;
}

// Every pair of these is two objects.
TEST(NamedObjects, DifferentNamesAreDifferentObjects) {
    const std::string stem = NameOf("names");
    const std::vector<std::string> names = {stem,
                                            stem + "x",
                                            stem + "/",
                                            stem + "\\",
                                            stem + "%002F",
                                            stem + "\xC3\xA9",
                                            stem + "\xF0\x9F\x9A\x97",
                                            stem + "X",
                                            stem + "\xFF",
                                            stem + std::string(9000, 'a'),
                                            stem + std::string(9001, 'a'),
                                            stem + std::string(9000, 'b'),
                                            "Global\\" + stem};
    std::vector<std::unique_ptr<event>> events;
    for (const auto& name : names) events.push_back(std::make_unique<event>(true, name.c_str()));
    for (std::size_t i = 0; i < names.size(); ++i) {
        events[i]->SignalEvent();
        for (std::size_t j = 0; j < names.size(); ++j) {
            EXPECT_EQ(event(true, names[j].c_str()).WaitForEvent(0), i == j ? 1 : 0) << i << " " << j;
        }
        events[i]->ClearEvent();
    }
}

TEST(NamedObjects, MutexAndEventOfOneNameDoNotMeet) {
    const std::string name = NameOf("both");
    event on(false, name.c_str());
    const mutex lock(name.c_str());
    lock.Enter();
    EXPECT_EQ(on.WaitForEvent(0), 0);
    on.SignalEvent();
    EXPECT_EQ(on.WaitForEvent(0), 1);
    lock.Exit();
}

TEST(NamedObjects, EmptyAndNullNamesAreAnonymous) {
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        event first(true, name);
        const event second(true, name);
        first.SignalEvent();
        EXPECT_EQ(second.WaitForEvent(0), 0);
    }
}

TEST(NamedObjects, LoneSurrogatesMakeNamesToo) {
    platform::EventObject* const on = platform::OpenEvent(true, u"dorvutil \xD800");
    platform::EventObject* const other = platform::OpenEvent(true, u"dorvutil \xD801");
    ASSERT_NE(on, nullptr);
    ASSERT_NE(other, nullptr);
    platform::SetEvent(on);
    EXPECT_EQ(platform::WaitForEvent(other, 0), 0);
    platform::CloseEvent(on);
    platform::CloseEvent(other);
}

TEST(NamedMutex, ClosedWhileHeldElsewhereInTheProcessStaysSound) {
    const std::string name = NameOf("two handles");
    auto first = std::make_unique<mutex>(name.c_str());
    const mutex second(name.c_str());
    first->Enter();
    second.Enter();
    first->Exit();
    first.reset();
    const mutex unrelated;  // enters the same list of held mutexes
    unrelated.Enter();
    second.Exit();
    unrelated.Exit();
    EXPECT_TRUE(second.TryLock());
    second.Exit();
}

TEST(NamedObjects, AnotherProcessThatClosesItLeavesTheName) {
    const std::string name = NameOf("visitor");
    event on(true, name.c_str());
    on.SignalEvent();
    for (int visit = 0; visit < 2; ++visit) {
        Child child([&] { return event(true, name.c_str()).WaitForEvent(0); });
        EXPECT_EQ(child.Status(), 1) << visit;
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
    std::vector<std::unique_ptr<Child>> children;
    for (int c = 0; c < 2; ++c) {
        children.push_back(std::make_unique<Child>([&] { return UseTogether(u"dorvutil race", inside); }));
    }
    for (auto& child : children) EXPECT_EQ(child->Status(), 0);
    ::munmap(memory, sizeof(std::atomic<int>));
}

}  // namespace
}  // namespace dorvutil
