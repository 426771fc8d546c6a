#include "dorvutil/logging/log_mgr.h"

#include <cstdio>
#include <iterator>

#include "dorvutil/platform/clock.h"
#include "dorvutil/platform/thread.h"
#include "dorvutil/time/calendar.h"
#include "dorvutil/time/file_time.h"

namespace dorvutil {
namespace {

constexpr char kThreadName[] = "CLogMgr";
constexpr std::int32_t kStackSize = 8192;
constexpr std::uint32_t kDrainPollMs = 10;
constexpr std::uint32_t kYieldIntervalMs = 4;
constexpr std::uint32_t kGatherMs = 1;
constexpr std::int32_t kFirstPublisher = 19;

using Guard = TScopedLock<critSec>;

}  // namespace

CLogMgr::CLogMgr()
    : CWorkerThread(kThreadName, eThreadPriorityNormal, kStackSize),
      m_lastFlush(platform::TickCount()),
      m_nextPublisher(kGeneralPublisher),
      m_overflow(eLogEventOverflow, nullptr, 0, kNoPublisher, eLogLevelOverflow, nullptr, 0) {
    m_overflow.PackStrings("An overflow occurred.  At least one message was dropped.", "LOGMGR", "!OVERFLOW!", "");
    m_ring.SetOverflowRecord(m_overflow.m_record);
    CreatePublisher("GENERAL");
    m_nextPublisher = kFirstPublisher;
    m_delivering = IsRunning();
    Start(false);
}

CLogMgr::~CLogMgr() {
    BeginClose();
    Start(false);  // a paused worker could not drain
    while (IsRunning() && (m_work.Any() || AnyWaiting())) platform::SleepMs(kDrainPollMs);
    PlatformCleanup();
    while (AnyWaiting()) platform::SleepMs(kDrainPollMs);
}

void CLogMgr::BeginClose() {
    const Guard guard(m_bufferLock);
    m_closing = true;
    SignalSpace(true);
}

void CLogMgr::PlatformCleanup() { Stop(!OnDeliveryThread()); }

bool CLogMgr::OnDeliveryThread() const {
    return m_deliveryThread.load(std::memory_order_relaxed) == platform::CurrentThreadId();
}

bool CLogMgr::AnyWaiting() const {
    const Guard guard(m_bufferLock);
    return m_waiting != 0;
}

std::int32_t CLogMgr::Publish(std::int32_t publisher, std::int32_t level, const char* file, std::int32_t line,
                              const char* message, std::uint32_t threadId, bool wait) {
    LogDataHolder record;
    record.m_record.m_threadId = threadId;
    record.m_record.m_publisher = publisher;
    record.m_record.m_level = level;
    record.m_record.m_line = line;
    m_bufferLock.Enter();
    Complete(record, file, message);
    std::int32_t stored = m_ring.Store(record.m_record);
    // The delivery thread cannot wait for itself to make room.
    const bool mayWait = stored <= 0 && wait && !OnDeliveryThread();
    if (stored < 0 && !mayWait) m_ring.NoteDrop();
    bool wake = m_work.Add(stored <= 0 || m_ring.IsFilling());
    if (mayWait) stored = StoreWaiting(record.m_record, stored, wake);
    m_bufferLock.Exit();
    // After leaving the lock: the thread that wakes up wants it.
    if (wake) m_work.Wake();
    return stored;
}

std::int32_t CLogMgr::PublishInTurn(std::int32_t publisher, std::int32_t level, const char* file, std::int32_t line,
                                    const char* message) {
    // A publisher that waits for room holds the temp-buffer lock: the delivery thread must not wait for that.
    if (OnDeliveryThread()) return Publish(publisher, level, file, line, message, 0, true);
    const Guard guard(m_tempLock);
    return Publish(publisher, level, file, line, message, 0, true);
}

// What is the same for the records of all publishers in one moment, under the lock that orders them: so time never runs
// backwards from one record to the next.
void CLogMgr::Complete(LogDataHolder& record, const char* file, const char* message) {
    LogDataMsg& fields = record.m_record;
    using calendar::kTicksPerMillisecond, calendar::kTicksPerSecond;
    const std::uint64_t now = platform::FileTimeNow();
    if (const std::uint64_t second = now / kTicksPerSecond; second != m_second) {
        m_second = second;
        const ORV_FILETIME start = calendar::FileTime(second * kTicksPerSecond);
        if (!TIME_FileTimeToLocalTime(&start, &m_localTime)) TIME_FileTimeToSystemTime(&start, &m_localTime);
    }
    fields.m_time = m_localTime;
    fields.m_time.wMilliseconds = static_cast<std::uint16_t>(now % kTicksPerSecond / kTicksPerMillisecond);
    fields.m_tick = platform::TickCount();
    LogPublisher* const publisher = FindPublisher(fields.m_publisher);
    fields.m_tickDelta = publisher ? publisher->TickDelta(fields.m_tick) : 0;
    record.PackStrings(message, publisher ? publisher->Name() : kUnknown, GetLoglevelName(fields.m_level), file);
}

std::int32_t CLogMgr::StoreWaiting(const LogDataMsg& record, std::int32_t stored, bool& wake) {
    ++m_waiting;
    while (stored <= 0 && (m_delivering || !m_closing)) {
        SignalSpace(false);
        m_bufferLock.Exit();
        if (wake) m_work.Wake();
        WaitForSpace();
        m_bufferLock.Enter();
        stored = m_ring.Store(record);
        wake = m_work.Add(true);
    }
    --m_waiting;
    return stored;
}

const char* CLogMgr::MakeString(const char* format, ...) {
    std::va_list args;
    va_start(args, format);
    const char* const text = MakeStringPtrs(format, args);
    va_end(args);
    return text;
}

const char* CLogMgr::MakeStringPtrs(const char* format, std::va_list args) {
    char* const text = StringWriteBuffer();
    text[0] = '\0';
    std::vsnprintf(text, kLogTextSize, format, args);
    text[kLogTextSize - 1] = '\0';
    return text;
}

std::int32_t CLogMgr::ReadNextMessage(LogDataMsg* out, std::int32_t limit) {
    const Guard guard(m_bufferLock);
    const std::int32_t size = m_ring.Read(out, limit);
    SignalSpace(true);
    return size;
}

void CLogMgr::SignalSpace(bool space) {
    if (space) {
        m_spaceEvent.SignalEvent();
    } else {
        m_spaceEvent.ClearEvent();
    }
}

void CLogMgr::WaitForSpace() { m_spaceEvent.WaitForEvent(kWaitForever); }

bool CLogMgr::SignalWork() {
    if (m_work.Add(true)) m_work.Wake();
    return true;
}

bool CLogMgr::WaitForWork() {
    if (m_work.TryTake()) return true;
    const auto left = static_cast<std::int32_t>(m_lastFlush + kFlushIntervalMs - platform::TickCount());
    if (left <= 0) return false;
    // Records rarely come alone. Those that follow soon are delivered together, and their publishers need not ask the
    // system to wake this thread, which costs several times what publishing does.
    if (m_batch.m_count != 0 && m_work.TakeLater(kGatherMs)) return true;
    return m_work.Take(static_cast<std::uint32_t>(left));
}

bool CLogMgr::ThreadInit() {
    m_deliveryThread.store(platform::CurrentThreadId(), std::memory_order_relaxed);
    SignalSpace(true);
    return true;
}

bool CLogMgr::ThreadCleanup() {
    CleanupSubscribers();
    const Guard guard(m_bufferLock);
    m_delivering = false;
    SignalSpace(true);
    return true;
}

// Only a thread that has been busy for a while: yielding after each unit would put it behind everything else that runs
// on a loaded machine, with publishers waiting for it, and one without work goes to sleep by itself.
void CLogMgr::Relinquish() {
    const std::uint32_t now = platform::TickCount();
    if (m_work.Any() && now - m_lastYield < kYieldIntervalMs) return;
    if (m_work.Any()) platform::YieldThread();
    m_lastYield = now;
}

bool CLogMgr::ThreadDoWork() {
    {
        const Guard guard(m_bufferLock);
        m_ring.TakeAll(m_batch);
        m_work.TakeAll();
    }
    SignalSpace(true);
    if (m_batch.m_count != 0) DeliverBatch();
    FlushSubscribers();
    return true;
}

// One hold for all records, but for those who want to change the lists: they need not wait for more than one record.
void CLogMgr::DeliverBatch() {
    LogDataHolder record;
    const std::uint8_t* at = m_batch.m_bytes;
    m_listsLock.WaitToRead(true);
    for (std::uint32_t i = 0; i < m_batch.m_count; ++i) {
        if (m_writersWaiting.load(std::memory_order_relaxed) != 0) {
            m_listsLock.Done();
            m_listsLock.WaitToRead(true);
        }
        if (m_batch.m_sizes[i] == LogMessageRing::kMarker) {
            record = m_overflow.m_record;
        } else {
            const auto size = static_cast<std::uint32_t>(m_batch.m_sizes[i]);
            record.Load(at, size);
            at += size;
        }
        HandOut(&record.m_record);
    }
    m_listsLock.Done();
}

void CLogMgr::HandOut(LogDataMsg* record) {
    const std::int32_t publisher = record->m_publisher;
    for (std::uint32_t i = 0; i < m_subscribers.Count(); ++i) {
        LogSubscriber* const subscriber = m_subscribers[i];
        if (subscriber->IsSubscribed(publisher)) subscriber->LogHandler(record);
    }
}

}  // namespace dorvutil
