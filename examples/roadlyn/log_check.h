#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace roadlyn {

/// Which message of which producer, both from 0.
struct BenchRecord {
    std::uint32_t producer;
    std::uint32_t number;

    bool operator==(const BenchRecord&) const = default;
};

inline constexpr std::uint32_t kMostBenchProducers = 64;
inline constexpr std::uint32_t kMostBenchRecords = 10'000'000;  ///< Of one producer.

/// The text of a message: of the same length for all. And back: nothing for a text that is none.
std::string BenchMessage(const BenchRecord& record);
std::optional<BenchRecord> ParseBenchMessage(std::string_view text);

/// What was sent, and what it looks like in the file, whose header is equally long after each restart.
struct LogExpectation {
    std::uint32_t producers;
    std::uint32_t records;       ///< Of each producer.
    std::size_t lineBytes;       ///< Of a line of the file, with its end.
    std::size_t restartBytes;    ///< The file starts anew once it has so many.
    std::string_view buildInfo;  ///< Stands in the header block.
};

struct LogVerdict {
    std::uint64_t lost = 0;         ///< Never delivered.
    std::uint64_t misplaced = 0;    ///< Delivered before or behind their place among those of their producer.
    std::uint64_t restarts = 0;     ///< Of the file, by what was delivered.
    std::uint64_t overwritten = 0;  ///< Records that the restarts took.
    std::uint64_t inFile = 0;       ///< Lines of records.
    std::string fault;              ///< The first one; empty: none.
};

/// Compares what was delivered, in its order, with what was sent, and the file with what was delivered since its last
/// restart: the header block and then each record in one line, nothing else.
LogVerdict CheckLog(std::string_view file, const std::vector<BenchRecord>& delivered,
                    const LogExpectation& expectation);

}  // namespace roadlyn
