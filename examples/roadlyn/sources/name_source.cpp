#include "sources/name_source.h"

#include <algorithm>
#include <exception>

#include "recent_file.h"

namespace roadlyn {
namespace {

using dorvutil::ORVustring;
using dorvutil::TypeAheadResult;

constexpr std::size_t kMaxListed = 100;        // what the library's list holds at most
constexpr std::size_t kMaxNamesakes = 10'000;  // how many of one name are looked through for the one that was chosen
constexpr unsigned kSteps = 1000;
constexpr unsigned kTableSteps = 300;  // the share of reading; the rest is indexing

ORVustring ToLibrary(std::string_view text) { return ORVustring(text.data(), static_cast<std::int32_t>(text.size())); }

// Forwards thousandths of a part of the work to the sink as steps.
class StepReporter {
public:
    explicit StepReporter(dorvutil::CB_Dialog& sink) : m_sink(sink) { m_sink.SetNumSteps(static_cast<int>(kSteps)); }

    void Reach(unsigned step) {
        if (step > m_reached) m_sink.Step(step - m_reached);
        m_reached = std::max(m_reached, step);
    }

private:
    dorvutil::CB_Dialog& m_sink;
    unsigned m_reached = 0;
};

}  // namespace

// Nothing may leave it: the library that calls it knows no exceptions.
bool NameSource::Preload() {
    try {
        if (IsCanceled()) return false;
        StepReporter steps(GetCBDialog());
        m_table = LoadTable([&](unsigned permille) {
            steps.Reach(permille * kTableSteps / 1000);
            return !IsCanceled();
        });
        if (IsCanceled()) return false;
        const bool built = m_index.Build(*m_table, [&](unsigned permille) {
            steps.Reach(kTableSteps + permille * (kSteps - kTableSteps) / 1000);
            return !IsCanceled();
        });
        if (!built) return false;
        OnLoaded();
        steps.Reach(kSteps);
        m_board.ReportLoaded(m_kind);
        return true;
    } catch (const std::exception& error) {
        m_board.ReportFailure(error.what());
        return false;
    }
}

void NameSource::Search(const ORVustring& input) {
    try {
        DeferSync(true);
        SearchTable({input.c_str(), input.length()});
    } catch (const std::exception&) {
        // Memory ran out: the list shows what was reported so far.
    }
}

void NameSource::SearchTable(std::string_view text) {
    if (m_kind == kPlaceSource) m_board.SetSearchedText(text);
    if (m_kind != kRecentSource) FindChosenRows();
    m_index.Search(
        text, kMaxListed, m_board.Order(), [this] { return IsCanceled(); }, m_hits);
    // A chosen row is reported even if a hundred others come first: it belongs where the recent choice stands.
    for (const ChosenRow& chosen : m_chosen) {
        if (m_index.Matches(chosen.row, text)) Report(chosen.row, chosen.relevance);
    }
    for (const PlaceHit& hit : m_hits) {
        if (IsCanceled()) return;
        const bool reported = std::any_of(m_chosen.begin(), m_chosen.end(),
                                          [&](const ChosenRow& chosen) { return chosen.row == hit.row; });
        if (!reported) Report(hit.row, PlaceTable::Relevance(Table().At(hit.row)));
    }
}

void NameSource::Report(std::uint32_t row, std::int32_t relevance) {
    auto* const result = new dorvutil::TTypeAheadResult<ORVustring>(ToLibrary(Table().Name(row)), ORVustring(),
                                                                    relevance, false, this, ToLibrary(KeyOf(row)));
    const dorvutil::TLocker<TypeAheadResult> holder(result);  // nobody else may want it
    ReportResult(result);
}

std::string NameSource::FormatRow(std::uint32_t row) const { return FormatChoice(ChoiceAt(row)); }

// The library lets a recent choice give way to the first result of the same name. So that this is the very thing that
// was chosen and not a namesake, chosen rows are the most relevant of all, the latest first.
void NameSource::FindChosenRows() {
    SourceBoard::ChoicesPointer choices = m_board.Choices();
    if (choices == m_choices) return;
    m_chosen.clear();
    m_choices = std::move(choices);
    if (!m_choices) return;
    std::int32_t relevance = PlaceTable::kMaxRelevance + static_cast<std::int32_t>(m_choices->size());
    for (const Choice& choice : *m_choices) {
        if (choice.kind == m_kind) {
            m_index.Search(
                choice.name, kMaxNamesakes, ResultOrder::MatchQuality, [] { return false; }, m_hits);
            const auto found = std::find_if(m_hits.begin(), m_hits.end(),
                                            [&](const PlaceHit& hit) { return ChoiceAt(hit.row).IsSame(choice); });
            if (found != m_hits.end()) m_chosen.push_back({found->row, relevance});
        }
        --relevance;
    }
}

}  // namespace roadlyn
