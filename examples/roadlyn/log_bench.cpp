#include "log_bench.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <latch>
#include <semaphore>
#include <stdexcept>
#include <thread>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/frame/build_info.h"
#include "dorvutil/logging/file_logger.h"
#include "dorvutil/logging/log_mgr.h"
#include "dorvutil/memory/heap.h"
#include "dorvutil/storage/file_api.h"
#include "dorvutil/storage/file_system.h"
#include "dorvutil/storage/memory_handle.h"
#include "input_error.h"

namespace roadlyn {
namespace {

using Clock = std::chrono::steady_clock;
using dorvutil::ORVustring;

constexpr char kName[] = "roadlyn_bench";
constexpr std::chrono::seconds kStalled{10};  // without a delivery: what is missing never comes

// The subscriber that remembers what was delivered.
class Witness {
public:
    explicit Witness(std::uint64_t due) : m_due(due) { m_delivered.reserve(due); }

    static void OnRecord(void* context, dorvutil::LogDataMsg* record) { static_cast<Witness*>(context)->Note(*record); }

    // For all records, or until no more come.
    void Wait() {
        while (!m_complete.try_acquire_for(kStalled)) {
            const std::uint64_t count = m_count;
            if (count == m_countBefore) return;
            m_countBefore = count;
        }
    }

    // Once the subscriber is gone.
    const std::vector<BenchRecord>& Delivered() const { return m_delivered; }

    // Bytes of a line of the file, by the first record.
    std::size_t LineBytes() const {
        if (m_delivered.empty()) return 0;
        dorvutil::LogDataHolder holder;
        holder = m_first;
        dorvutil::COrvFileHandleMemory file(dorvutil::eAccessWrite);
        return file.Open() == 0 ? holder.FormattedFileWrite(&file) : 0;
    }

private:
    void Note(const dorvutil::LogDataMsg& record) {
        constexpr BenchRecord kForeign{~0u, ~0u};
        if (m_delivered.empty()) {
            std::memcpy(&m_first, &record,
                        dorvutil::kLogMessageOverhead + static_cast<std::uint32_t>(record.m_textUsed));
        }
        m_delivered.push_back(ParseBenchMessage(record.m_text).value_or(kForeign));
        if (++m_count == m_due) m_complete.release();
    }

    const std::uint64_t m_due;
    std::vector<BenchRecord> m_delivered;  // the delivery thread's
    dorvutil::LogDataMsg m_first = {};     // likewise
    std::atomic<std::uint64_t> m_count{0};
    std::uint64_t m_countBefore = 0;
    std::binary_semaphore m_complete{0};
};

// The publisher with its file and its witness.
class BenchLog {
public:
    BenchLog(dorvutil::CLogMgr& log, Witness& witness) : m_log(log), m_publisher(log.CreatePublisher(kName)) {
        m_logger = log.CreateFileLogger(kName, m_publisher, dorvutil::kEveryLogLevel);
        // Behind the file logger: what the witness has seen is written.
        m_witness = log.CreateSubscriber(m_publisher, Witness::OnRecord, &witness);
        if (m_publisher < 0 || m_logger < 0 || m_witness < 0) throw std::runtime_error("out of memory");
    }
    ~BenchLog() {
        m_log.DeleteSubscriber(m_witness);
        m_log.DeleteFileLogger(m_logger);  // closes the file
        m_log.DeletePublisher(m_publisher);
    }
    BenchLog(const BenchLog&) = delete;
    BenchLog& operator=(const BenchLog&) = delete;

    void Publish(const BenchRecord& record) const {
        const std::string message = BenchMessage(record);
        m_log.Publish(m_publisher, dorvutil::eLogLevelInfo, __FILE__, __LINE__, message.c_str(), record.producer, true);
    }

private:
    dorvutil::CLogMgr& m_log;
    const std::int32_t m_publisher;
    std::int32_t m_logger = -1;
    std::int32_t m_witness = -1;
};

// Starts all threads at once; returns when that was.
Clock::time_point PublishAll(const BenchLog& log, std::uint32_t producers, std::uint32_t records) {
    std::latch ready(producers + 1);
    std::vector<std::jthread> threads;
    for (std::uint32_t producer = 0; producer < producers; ++producer) {
        threads.emplace_back([&log, &ready, producer, records] {
            ready.arrive_and_wait();
            for (std::uint32_t number = 0; number < records; ++number) log.Publish({producer, number});
        });
    }
    ready.arrive_and_wait();
    return Clock::now();
}

std::string LogPath() {
    char directory[256];
    dorvutil::FileLogger::GetLoggingDirectory(directory, sizeof(directory));
    std::string path = std::string(directory) + kName + ".log";
    std::replace(path.begin(), path.end(), '\\', '/');  // as the user writes paths
    return path;
}

// The whole file; throws when there is none.
std::string ReadLog(const std::string& path) {
    void* data = nullptr;
    const std::uint32_t size = dorvutil::LoadFile(ORVustring(path.c_str()), &data);
    std::string text;
    if (data != nullptr) text.assign(static_cast<const char*>(data), size);
    dorvutil::Mem_Free(data);
    if (text.empty()) throw InputError(path, 0, "the log could not be written");
    return text;
}

}  // namespace

LogBenchResult RunLogBench(std::uint32_t producers, std::uint32_t records) {
    dorvutil::CLogMgr* const manager = dorvutil::GetLogMgr();
    if (manager == nullptr) throw std::runtime_error("the library has no log");
    LogBenchResult result;
    result.path = LogPath();
    dorvutil::FileErase(ORVustring(result.path.c_str()));  // or an old one could pass for this one's
    Witness witness(std::uint64_t{producers} * records);
    Clock::time_point start;
    {
        const BenchLog log(*manager, witness);
        start = PublishAll(log, producers, records);
        witness.Wait();
    }
    result.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    result.delivered = witness.Delivered().size();
    const LogExpectation expectation{producers, records, witness.LineBytes(), dorvutil::FileLogger::kRestartSize,
                                     dorvutil::GetBuildInfo()};
    result.verdict = CheckLog(ReadLog(result.path), witness.Delivered(), expectation);
    return result;
}

}  // namespace roadlyn
