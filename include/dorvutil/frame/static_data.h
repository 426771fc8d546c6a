#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/concurrency/locks.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/memory/list.h"

namespace dorvutil {

class UnitTestMgr;

/// A piece of static data that is set up on first use, counts the references of its users, holds references on the
/// pieces it depends on, and tears itself down when its count returns to 0.
///
/// Constructed (count 0) → referenced (ObtainRef; dependencies obtained) → initialised (Setup) → torn down (last
/// ReleaseRef, or destruction) → referenced again, and so on. While it is torn down, Setup does nothing.
/// Any thread may call it. Locks are taken from dependent towards dependency.
class DORVUTIL_API StaticDataHolder {
public:
    StaticDataHolder();
    StaticDataHolder(const StaticDataHolder&) = delete;
    StaticDataHolder& operator=(const StaticDataHolder&) = delete;
    virtual ~StaticDataHolder();  ///< A derived class tears itself down in its own destructor.

    virtual const char* Name() = 0;  ///< Lives as long as the program.
    virtual void
    AddDependencies() = 0;          ///< Obtains what this holder needs; called under the lock by the first ObtainRef.
    virtual bool Initialize() = 0;  ///< Builds the data; the holder counts as initialised whatever it answers.
    virtual bool Teardown() = 0;    ///< Destroys the data.

    /// Adds a reference. The first one lifts a tear-down, obtains the dependencies and asks for the holder's own log.
    void ObtainRef();
    /// Drops a reference; balances one ObtainRef. The last one tears the data down and releases the dependencies, which
    /// are forgotten when `clearList` is set and obtained again by the next ObtainRef when it is not.
    void ReleaseRef(bool clearList);
    /// Obtains a reference on `holder` and lists it; null is ignored.
    void AddDependency(StaticDataHolder* holder);
    /// Destroys the data when it is initialised. Until the next first ObtainRef nothing sets it up again.
    void TryTeardown();
    /// Builds the data unless it is built, being built on this thread, or torn down.
    void Setup() {
        if (!IsInitialized() && !m_tornDown.load(std::memory_order_acquire)) SetUpNow();
    }
    /// Sets up every dependency, depth first, and then this holder.
    void SetupR();
    /// The log of this holder alone, asked for with the first reference; -1 without a log manager.
    std::int32_t DedicatedLogId() const { return m_dedicatedLogId; }
    bool IsInitialized() const { return m_initialized.load(std::memory_order_acquire); }

    /// The self-tests of this holder, set up first; null when it has none. Owned by the holder until tear-down.
    UnitTestMgr* GetUnitTestMgr();

protected:
    /// Takes ownership of `manager` (null: none), destroys the one before it and registers the new one's cases.
    void SetUnitTestMgr(UnitTestMgr* manager);

    /// References each listed dependency once more, in list order.
    void ObtainDependencies();

private:
    void SetUpNow();
    bool DoInitialize();
    void ReleaseDeps(bool clearList);

    std::atomic<std::int32_t> m_dedicatedLogId{-1};
    std::uint32_t m_references = 0;
    std::atomic<bool> m_initialized{false};
    std::atomic<bool> m_tornDown{false};
    bool m_initializing = false;
    ListMgr<StaticDataHolder> m_dependencies{false, 10};  // not owned
    critSec m_lock;                                       // guards everything above
    UnitTestMgr* m_unitTests = nullptr;                   // owned
};

/// The holder a client declares to say which holders it needs for as long as it lives: it references itself at
/// construction and lets everything go, in order, at destruction.
class DORVUTIL_API DependencyHolder : public StaticDataHolder {
public:
    DependencyHolder();
    ~DependencyHolder() override;

    const char* Name() override;
    void AddDependencies() override;
    bool Initialize() override;
    bool Teardown() override;
};

}  // namespace dorvutil
