#include "dorvutil/frame/registry.h"

#include <new>

#include "dorvutil/concurrency/low_res_timer_mgr.h"
#include "dorvutil/concurrency/semaphore.h"
#include "dorvutil/concurrency/timer.h"
#include "dorvutil/frame/library_hash.h"
#include "dorvutil/frame/message_screen.h"
#include "dorvutil/frame/unit_test.h"
#include "dorvutil/logging/manager_use.h"
#include "dorvutil/memory/pool.h"
#include "dorvutil/messaging/callback_mgr.h"
#include "dorvutil/messaging/progress_mgr.h"
#include "dorvutil/orvcache/cache_mgr.h"
#include "dorvutil/platform/thread.h"
#include "dorvutil/storage/file_mgr.h"
#include "dorvutil/storage/stdio_handle.h"
#include "dorvutil/system/devices.h"
#include "dorvutil/system/sys_attr.h"
#include "dorvutil/system/system_mgr.h"
#include "dorvutil/text/special_chars.h"
#include "dorvutil/text/string_allocator.h"
#include "dorvutil/time/time_zone_util.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kPoolBlockSize = 4096;  // bytes

template <class T>
Allocator* NewPool() {
    return new (std::nothrow) Allocator(sizeof(T), ts_critSec, kPoolBlockSize, nullptr, false, false);
}

template <class T>
void Create(std::atomic<T*>& slot) {
    slot.store(new (std::nothrow) T, std::memory_order_release);
}

// Empties the slot after the object is gone: what the object's own tear-down still reaches through it stays reachable.
template <class T>
void Destroy(std::atomic<T*>& slot) {
    delete slot.load(std::memory_order_acquire);
    slot.store(nullptr, std::memory_order_release);
}

// What is still in use stays valid: its blocks are left behind.
void DestroyPool(std::atomic<Allocator*>& slot) {
    Allocator* const pool = slot.load(std::memory_order_acquire);
    if (pool && pool->LiveCount() != 0) pool->Cleanup();
    Destroy(slot);
}

// Nothing fires from here on. A time-out that ends the process comes here on the timer thread itself, which cannot wait
// for its own end: then the manager is left behind.
void EndTimers(std::atomic<COrvLowResTimerMgr*>& slot) {
    COrvLowResTimerMgr* const timers = slot.load(std::memory_order_acquire);
    if (timers && !timers->EndThread()) slot.store(nullptr, std::memory_order_release);
}

// Any thread may be publishing: the slot is emptied first, and those who still found the manager there are let finish.
// A handler that ends the process comes here on the delivery thread itself, which cannot wait for its own end: then the
// manager is left behind.
void DestroyLogMgr(std::atomic<CLogMgr*>& slot) {
    CLogMgr* const manager = slot.exchange(nullptr, std::memory_order_acq_rel);
    if (!manager || manager->OnDeliveryThread()) return;
    manager->BeginClose();
    AwaitLogManagerUnused();
    delete manager;
}

}  // namespace

ORVUtilGlobals::ORVUtilGlobals() = default;

ORVUtilGlobals::~ORVUtilGlobals() { TryTeardown(); }

const char* ORVUtilGlobals::Name() { return "DOrvUtil"; }

void ORVUtilGlobals::AddDependencies() {}

bool ORVUtilGlobals::Initialize() {
    m_fileHandlePool.store(NewPool<COrvFileHandleStdio>(), std::memory_order_release);
    m_timerAgentPool.store(NewPool<OrvTimerAgent>(), std::memory_order_release);
    m_eventChainPool.store(NewPool<OrvEventChain<critSec>>(), std::memory_order_release);
    Create(m_fileMgr);
    Create(m_stringAllocator);
    Create(m_systemMgr);
    Create(m_logMgr);
    Create(m_lowResTimerMgr);
    Create(m_specCharMgr);
    Create(m_libraryHash);
    Create(m_callbackMgr);
    Create(m_gSensor);
    m_timeZoneUtil.store(CreateTimeZoneUtil(), std::memory_order_release);
    m_sysAttr.store(CreateSysAttr(), std::memory_order_release);
    Create(m_compass);
    Create(m_progressMgr);
    Create(m_cacheMgr);
    SetUnitTestMgr(new (std::nothrow) DorvutilUnitTestMgr);
    return true;
}

bool ORVUtilGlobals::Teardown() {
    EndTimers(m_lowResTimerMgr);
    Destroy(m_cacheMgr);
    Destroy(m_progressMgr);
    Destroy(m_compass);
    Destroy(m_sysAttr);
    Destroy(m_timeZoneUtil);
    Destroy(m_gSensor);
    Destroy(m_callbackMgr);
    Destroy(m_libraryHash);
    Destroy(m_messageScreenProducer);
    if (CSpecialCharMgr* const specialChars = m_specCharMgr.load(std::memory_order_acquire)) {
        specialChars->ReleaseTables();
    }
    Destroy(m_specCharMgr);
    Destroy(m_lowResTimerMgr);
    DestroyLogMgr(m_logMgr);
    Destroy(m_systemMgr);
    Destroy(m_stringAllocator);
    Destroy(m_fileMgr);
    Destroy(m_fileHandlePool);
    DestroyPool(m_timerAgentPool);
    Destroy(m_eventChainPool);
    return true;
}

bool ORVUtilGlobals::UIThread_AmICurrent() const { return platform::CurrentThreadId() == m_uiThread; }

void ORVUtilGlobals::SignalStartupFinished() {
    if (COrvCacheMgr* const caches = GetCacheMgr()) caches->SetStartupComplete();
}

}  // namespace dorvutil
