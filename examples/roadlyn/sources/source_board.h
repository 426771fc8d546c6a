#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "choice.h"
#include "place_index.h"
#include "place_table.h"

namespace roadlyn {

/// What the sources, which work on the library's threads, and the session, which lives on the main thread, tell each
/// other. Any thread.
class SourceBoard {
public:
    using PlacesPointer = std::shared_ptr<const PlaceTable>;
    using ChoicesPointer = std::shared_ptr<const std::vector<Choice>>;

    enum class LoadState { Loading, Ready, Failed };

    /// `wake` is called, on any thread and with no lock held, when the load state changes.
    SourceBoard(std::size_t sources, ResultOrder order, std::function<void()> wake);

    /// A source has loaded its data; a repetition changes nothing.
    void ReportLoaded(SourceKind kind);
    /// A source could not load its data, for the reason given. The first failure stays.
    void ReportFailure(const std::string& reason);
    LoadState State() const;
    /// Waits until the state is no longer Loading.
    LoadState WaitUntilLoaded() const;
    std::string Failure() const;

    /// The progress state (CB_Dialog event identifier) of the load that takes long; kNoProgress before it begins.
    static constexpr std::uint32_t kNoProgress = 0xFFFFFFFFu;
    void SetProgressEvent(std::uint32_t eventId) { m_progressEvent = eventId; }
    std::uint32_t ProgressEvent() const { return m_progressEvent; }

    /// The places, once loaded; else null. They do not change any more.
    void SetPlaces(PlacesPointer places);
    PlacesPointer Places() const;

    /// The user's latest choices, newest first; null before they are loaded. Each change makes a new object.
    void SetChoices(ChoicesPointer choices);
    ChoicesPointer Choices() const;

    /// The text that the places were searched for last: the typed one, or what the library has left of it.
    void SetSearchedText(std::string_view text);
    std::string SearchedText() const;

    ResultOrder Order() const { return m_order; }

private:
    const std::size_t m_sources;
    const ResultOrder m_order;
    const std::function<void()> m_wake;
    std::atomic<std::uint32_t> m_progressEvent{kNoProgress};
    mutable std::mutex m_lock;  // guards all below
    mutable std::condition_variable m_changed;
    std::vector<SourceKind> m_loaded;
    std::string m_failure;
    PlacesPointer m_places;
    ChoicesPointer m_choices;
    std::string m_searchedText;
};

}  // namespace roadlyn
