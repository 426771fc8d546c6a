#pragma once

#include <atomic>
#include <cstdarg>
#include <cstdint>

#include "dorvutil/concurrency/reader_writer.h"
#include "dorvutil/concurrency/worker.h"
#include "dorvutil/frame/accessors.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/logging/file_logger.h"
#include "dorvutil/logging/log_message.h"
#include "dorvutil/logging/message_ring.h"
#include "dorvutil/logging/publisher.h"
#include "dorvutil/logging/subscriber.h"
#include "dorvutil/logging/work_units.h"
#include "dorvutil/memory/list.h"

namespace dorvutil {

/// The log: takes text records from any thread into a buffer of 16 KiB, and hands each, in order, to every subscriber
/// that listens to its publisher, on its own thread. Publishing copies the record, allocates nothing and waits for no
/// subscriber; it waits only for space.
///
/// There is one, owned by the registry (GetLogMgr). Callers of its members see to it that it lives; the functions of
/// logging/log.h do so by themselves. Locks are taken in this order: temp buffer, lists, message buffer.
class DORVUTIL_API CLogMgr final : public CWorkerThread {
public:
    static constexpr std::uint32_t kFlushIntervalMs = 300000;

    /// Makes the publisher "GENERAL" and starts the thread.
    CLogMgr();
    /// Delivers what was published, unless delivery was stopped, and stops the thread. Publishers that wait for space
    /// that nobody will make give up.
    ~CLogMgr() override;

    /// Publishes one record. Null texts, and all behind them, are missing; so are those that do not fit
    /// (LogDataMsg::m_text). With `wait` it waits for space and returns the size of the record. Without, a record that
    /// finds no space is dropped (-1), the overflow record marks its place, and further ones are dropped (0) until the
    /// delivery thread has taken something out. Any thread; needs no lock, but `message` from MakeString needs the
    /// temp-buffer lock.
    std::int32_t Publish(std::int32_t publisher, std::int32_t level, const char* file, std::int32_t line,
                         const char* message, std::uint32_t threadId, bool wait);

    /// As Publish, waiting, for callers that do not format: what Log_Publish does. Takes the temp-buffer lock, so that
    /// it does not get between a MakeString and its Publish (on the delivery thread it does, and does not wait).
    std::int32_t PublishInTurn(std::int32_t publisher, std::int32_t level, const char* file, std::int32_t line,
                               const char* message);

    /// Formats by the rules of C's printf into the temp buffer, cut to 511 characters, and returns it. Allocates
    /// nothing. Hold the temp-buffer lock from before this until after Publish.
    [[gnu::format(printf, 2, 3)]] const char* MakeString(const char* format, ...);
    [[gnu::format(printf, 2, 0)]] const char* MakeStringPtrs(const char* format, std::va_list args);
    char* StringWriteBuffer() { return m_temp.m_record.m_text; }
    static std::int32_t StringWriteBufferSize() { return kLogTextSize; }
    void LockTempBuffer() const { m_tempLock.Enter(); }
    void UnlockTempBuffer() const { m_tempLock.Exit(); }
    void LockMsgBuffer() const { m_bufferLock.Enter(); }
    void UnlockMsgBuffer() const { m_bufferLock.Exit(); }

    /// Takes the next record out; `out` gets its first `limit` bytes. How many those are; 0 when there is none.
    std::int32_t ReadNextMessage(LogDataMsg* out, std::int32_t limit);
    void SignalSpace(bool space);  ///< Says that there may be space, or (false) that there is none.
    void WaitForSpace();           ///< Blocks until there may be.

