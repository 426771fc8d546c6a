#include "log_check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "command_log.h"
#include "dorvutil/logging/log.h"
#include "dorvutil/logging/log_mgr.h"
#include "input_error.h"
#include "log_bench.h"
#include "roadlyn/test_folder.h"
#include "tsv_reader.h"

namespace roadlyn {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kProducers = 2;
constexpr std::uint32_t kRecords = 10;

std::string LineOf(const BenchRecord& record) {
    return "10/12/2026 01:02:03.004 [x] <INFO> \"" + BenchMessage(record) + "\" (@ log_bench.cpp:7)\r\n";
}

std::string Header() {
    const std::string ruler = std::string(80, '+') + "\r\n";
    return "the system\r\n" + ruler + "the build\r\n" + ruler + "\r\n";
}

// Producers take turns.
std::vector<BenchRecord> Sent() {
    std::vector<BenchRecord> sent;
    for (std::uint32_t number = 0; number < kRecords; ++number) {
        for (std::uint32_t producer = 0; producer < kProducers; ++producer) sent.push_back({producer, number});
    }
    return sent;
}

std::string FileOf(const std::vector<BenchRecord>& records, std::size_t first) {
    std::string file = Header();
    for (std::size_t i = first; i < records.size(); ++i) file += LineOf(records[i]);
    return file;
}

LogVerdict Check(const std::string& file, const std::vector<BenchRecord>& delivered, std::size_t restartBytes) {
    return CheckLog(file, delivered, {kProducers, kRecords, LineOf({0, 0}).size(), restartBytes, "the build"});
}

TEST(LogCheck, CountsWhatRestartsTook) {
    const std::size_t line = LineOf({0, 0}).size();
    const struct {
        std::size_t restartBytes;
        std::uint64_t restarts;
        std::uint64_t overwritten;
    } kCases[] = {
        {1 << 20, 0, 0},
        {Header().size() + 20 * line + 1, 0, 0},
        {Header().size() + 20 * line, 1, 20},
        {Header().size() + 7 * line, 2, 14},
        {Header().size() + 7 * line - 1, 2, 14},
        {Header().size() + 7 * line + 1, 2, 16},
        {Header().size() + 1, 20, 20},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.restartBytes);
        const LogVerdict verdict = Check(FileOf(Sent(), c.overwritten), Sent(), c.restartBytes);
        EXPECT_EQ(verdict.fault, "");
        EXPECT_EQ(verdict.restarts, c.restarts);
        EXPECT_EQ(verdict.overwritten, c.overwritten);
        EXPECT_EQ(verdict.inFile, 20 - c.overwritten);
        EXPECT_EQ(verdict.lost, 0u);
    }
}

TEST(LogCheck, FindsWhatIsWrongWithTheFile) {
    const std::string good = FileOf(Sent(), 0);
    const auto line = [](std::uint32_t producer, std::uint32_t number) { return LineOf({producer, number}); };
    const struct {
        const char* name;
        std::string from;  // replaced in the good file
        std::string to;
        const char* fault;
    } kCases[] = {
        {"missing line", line(0, 4), "", "record line 9: record 4 of producer 1 where record 4 of producer 0 is due"},
        {"missing last line", line(1, 9), "", "19 record lines where 20 are due"},
        {"swapped lines", line(0, 4) + line(1, 4), line(1, 4) + line(0, 4),
         "record line 9: record 4 of producer 1 where record 4 of producer 0 is due"},
        {"line twice", line(1, 9), line(1, 9) + line(1, 9), "record line 21: more than was delivered"},
        {"cut line", line(1, 9), line(1, 9).substr(0, 115), "record line 20: a damaged line of record 9 of producer 1"},
        {"cut in the message", line(1, 9), line(1, 9).substr(0, 50),
         "record line 20: no line of a record, but record 9 of producer 1 is due"},
        {"one byte", line(1, 9), "x", "record line 20: no line of a record, but record 9 of producer 1 is due"},
        {"foreign line", line(0, 0), "hello\r\n",
         "record line 1: no line of a record, but record 0 of producer 0 is due"},
        {"header of another build", "the build", "a build", "no header block"},
        {"no header", Header(), "", "no header block"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        std::string file = good;
        file.replace(file.find(c.from), c.from.size(), c.to);
        EXPECT_EQ(Check(file, Sent(), 1 << 20).fault, c.fault);
    }
    EXPECT_EQ(Check("", Sent(), 1 << 20).fault, "no header block");
}

TEST(LogCheck, FindsWhatIsWrongWithTheDelivery) {
    std::vector<BenchRecord> records = Sent();
    std::swap(records[4], records[6]);
    LogVerdict verdict = Check(FileOf(records, 0), records, 1 << 20);
    EXPECT_EQ(verdict.fault, "record 3 of producer 0 was delivered out of place");
    EXPECT_EQ(verdict.lost, 0u);
    records = Sent();
    records.pop_back();
    verdict = Check(FileOf(records, 0), records, 1 << 20);
    EXPECT_EQ(verdict.fault, "19 of 20 records were delivered");
    EXPECT_EQ(verdict.lost, 1u);
    records = Sent();
    records[3] = {7, 0};
    EXPECT_EQ(Check(FileOf(records, 0), records, 1 << 20).fault, "record 0 of producer 7 was delivered out of place");
    EXPECT_EQ(Check(FileOf({}, 0), {}, 1 << 20).lost, 20u);
}

class LogBench : public FolderTest {
protected:
    LogBench() { dorvutil::Log_SetLoggingDirectory(m_folder.c_str()); }
    ~LogBench() override { dorvutil::Log_SetLoggingDirectory(nullptr); }
};

TEST_F(LogBench, RealLogLosesNothingAcrossRestarts) {
    const LogBenchResult result = RunLogBench(3, 10'000);
    EXPECT_EQ(result.verdict.fault, "");
    EXPECT_EQ(result.delivered, 30'000u);
    EXPECT_GT(result.verdict.restarts, 0u);
    EXPECT_EQ(result.verdict.inFile + result.verdict.overwritten, 30'000u);
    EXPECT_GT(result.seconds, 0);
}

TEST_F(LogBench, LogThatCannotBeWrittenIsSaid) {
    fs::create_directories(m_folder / "roadlyn_bench.log" / "in the way");
    EXPECT_THROW(RunLogBench(1, 5), InputError);
}

TEST_F(LogBench, CommandsAreLoggedWhereThatIsPossible) {
    const fs::path folder = m_folder / "commands";
    const CommandLog log(folder.string(), {"search", "a\nb", std::string(2000, 'x')});
    log.Finish(3);
    RunLogBench(1, 1);  // delivered behind them
    dorvutil::GetLogMgr()->CleanupSubscribers();
    const std::string text = ReadWholeFile((folder / "roadlyn.log").string());
    EXPECT_NE(text.find("\"start: search a?b xxxx"), std::string::npos) << text;
    EXPECT_NE(text.find("xxxx...\" (@ command_log.cpp:"), std::string::npos) << text;
    EXPECT_NE(text.find("\"end: exit code 3 after "), std::string::npos) << text;
    const CommandLog inTheWay((folder / "roadlyn.log").string(), {"copy"});
    inTheWay.Finish(0);
    const CommandLog tooLong(std::string(300, 'x'), {"copy"});
    tooLong.Finish(0);
    EXPECT_THROW(RunLogBench(1, 1), InputError);
    EXPECT_EQ(ReadWholeFile((folder / "roadlyn.log").string()), text);
}

}  // namespace
}  // namespace roadlyn
