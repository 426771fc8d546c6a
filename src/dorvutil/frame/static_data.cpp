#include "dorvutil/frame/static_data.h"

#include "dorvutil/frame/unit_test.h"
#include "dorvutil/logging/log.h"

namespace dorvutil {

StaticDataHolder::StaticDataHolder() = default;

StaticDataHolder::~StaticDataHolder() { delete m_unitTests; }

void StaticDataHolder::ObtainRef() {
    bool first = false;
    {
        const TScopedLock lock(m_lock);
        first = m_references++ == 0;
        if (first) {
            m_tornDown.store(false, std::memory_order_release);
            AddDependencies();
        }
    }
    // Also sets the managers up: holding a reference means that they are there.
    if (first) m_dedicatedLogId = Log_CreateDedicatedFileLogger(Name());
}

void StaticDataHolder::ReleaseRef(bool clearList) {
    const TScopedLock lock(m_lock);
    if (--m_references != 0) return;
    TryTeardown();
    ReleaseDeps(clearList);
}

void StaticDataHolder::AddDependency(StaticDataHolder* holder) {
    if (!holder) return;
    holder->ObtainRef();
    const TScopedLock lock(m_lock);
    m_dependencies.Add(holder);
}

void StaticDataHolder::TryTeardown() {
    if (!IsInitialized()) return;
    const TScopedLock lock(m_lock);
    if (!IsInitialized()) return;
    // Torn down first: an accessor that sees neither flag would build everything anew.
    m_tornDown.store(true, std::memory_order_release);
    m_initialized.store(false, std::memory_order_release);
    delete m_unitTests;
    m_unitTests = nullptr;
    Teardown();
}

void StaticDataHolder::SetUpNow() {
    const TScopedLock lock(m_lock);
    if (IsInitialized() || m_tornDown.load(std::memory_order_acquire) || m_initializing) return;
    DoInitialize();
}

void StaticDataHolder::SetupR() {
    for (std::uint32_t i = 0; i < m_dependencies.Count(); ++i) {
        if (StaticDataHolder* const holder = m_dependencies[i]) holder->SetupR();
    }
    Setup();
}

UnitTestMgr* StaticDataHolder::GetUnitTestMgr() {
    Setup();
    return m_unitTests;
}

void StaticDataHolder::SetUnitTestMgr(UnitTestMgr* manager) {
    delete m_unitTests;
    m_unitTests = manager;
    if (m_unitTests) m_unitTests->SetupTests();
}

void StaticDataHolder::ObtainDependencies() {
    for (std::uint32_t i = 0; i < m_dependencies.Count(); ++i) {
        if (StaticDataHolder* const holder = m_dependencies[i]) holder->ObtainRef();
    }
}

bool StaticDataHolder::DoInitialize() {
    m_initializing = true;
    const bool done = Initialize();
    m_initialized.store(true, std::memory_order_release);
    m_initializing = false;
    return done;
}

void StaticDataHolder::ReleaseDeps(bool clearList) {
    for (std::uint32_t i = 0; i < m_dependencies.Count(); ++i) {
        StaticDataHolder* const holder = m_dependencies[i];
        if (clearList) m_dependencies.Data()[i] = nullptr;
        if (holder) holder->ReleaseRef(true);
    }
    if (clearList) {
        m_dependencies.Flush();
        m_dependencies.SetSize(0);
    }
}

DependencyHolder::DependencyHolder() {
    ObtainRef();
    Setup();
}

DependencyHolder::~DependencyHolder() { ReleaseRef(true); }

const char* DependencyHolder::Name() { return "DepHolder"; }

void DependencyHolder::AddDependencies() { ObtainDependencies(); }

bool DependencyHolder::Initialize() { return true; }

bool DependencyHolder::Teardown() { return true; }

}  // namespace dorvutil