    /// The publisher of that name (byte for byte), made if need be; its identifier, or -1 for null or without memory.
    std::int32_t CreatePublisher(const char* name);
    void DeletePublisher(std::int32_t publisher);
    /// See LogSubscriber. -1 when memory ran out.
    std::int32_t CreateSubscriber(std::int32_t subscription, LogSubscriberHandler handler, void* context);
    void DeleteSubscriber(std::int32_t subscriber);  ///< It hears nothing more, and cannot subscribe again.
    /// A subscriber that writes a file: see FileLogger. -1 when memory ran out.
    std::int32_t CreateFileLogger(const char* name, std::int32_t subscription, std::int32_t level);
    void DeleteFileLogger(std::int32_t subscriber);
    /// A publisher with a file of its own, as Log_CreateDedicatedFileLogger.
    std::int32_t CreateDedicatedFileLogger(const char* name);
    void DeleteDedicatedFileLogger(std::int32_t publisher);
    /// `publisher`; -1 for an unknown or deleted subscriber. One that listens to all stays as it is.
    std::int32_t Subscribe(std::int32_t subscriber, std::int32_t publisher);
    /// Always -1. One that listens to all from then on listens to all other publishers there are.
    std::int32_t Unsubscribe(std::int32_t subscriber, std::int32_t publisher);

    static const char* GetLoglevelName(std::int32_t level);
    const char* GetPublisherName(std::int32_t publisher) const;  ///< "UNKNOWN" without one; lives as long as it does.
    /// Milliseconds since the publisher's last record, which then was at tick `now`; 0 without a publisher.
    std::uint32_t GetPublisherTickDelta(std::int32_t publisher, std::uint32_t now);

    void NotifySubscribers(LogDataMsg* record);  ///< Calls the handlers of all who listen to the record's publisher.
    void FlushSubscribers();                     ///< Once kFlushIntervalMs have passed.
    void CleanupSubscribers();

    /// Stops delivery, and waits for its end unless a handler calls.
    void PlatformCleanup();
    /// Lets publishers that wait for space give up once delivery has ended. The first step of destruction.
    void BeginClose();

    bool OnDeliveryThread() const;  ///< Whether a handler calls.

    bool SignalWork() override;
    bool WaitForWork() override;
    /// Takes out all records there are, so that their space is free at once, and delivers them.
    bool ThreadDoWork() override;
    bool ThreadInit() override;
    bool ThreadCleanup() override;
    void Relinquish() override;

private:
    class WriteHold;
    static constexpr char kUnknown[] = "UNKNOWN";

    LogPublisher* FindPublisher(std::int32_t id) const;
    std::int32_t AddSubscriber(LogSubscriber* subscriber);
    void Complete(LogDataHolder& record, const char* file, const char* message);
    std::int32_t StoreWaiting(const LogDataMsg& record, std::int32_t stored, bool& wake);
    bool AnyWaiting() const;
    void HandOut(LogDataMsg* record);
    void DeliverBatch();

    SingleWriterMultiReader m_listsLock;
    std::atomic<std::int32_t> m_writersWaiting{0};  // for m_listsLock: delivery lets them in between two records
    critSec m_tempLock;                             // guards m_temp
    mutable critSec m_bufferLock;                   // guards all that does not name another owner
    WorkUnits m_work;
    event m_spaceEvent{true};
    std::atomic<std::uint32_t> m_lastFlush;  // tick
    std::int32_t m_nextPublisher;            // of the lists lock, as the next four
    std::int32_t m_nextSubscriber = 0;
    ListMgr<LogPublisher> m_publishers;  // by rising identifier; changed under both locks, read under either
    ListMgr<LogSubscriber> m_subscribers;
    ListMgr<DedicatedFileLogger> m_dedicated;
    LogDataHolder m_overflow;  // constant
    LogDataHolder m_temp;
    LogMessageRing m_ring;
    LogBatch m_batch;                                // the delivery thread's
    std::atomic<std::uint32_t> m_deliveryThread{0};  // 0 before it runs
    std::uint32_t m_lastYield = 0;                   // tick at which delivery last had no work, or yielded
    std::uint64_t m_second = 0;                      // whose local time m_localTime is
    ORV_SYSTEMTIME m_localTime;
    std::uint32_t m_waiting = 0;  // publishers that wait for space
    bool m_delivering = false;    // the thread may still take records out
    bool m_closing = false;
};

}  // namespace dorvutil
