#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/typeahead.h"

namespace dorvutil::typeahead_test {

using StringResult = TTypeAheadResult<ORVustring>;
using Names = std::vector<std::string>;

/// A source whose answers a test scripts, and which keeps a record of what it was asked.
class ScriptedSource : public TypeAheadSource {
public:
    using Script = std::function<void(ScriptedSource&, const std::string&)>;

    explicit ScriptedSource(TypeAheadSourceID id, Script search = {})
        : TypeAheadSource(id), m_search(std::move(search)) {}
    ~ScriptedSource() override {
        if (m_deleted) ++*m_deleted;
    }

    using TypeAheadSource::DeferSync;
    using TypeAheadSource::GetCBDialog;
    using TypeAheadSource::IsCanceled;
    using TypeAheadSource::OnDataChanged;
    using TypeAheadSource::ReportResult;

    void Cleanup() override { ++m_cleanups; }
    bool HasPreload() const override { return static_cast<bool>(m_preload); }

    void Report(const char* display, std::int32_t relevance = 0, bool permanent = false, const char* data = "") {
        ReportResult(new StringResult(display, "", relevance, permanent, this, data));
    }
    Names Searches() const { return Copy(m_searches); }
    Names Preparations() const { return Copy(m_preparations); }

    std::function<bool(ScriptedSource&)> m_preload;  // set: the source has a preload
    std::atomic<int> m_preloads{0}, m_cleanups{0};
    std::atomic<int>* m_deleted = nullptr;

protected:
    bool Preload() override {
        ++m_preloads;
        return m_preload(*this);
    }
    void Search(const ORVustring& input) override {
        Note(m_searches, input);
        if (m_search) m_search(*this, input.c_str());
    }
    void PrepareSearch(const ORVustring& input) override { Note(m_preparations, input); }

private:
    Names Copy(const Names& record) const {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return record;
    }
    void Note(Names& record, const ORVustring& input) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        record.emplace_back(input.c_str());
    }

    mutable std::mutex m_mutex;
    Names m_searches, m_preparations;
    const Script m_search;
};

/// Holds a search or preload up until the test lets it go.
class Gate {
public:
    void Pass() {
        m_entered.SignalEvent();
        m_open.WaitForEvent(kWaitForever);
    }
    bool WaitUntilEntered() { return m_entered.WaitForEvent(20'000) == 1; }
    void Open() { m_open.SignalEvent(); }

private:
    event m_entered{true}, m_open{true};
};

inline constexpr EMsgID kNoMessage = kMessageCount;

/// The list of a handle, brought up to date.
inline Names Shown(TypeAheadSearchHandle& handle, std::uint32_t generation) {
    Names names;
    for (std::uint32_t i = 0, n = handle.NumResults(generation); i < n; ++i) {
        names.emplace_back(handle.GetResult(i, generation)->GetDisplayString().c_str());
    }
    return names;
}

/// Ends the searches of a handle and its sources. Declared behind what their scripts refer to.
class EndOfSearches {
public:
    explicit EndOfSearches(TypeAheadSearchHandle& handle) : m_handle(handle) {}
    ~EndOfSearches() { m_handle.FlushSources(); }
    EndOfSearches(const EndOfSearches&) = delete;
    EndOfSearches& operator=(const EndOfSearches&) = delete;

private:
    TypeAheadSearchHandle& m_handle;
};

/// A handle whose sources go before it.
template <eSearchThreadingControl kControl>
struct HandleTest : testing::Test {
    explicit HandleTest(EMsgID message = kNoMessage) : m_handle(message, kControl) {}
    ~HandleTest() override { m_handle.FlushSources(); }
    void TestBody() override {}

    ScriptedSource* Add(TypeAheadSourceID id, ScriptedSource::Script search = {},
                        std::function<bool(ScriptedSource&)> preload = {}) {
        auto* const source = new ScriptedSource(id, std::move(search));
        source->m_preload = std::move(preload);
        m_handle.GetSourceAdder().AddSource(source);
        return source;
    }
    TypeAheadSearchHandle m_handle;
};

inline void ReportInput(ScriptedSource& source, const std::string& input) { source.Report(input.c_str()); }

}  // namespace dorvutil::typeahead_test
