#include "log_check.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace roadlyn {
namespace {

constexpr std::string_view kProducer = "producer ";
constexpr std::string_view kRecord = " record ";
constexpr std::size_t kProducerDigits = 2;
constexpr std::size_t kRecordDigits = 8;
constexpr std::string_view kRest = ": in 300 metres turn left onto the coast road";
constexpr std::string_view kLineEnd = "\r\n";

std::optional<std::uint32_t> TakeNumber(std::string_view& text, std::string_view before, std::size_t digits) {
    if (!text.starts_with(before) || text.size() < before.size() + digits) return std::nullopt;
    const char* const start = text.data() + before.size();
    std::uint32_t number = 0;
    if (std::from_chars(start, start + digits, number).ptr != start + digits) return std::nullopt;
    text.remove_prefix(before.size() + digits);
    return number;
}

std::string Name(const BenchRecord& record) {
    return "record " + std::to_string(record.number) + " of producer " + std::to_string(record.producer);
}

void CheckOrder(const std::vector<BenchRecord>& delivered, const LogExpectation& expectation, LogVerdict& verdict) {
    const std::uint64_t sent = std::uint64_t{expectation.producers} * expectation.records;
    std::vector<std::uint32_t> next(expectation.producers, 0);
    for (const BenchRecord& record : delivered) {
        const bool known = record.producer < expectation.producers && record.number < expectation.records;
        if (!known || record.number != next[record.producer]) {
            if (++verdict.misplaced == 1) verdict.fault = Name(record) + " was delivered out of place";
        }
        if (known) next[record.producer] = record.number + 1;
    }
    verdict.lost = sent > delivered.size() ? sent - delivered.size() : 0;
    if (verdict.fault.empty() && delivered.size() != sent) {
        verdict.fault = std::to_string(delivered.size()) + " of " + std::to_string(sent) + " records were delivered";
    }
}

// Length of the header block: the system's attributes, then the build between two rulers; 0 when it is not there.
std::size_t HeaderBytes(std::string_view file, std::string_view buildInfo) {
    const std::string ruler = std::string(80, '+') + std::string(kLineEnd);
    const std::string build =
        std::string(kLineEnd) + ruler + std::string(buildInfo) + std::string(kLineEnd) + ruler + std::string(kLineEnd);
    const std::size_t start = file.find(build);
    return start == std::string_view::npos ? 0 : start + build.size();
}

// What is wrong with a line that should be that of `record`; empty: nothing.
std::string FaultOfLine(std::string_view line, const BenchRecord& record, std::size_t lineBytes) {
    const std::size_t quote = line.find('"');
    const auto found = quote == std::string_view::npos ? std::nullopt : ParseBenchMessage(line.substr(quote + 1));
    if (!found) return "no line of a record, but " + Name(record) + " is due";
    if (*found != record) return Name(*found) + " where " + Name(record) + " is due";
    if (line.size() != lineBytes || !line.ends_with(kLineEnd)) return "a damaged line of " + Name(record);
    return "";
}

std::string CheckLines(std::string_view lines, const std::vector<BenchRecord>& delivered,
                       const LogExpectation& expectation, LogVerdict& verdict) {
    for (std::size_t i = verdict.overwritten; !lines.empty(); ++i) {
        const std::size_t found = lines.find(kLineEnd);
        const std::size_t end = found == std::string_view::npos ? lines.size() : found + kLineEnd.size();
        const std::string number = "record line " + std::to_string(verdict.inFile + 1) + ": ";
        if (i == delivered.size()) return number + "more than was delivered";
        const std::string fault = FaultOfLine(lines.substr(0, end), delivered[i], expectation.lineBytes);
        if (!fault.empty()) return number + fault;
        ++verdict.inFile;
        lines.remove_prefix(end);
    }
    const std::uint64_t due = delivered.size() - verdict.overwritten;
    if (verdict.inFile == due) return "";
    return std::to_string(verdict.inFile) + " record lines where " + std::to_string(due) + " are due";
}

std::string CheckFile(std::string_view file, const std::vector<BenchRecord>& delivered,
                      const LogExpectation& expectation, LogVerdict& verdict) {
    const std::size_t header = HeaderBytes(file, expectation.buildInfo);
    if (header == 0) return "no header block";
    if (header >= expectation.restartBytes || expectation.lineBytes == 0) return "no room for records";
    // The record that reaches the limit is the last before a restart.
    const std::size_t room = expectation.restartBytes - header;
    const std::size_t recordsOfFile = (room + expectation.lineBytes - 1) / expectation.lineBytes;
    verdict.restarts = delivered.size() / recordsOfFile;
    verdict.overwritten = verdict.restarts * recordsOfFile;
    return CheckLines(file.substr(header), delivered, expectation, verdict);
}

}  // namespace

std::string BenchMessage(const BenchRecord& record) {
    char text[128];
    const int length = std::snprintf(text, sizeof(text), "%s%02u%s%08u%s", kProducer.data(), record.producer,
                                     kRecord.data(), record.number, kRest.data());
    return {text, static_cast<std::size_t>(length)};
}

std::optional<BenchRecord> ParseBenchMessage(std::string_view text) {
    const auto producer = TakeNumber(text, kProducer, kProducerDigits);
    const auto number = producer ? TakeNumber(text, kRecord, kRecordDigits) : std::nullopt;
    if (!number || !text.starts_with(kRest)) return std::nullopt;
    return BenchRecord{*producer, *number};
}

LogVerdict CheckLog(std::string_view file, const std::vector<BenchRecord>& delivered,
                    const LogExpectation& expectation) {
    LogVerdict verdict;
    CheckOrder(delivered, expectation, verdict);
    const std::string fault = CheckFile(file, delivered, expectation, verdict);
    if (verdict.fault.empty()) verdict.fault = fault;
    return verdict;
}

}  // namespace roadlyn
