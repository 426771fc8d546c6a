// One key press of the place search, from the text to the final list of at most a hundred, beside a plain scan of the
// same folded names and a trigram index of SQLite. Half and ninety-ninth percentile over the keys of 250 typed names.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "dorvutil/typeahead.h"
#include "place_file.h"
#include "place_index.h"
#include "sources/place_source.h"
#include "text_fold.h"

#ifdef BENCH_SQLITE
#include <sqlite3.h>
#endif

namespace {

using roadlyn::PlaceTable;

std::string PlacesPath() {
    const char* const path = std::getenv("DORVUTIL_BENCH_PLACES");
    return path ? path : DORVUTIL_DATA_DIR "/places.tsv";
}

const PlaceTable& Places() {
    static const PlaceTable places = [] {
        PlaceTable table = roadlyn::ReadPlaceFile(PlacesPath(), [](unsigned) { return true; });
        table.SortForDisplay();
        return table;
    }();
    return places;
}

// The prefixes of random names, as they are typed: small letters, one character more at each key.
const std::vector<std::string>& Keys() {
    static const std::vector<std::string> keys = [] {
        std::vector<std::string> all;
        std::mt19937 random(11);
        for (int i = 0; i < 250; ++i) {
            const std::string name = roadlyn::LowerText(Places().Name(random() % Places().Count()));
            std::size_t end = 0;
            for (int letter = 0; letter < 10 && end < name.size(); ++letter) {
                end += roadlyn::CharacterLength(name, end);
                all.push_back(name.substr(0, end));
            }
        }
        return all;
    }();
    return keys;
}

class Contender {
public:
    virtual ~Contender() = default;
    virtual void Press(const std::string& text) = 0;
    virtual std::size_t MemoryBytes() const = 0;  // of what it searches in
};

roadlyn::PlaceIndex MakeIndex() {
    roadlyn::PlaceIndex index;
    index.Build(Places(), [](unsigned) { return true; });
    return index;
}

// The library: a handle with the place source, on its worker thread or in the calling one.
class Handle : public Contender {
public:
    explicit Handle(dorvutil::eSearchThreadingControl control)
        : m_board(1, roadlyn::ResultOrder::MatchQuality, [] {}), m_handle(dorvutil::EMsgID{60}, control) {
        m_handle.SetSmartSort(true);
        m_handle.GetSourceAdder().AddSource(new roadlyn::PlaceSource(m_board, PlacesPath()));
        m_board.WaitUntilLoaded();
    }
    ~Handle() override { m_handle.FlushSources(); }

