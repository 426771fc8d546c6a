// A settings file of 1,000 lines, read into a structure and written from it, beside a packaged reader of INI files.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "dorvutil/storage/key_value_file.h"
#include "dorvutil/storage/memory_handle.h"

#ifdef BENCH_BOOST
#include <boost/property_tree/ini_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#endif

namespace {

constexpr std::uint32_t kRows = 500;  // of each kind
constexpr std::uint32_t kTextSize = 32;

struct Settings {
    std::int32_t m_numbers[kRows];
    char m_texts[kRows][kTextSize];
};

struct Table {
    Table() {
        m_keys.reserve(2 * kRows);
        m_rows.push_back({"[settings]", 0, 0, 10, dorvutil::kFpcBegin});
        for (std::uint32_t i = 0; i < kRows; ++i) {
            Add("map.layer.opacity" + std::to_string(i), 4 * i, 4, dorvutil::kFpcInteger);
            Add("guidance.voice.name" + std::to_string(i), 4 * kRows + kTextSize * i, kTextSize, dorvutil::kFpcText);
        }
        m_rows.push_back({"[end]", 0, 0, 5, dorvutil::kFpcEnd});
    }
    void Add(std::string key, std::uint32_t offset, std::uint32_t size, std::int8_t kind) {
        m_keys.push_back(std::move(key));
        const auto length = static_cast<std::uint8_t>(m_keys.back().size());
        m_rows.push_back({m_keys.back().c_str(), offset, size, length, kind});
    }

    std::vector<std::string> m_keys;
    std::vector<dorvutil::FileParseCode> m_rows;
};

const Table& TheTable() {
    static const Table table;
    return table;
}

std::unique_ptr<Settings> Filled() {
    auto settings = std::make_unique<Settings>();
    for (std::uint32_t i = 0; i < kRows; ++i) {
        settings->m_numbers[i] = static_cast<std::int32_t>(i * 7919 % 100'003);
        std::snprintf(settings->m_texts[i], kTextSize, "voice number %u of many", i);
    }
    return settings;
}

std::string Text() {
    const auto settings = Filled();
    dorvutil::COrvFileHandleMemory file(dorvutil::eAccessWrite);
    file.Open();
    FPC_SaveFile(TheTable().m_rows.data(), &file, settings.get(), "");
    return {file.ByteArray().Data(), file.ByteArray().Count()};
}

void BM_Read(benchmark::State& state) {
    const std::string text = Text();
    Settings settings;
    for (auto _ : state) {
        dorvutil::COrvFileHandleMemory file(text.data(), static_cast<std::uint32_t>(text.size()), false,
                                            dorvutil::eAccessRead);
        file.Open();
        if (!FPC_ParseFile(TheTable().m_rows.data(), &file, &settings)) std::abort();
        benchmark::DoNotOptimize(settings);
    }
}
BENCHMARK(BM_Read)->Name("settings file of 1,000 lines: parse|dorvutil");

void BM_Write(benchmark::State& state) {
    const auto settings = Filled();
    for (auto _ : state) {
        dorvutil::COrvFileHandleMemory file(dorvutil::eAccessWrite);
        file.Open();
        FPC_SaveFile(TheTable().m_rows.data(), &file, settings.get(), "");
        benchmark::DoNotOptimize(file.ByteArray().Data());
    }
}
BENCHMARK(BM_Write)->Name("settings file of 1,000 lines: save|dorvutil");

#ifdef BENCH_BOOST
// Reads the same lines, the section's end apart (which it would take for a section), and leaves them in its tree: the
// values are not yet in a structure.
std::string IniText() {
    const std::string text = Text();
    return "[settings]\n" + text.substr(text.find('\n') + 1, text.find("[end]") - text.find('\n') - 1);
}

void BM_ReadBoost(benchmark::State& state) {
    const std::string text = IniText();
    for (auto _ : state) {
        std::istringstream stream(text);
        boost::property_tree::ptree tree;
        boost::property_tree::read_ini(stream, tree);
        if (tree.begin()->second.size() != 2 * kRows) std::abort();
        benchmark::DoNotOptimize(tree);
    }
}
BENCHMARK(BM_ReadBoost)->Name("settings file of 1,000 lines: parse|boost ini_parser");

void BM_WriteBoost(benchmark::State& state) {
    std::istringstream input(IniText());
    boost::property_tree::ptree tree;
    boost::property_tree::read_ini(input, tree);
    for (auto _ : state) {
        std::ostringstream stream;
        boost::property_tree::write_ini(stream, tree);
        benchmark::DoNotOptimize(stream);
    }
}
BENCHMARK(BM_WriteBoost)->Name("settings file of 1,000 lines: save|boost ini_parser");
#endif

}  // namespace
