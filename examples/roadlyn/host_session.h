#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "choice.h"
#include "dorvutil/messaging/listener.h"
#include "dorvutil/typeahead.h"
#include "sources/source_board.h"

namespace roadlyn {

class RecentSource;

struct SessionOptions {
    std::string placesPath;
    std::string recentPath;  ///< Empty: no choices are kept.
    bool smart = true;       ///< Match quality before relevance.
    bool exact = false;      ///< Never take letters off the text.
    /// Called, on any thread, when the results or the load state changed. Must not block.
    std::function<void()> wake = [] {};
};

/// One line of the result list.
struct ResultLine {
    Choice choice;
    std::uint32_t quality;  ///< A MatchQuality.
    bool permanent;
    std::int32_t sourceId;
};

/// When results of one search were announced, in milliseconds after its start; negative where nothing was announced.
struct SyncTimes {
    double first = -1;
    double last = -1;
};

/// One search handle with its three sources, from the load of the data to the end. Main thread only.
class HostSession {
public:
    using LoadState = SourceBoard::LoadState;

    /// Starts loading.
    explicit HostSession(SessionOptions options);
    HostSession(const HostSession&) = delete;
    HostSession& operator=(const HostSession&) = delete;
    /// Ends whatever is running and waits for it.
    ~HostSession();

    LoadState State() const { return m_board.State(); }
    /// Waits for the end of the load. Throws std::runtime_error with the reason when it failed.
    void WaitUntilLoaded();
    std::string Failure() const { return m_board.Failure(); }
    std::uint32_t PercentLoaded() const;
    std::uint32_t PlaceCount() const;

    /// Searches for `text` (valid UTF-8) in place of what was searched before; with `wait`, to the end.
    void Type(const std::string& text, bool wait);
    const std::string& TypedText() const { return m_typed; }
    /// The text whose results are shown: shorter than the typed one when that found nothing.
    std::string SearchedText() const { return m_board.SearchedText(); }
    /// When the sources announced results of the search under way, or of the last one.
    SyncTimes Times() const;
    /// Number of announcements so far.
    std::uint32_t Announcements() const { return m_announcements; }

    /// The list as it is now, at most `limit` lines.
    std::vector<ResultLine> Results(std::size_t limit);

    /// Keeps a choice among the recent ones. Throws InputError when that fails.
    void Remember(const Choice& choice);

private:
    // Results changed: the library says so by a message, mostly on its search thread.
    class SyncListener : public dorvutil::CallbackListener {
    public:
        explicit SyncListener(HostSession& session);
        void OnCallback(dorvutil::EMsgID id, const dorvutil::CBDataBase* data) override;

    private:
        HostSession& m_session;
    };

    using Clock = std::chrono::steady_clock;

    void OnSync();
    Choice ChoiceOf(const dorvutil::TypeAheadResult& result) const;

    const SessionOptions m_options;
    const std::thread::id m_mainThread = std::this_thread::get_id();
    SourceBoard m_board;
    mutable std::mutex m_timesLock;  // guards the next two
    Clock::time_point m_start;
    SyncTimes m_times;
    std::string m_typed;  // main thread only
    std::atomic<std::uint32_t> m_announcements{0};
    std::unique_ptr<dorvutil::TypeAheadSearchHandle> m_handle;
    std::unique_ptr<SyncListener> m_listener;
    RecentSource* m_recent = nullptr;  // owned by m_handle
    std::uint32_t m_generation = 0;
};

}  // namespace roadlyn