    void Press(const std::string& text) override {
        m_handle.StartSearch(dorvutil::ORVustring(text.c_str()), true);
        benchmark::DoNotOptimize(m_handle.NumResults(0xFFFFFFFFu));
    }
    std::size_t MemoryBytes() const override { return Places().MemoryBytes() + MakeIndex().MemoryBytes(); }

private:
    roadlyn::SourceBoard m_board;
    dorvutil::TypeAheadSearchHandle m_handle;
};

class Scan : public Contender {
public:
    std::size_t MemoryBytes() const override { return m_index.FoldedNames().size(); }
    void Press(const std::string& text) override {
        const std::string needle = roadlyn::FoldedText(text);
        const std::string_view all = m_index.FoldedNames();
        m_hits.clear();
        const char* at = all.data();
        const char* const end = at + all.size();
        while (const void* hit = memmem(at, static_cast<std::size_t>(end - at), needle.data(), needle.size())) {
            m_hits.push_back(static_cast<std::uint32_t>(static_cast<const char*>(hit) - all.data()));
            at = static_cast<const char*>(
                memchr(hit, '\n', static_cast<std::size_t>(end - static_cast<const char*>(hit))));
            if (!at) break;
        }
        benchmark::DoNotOptimize(m_hits.data());
    }

private:
    const roadlyn::PlaceIndex m_index = MakeIndex();
    std::vector<std::uint32_t> m_hits;  // where in the text; a name once
};

#ifdef BENCH_SQLITE
class Sqlite : public Contender {
public:
    Sqlite() {
        sqlite3_open(":memory:", &m_base);
        sqlite3_exec(m_base, "CREATE VIRTUAL TABLE p USING fts5(name, tokenize='trigram'); BEGIN", nullptr, nullptr,
                     nullptr);
        sqlite3_stmt* insert = nullptr;
        sqlite3_prepare_v2(m_base, "INSERT INTO p(rowid, name) VALUES(?, ?)", -1, &insert, nullptr);
        for (std::uint32_t row = 0; row < Places().Count(); ++row) {
            const std::string folded = roadlyn::FoldedText(Places().Name(row));
            sqlite3_bind_int(insert, 1, static_cast<int>(row + 1));
            sqlite3_bind_text(insert, 2, folded.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        sqlite3_exec(m_base, "COMMIT", nullptr, nullptr, nullptr);
        // Rows are in order of relevance, so the rowid is the rank. A trigram index serves LIKE from three letters on.
        sqlite3_prepare_v2(m_base, "SELECT rowid FROM p WHERE name LIKE ? ORDER BY rowid LIMIT 100", -1, &m_query,
                           nullptr);
    }
    ~Sqlite() override {
        sqlite3_finalize(m_query);
        sqlite3_close(m_base);
    }
    void Press(const std::string& text) override {
        const std::string pattern = "%" + roadlyn::FoldedText(text) + "%";
        sqlite3_bind_text(m_query, 1, pattern.c_str(), -1, SQLITE_TRANSIENT);
        int rows = 0;
        while (sqlite3_step(m_query) == SQLITE_ROW) ++rows;
        benchmark::DoNotOptimize(rows);
        sqlite3_reset(m_query);
    }
    std::size_t MemoryBytes() const override { return static_cast<std::size_t>(sqlite3_memory_used()); }

private:
    sqlite3* m_base = nullptr;
    sqlite3_stmt* m_query = nullptr;
};
#endif

// Seconds of each key press, sorted; pressed twice, the second round counts.
std::vector<double> Measure(Contender& contender) {
    std::vector<double> times;
    for (int round = 0; round < 2; ++round) {
        times.clear();
        for (const std::string& key : Keys()) {
            const auto start = std::chrono::steady_clock::now();
            contender.Press(key);
            times.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        }
    }
    std::sort(times.begin(), times.end());
    return times;
}

using Maker = std::function<std::unique_ptr<Contender>()>;

void Report(benchmark::State& state, double part, const Maker& make) {
    const std::unique_ptr<Contender> contender = make();
    for (auto _ : state) {
        const auto times = Measure(*contender);
        state.SetIterationTime(times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))]);
    }
    state.counters["memory"] = static_cast<double>(contender->MemoryBytes());
}

const int g_registered = [] {
    const std::map<std::string, Maker> makers = {
        {"dorvutil", [] { return std::make_unique<Handle>(dorvutil::STC_THREADED); }},
        {"dorvutil in the calling thread", [] { return std::make_unique<Handle>(dorvutil::STC_SYNCHRONOUS); }},
        {"memmem scan", [] { return std::make_unique<Scan>(); }},
#ifdef BENCH_SQLITE
        {"SQLite FTS5 trigram", [] { return std::make_unique<Sqlite>(); }},
#endif
    };
    for (const auto& [percentile, part] : {std::pair("p50", 0.5), std::pair("p99", 0.99)}) {
        const std::string work = std::string("one key press over all places, ") + percentile;
        for (const auto& [who, make] : makers) {
            benchmark::RegisterBenchmark(
                (work + "|" + who).c_str(),
                [part = part, make = make](benchmark::State& state) { Report(state, part, make); })
                ->UseManualTime()
                ->Iterations(1);
        }
    }
    return 0;
}();

}  // namespace
