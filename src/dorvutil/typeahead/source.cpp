#include "dorvutil/typeahead/source.h"

#include "dorvutil/typeahead/result.h"

namespace dorvutil {

TypeAheadSource::TypeAheadSource(TypeAheadSourceID id) : m_id(id) {}

void TypeAheadSource::Delete() { delete this; }

void TypeAheadSource::PrepareSearch(const ORVustring&) {}

bool TypeAheadSource::DoPreload(CB_Dialog& sink) {
    if (m_preloaded) return false;
    if (!HasPreload()) {
        MarkPreloaded(true);
        return false;
    }
    m_sink = sink;
    const bool loaded = Preload();
    // The flag comes last: from then on another thread may search, with a sink of its own.
    m_sink = CB_Dialog();
    MarkPreloaded(loaded);
    return loaded;
}

bool TypeAheadSource::DoSearch(const ORVustring& input, bool prepare, CB_Dialog& sink) {
    if (!m_preloaded) return false;
    m_sink = sink;
    if (prepare) {
        PrepareSearch(input);
    } else {
        Search(input);
    }
    m_sink = CB_Dialog();
    DeferSync(false);
    return true;
}

bool TypeAheadSource::IsCanceled() const { return m_sink.Is_Cancelled(); }

void TypeAheadSource::DeferSync(bool defer) {
    if (TypeAheadSourceObserver* const observer = m_observer) observer->DeferSync(defer);
}

void TypeAheadSource::OnDataChanged(bool flush) {
    if (TypeAheadSourceObserver* const observer = m_observer) observer->OnDataChanged(this, flush);
}

// Held meanwhile: a result that nobody takes, as of a cancelled search, ends here.
void TypeAheadSource::ReportResult(TypeAheadResult* result) {
    const TLocker<TypeAheadResult> held(result);
    if (TypeAheadSourceObserver* const observer = m_observer) observer->OnNewResult(result);
}

}  // namespace dorvutil
