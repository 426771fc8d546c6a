#pragma once

#include <cstdint>

#include "dorvutil/messaging/progress.h"
#include "dorvutil/typeahead/params.h"
#include "dorvutil/typeahead/source.h"

/// What the two workers do one at a time. A source is waited for by at most one unit in each queue: the source is the
/// key.
namespace dorvutil {

/// Units that the calling thread is inside of. Whoever is inside one must not wait for its worker; and since a preload
/// may wait for a search to end, a search must not wait for the preload worker either.
struct TypeAheadUnitDepth {
    std::int32_t search = 0;
    std::int32_t preload = 0;
};
inline constinit thread_local TypeAheadUnitDepth t_typeAheadDepth;

/// One source, to be searched.
struct TypeAheadSearchWorkUnit {
    TypeAheadSource* m_source;
    TypeAheadSearchParams m_params;

    const void* Key() const { return m_source; }
    void Run(CB_Dialog& sink) const {
        if (!m_params.m_searchOwner) return;
        if (m_source->DoSearch(m_params.m_input, m_params.m_prepareSearch, sink)) {
            m_params.m_searchOwner->OnSearchComplete();
        }
    }

    static std::int32_t& Depth() { return t_typeAheadDepth.search; }
    static bool MayWait() { return t_typeAheadDepth.search == 0; }
};

/// One source, to be preloaded.
struct TypeAheadPreloadWorkUnit {
    TypeAheadSource* m_source;
    TypeAheadPreloadObserver* m_observer;

    const void* Key() const { return m_source; }
    void Run(CB_Dialog& sink) const {
        if (m_source->DoPreload(sink) && m_observer) m_observer->OnPreloadComplete(m_source);
    }

    static std::int32_t& Depth() { return t_typeAheadDepth.preload; }
    static bool MayWait() { return t_typeAheadDepth.search == 0 && t_typeAheadDepth.preload == 0; }
};

}  // namespace dorvutil
