#include "host_session.h"

#include <charconv>
#include <stdexcept>
#include <utility>

#include "recent_file.h"
#include "sources/country_source.h"
#include "sources/place_source.h"
#include "sources/recent_source.h"

namespace roadlyn {
namespace {

using dorvutil::ORVustring;

constexpr auto kSyncMessage = static_cast<dorvutil::EMsgID>(100);
constexpr std::size_t kSources = 3;
constexpr std::uint32_t kNeverGeneration = 0xFFFFFFFFu;  // the library takes it for "as it is"

}  // namespace

HostSession::SyncListener::SyncListener(HostSession& session) : CallbackListener(kSyncMessage, 0), m_session(session) {}

void HostSession::SyncListener::OnCallback(dorvutil::EMsgID /*id*/, const dorvutil::CBDataBase* /*data*/) {
    m_session.OnSync();
}

HostSession::HostSession(SessionOptions options)
    : m_options(std::move(options)),
      m_board(kSources, m_options.smart ? ResultOrder::MatchQuality : ResultOrder::RelevanceOnly, m_options.wake),
      m_handle(std::make_unique<dorvutil::TypeAheadSearchHandle>(kSyncMessage, dorvutil::STC_THREADED)),
      m_listener(std::make_unique<SyncListener>(*this)) {
    m_handle->SetSmartSort(m_options.smart);
    m_handle->SetExactSearch(m_options.exact);
    auto recent = std::make_unique<RecentSource>(m_board, m_options.recentPath);
    auto places = std::make_unique<PlaceSource>(m_board, m_options.placesPath);
    auto countries = std::make_unique<CountrySource>(m_board);
    m_recent = recent.get();
    const dorvutil::TypeAheadSourceAdder adder = m_handle->GetSourceAdder();
    adder.AddSource(recent.release());
    adder.AddSource(places.release());
    adder.AddSource(countries.release());
}

HostSession::~HostSession() {
    m_handle->FlushSources();
    m_handle.reset();  // after this no thread of the library calls the listener
    m_listener.reset();
}

void HostSession::WaitUntilLoaded() {
    if (m_board.WaitUntilLoaded() == LoadState::Failed) throw std::runtime_error(m_board.Failure());
    // The sources are ready a moment after they said so; a search that waits also waits for that.
    Type("", true);
}

std::uint32_t HostSession::PercentLoaded() const {
    const std::uint32_t event = m_board.ProgressEvent();
    return event == SourceBoard::kNoProgress ? 0 : dorvutil::CB_Dialog(event).GetPercentComplete();
}

std::uint32_t HostSession::PlaceCount() const {
    const SourceBoard::PlacesPointer places = m_board.Places();
    return places ? places->Count() : 0;
}

void HostSession::Type(const std::string& text, bool wait) {
    m_typed = text;
    const ORVustring input(text.data(), static_cast<std::int32_t>(text.size()));
    {
        const std::lock_guard guard(m_timesLock);
        m_times = {};
        m_start = Clock::now();
    }
    m_handle->StartSearch(input, wait);
}

// The message that the main thread raises itself says only that the earlier results are gone.
void HostSession::OnSync() {
    if (std::this_thread::get_id() == m_mainThread) return;
    {
        const std::lock_guard guard(m_timesLock);
        m_times.last = std::chrono::duration<double, std::milli>(Clock::now() - m_start).count();
        if (m_times.first < 0) m_times.first = m_times.last;
    }
    ++m_announcements;
    m_options.wake();
}

SyncTimes HostSession::Times() const {
    const std::lock_guard guard(m_timesLock);
    return m_times;
}

std::vector<ResultLine> HostSession::Results(std::size_t limit) {
    if (++m_generation == kNeverGeneration) m_generation = 0;
    const std::size_t count = std::min<std::size_t>(m_handle->NumResults(m_generation), limit);
    std::vector<ResultLine> lines;
    lines.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const dorvutil::TypeAheadResult* const result = m_handle->GetResult(i, m_generation);
        if (result == nullptr) break;
        lines.push_back({ChoiceOf(*result), result->GetMatchQuality(), result->IsPermanent(), result->GetSourceID()});
    }
    return lines;
}

// Every source of this host makes results with a text as data: places their row, the others a whole line.
Choice HostSession::ChoiceOf(const dorvutil::TypeAheadResult& result) const {
    const ORVustring& key = static_cast<const dorvutil::TTypeAheadResult<ORVustring>&>(result).GetData();
    const std::string_view data(key.c_str(), key.length());
    if (result.GetSourceID() != kPlaceSource) return ParseChoice(std::string(data));
    std::uint32_t row = 0;
    std::from_chars(data.data(), data.data() + data.size(), row);
    return PlaceChoice(*m_board.Places(), row);
}

void HostSession::Remember(const Choice& choice) {
    m_recent->Remember(choice);
    // All sources are searched again, for the places to know what was chosen.
    Type(std::string(m_typed), false);
}

}  // namespace roadlyn
