// Files beside the streams of the standard library and of C.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "dorvutil/storage.h"

namespace {

constexpr std::size_t kFileBytes = std::size_t{64} << 20;
constexpr std::size_t kRecords = 100000;
constexpr std::size_t kRecordBytes = 100;

const char* Folder() {
    const char* const folder = std::getenv("TMPDIR");
    return folder ? folder : "/tmp";
}

// A file of the name, removed at the end of the process.
class ScratchFile {
public:
    explicit ScratchFile(const char* name)
        : m_path(std::string(Folder()) + "/dorvutil_bench_" + std::to_string(getpid()) + name) {}
    ~ScratchFile() { std::remove(m_path.c_str()); }
    const char* Path() const { return m_path.c_str(); }

private:
    std::string m_path;
};

// 64 MB of lines of 0 to 127 characters.
const char* TextFile() {
    static const ScratchFile file = [] {
        ScratchFile made(".txt");
        std::FILE* const out = std::fopen(made.Path(), "w");
        std::uint32_t random = 1;
        for (std::size_t size = 0; size < kFileBytes;) {
            random = random * 1664525u + 1013904223u;
            const std::size_t length = random >> 25;
            size += length + 1;
            const std::string line(length, static_cast<char>('a' + length % 26));
            std::fprintf(out, "%s\n", line.c_str());
        }
        std::fclose(out);
        return made;
    }();
    return file.Path();
}

const char* OutputFile() {
    static const ScratchFile file(".out");
    return file.Path();
}

void CountLines(benchmark::State& state, std::size_t lines) {
    if (lines == 0) state.SkipWithError("nothing read");
    state.counters["lines"] = static_cast<double>(lines);
}

void LinesFileReadNextLine(benchmark::State& state) {
    const dorvutil::ORVustring path(TextFile());
    std::size_t lines = 0;
    for (auto _ : state) {
        dorvutil::COrvFileHandleBase* file = dorvutil::FileOpen(path, dorvutil::eAccessRead, dorvutil::eBinary);
        char line[256];
        for (lines = 0; dorvutil::FileReadNextLine(file, line, sizeof(line)); ++lines) benchmark::DoNotOptimize(line);
        dorvutil::FileClose(file);
    }
    CountLines(state, lines);
}

void LinesGetline(benchmark::State& state) {
    std::size_t lines = 0;
    for (auto _ : state) {
        std::ifstream file(TextFile(), std::ios::binary);
        std::string line;
        for (lines = 0; std::getline(file, line); ++lines) benchmark::DoNotOptimize(line.data());
    }
    CountLines(state, lines);
}

void LinesFgets(benchmark::State& state) {
    std::size_t lines = 0;
    for (auto _ : state) {
        std::FILE* const file = std::fopen(TextFile(), "rb");
        char line[256];
        for (lines = 0; std::fgets(line, sizeof(line), file); ++lines) benchmark::DoNotOptimize(line);
        std::fclose(file);
    }
    CountLines(state, lines);
}

const std::string& Record() {
    static const std::string record(kRecordBytes, 'x');
    return record;
}

void CheckOutput(benchmark::State& state) {
    std::ifstream file(OutputFile(), std::ios::binary | std::ios::ate);
    if (static_cast<std::size_t>(file.tellg()) != kRecords * kRecordBytes) state.SkipWithError("not all written");
}

void WritesFileWrite(benchmark::State& state) {
    const dorvutil::ORVustring path(OutputFile());
    for (auto _ : state) {
        dorvutil::COrvFileHandleBase* file = dorvutil::FileOpenBuffered(path, dorvutil::eAccessWrite, dorvutil::eBinary,
                                                                        dorvutil::kFileBufferWrites, nullptr);
        for (std::size_t i = 0; i < kRecords; ++i) dorvutil::FileWrite(file, Record().data(), kRecordBytes);
        dorvutil::FileClose(file);
    }
    CheckOutput(state);
}

void WritesFwrite(benchmark::State& state) {
    for (auto _ : state) {
        std::FILE* const file = std::fopen(OutputFile(), "wb");
        for (std::size_t i = 0; i < kRecords; ++i) std::fwrite(Record().data(), 1, kRecordBytes, file);
        std::fclose(file);
    }
    CheckOutput(state);
}

BENCHMARK(LinesFileReadNextLine)->Name("64 MB of text by lines|dorvutil")->Unit(benchmark::kMillisecond);
BENCHMARK(LinesGetline)->Name("64 MB of text by lines|std::getline")->Unit(benchmark::kMillisecond);
BENCHMARK(LinesFgets)->Name("64 MB of text by lines|fgets")->Unit(benchmark::kMillisecond);
BENCHMARK(WritesFileWrite)->Name("100,000 buffered writes of 100 bytes|dorvutil")->Unit(benchmark::kMicrosecond);
BENCHMARK(WritesFwrite)->Name("100,000 buffered writes of 100 bytes|fwrite")->Unit(benchmark::kMicrosecond);

}  // namespace
