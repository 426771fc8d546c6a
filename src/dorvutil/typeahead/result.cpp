#include "dorvutil/typeahead/result.h"

#include <algorithm>
#include <cstring>

#include "dorvutil/typeahead/match_quality.h"
#include "dorvutil/typeahead/private_text.h"

namespace dorvutil {

TypeAheadResult::TypeAheadResult(const ORVustring& display, const ORVustring& image, std::int32_t relevance,
                                 bool permanent, TypeAheadSource* source)
    : m_display(PrivateText(display)),
      m_image(PrivateText(image)),
      m_relevance(relevance),
      m_source(source),
      m_permanent(permanent),
      m_sourceId(source ? source->GetSourceID() : kNoTypeAheadSource) {}

TypeAheadResult::TypeAheadResult(const TypeAheadResult& other)
    : TLockable<critSec>(other),
      m_display(PrivateText(other.m_display)),
      m_image(PrivateText(other.m_image)),
      m_relevance(other.m_relevance),
      m_matchQuality(other.m_matchQuality),
      m_source(other.m_source),
      m_permanent(other.m_permanent),
      m_sourceId(other.m_sourceId) {}

TypeAheadResult& TypeAheadResult::operator=(const TypeAheadResult& other) {
    if (this == &other) return *this;
    m_display = PrivateText(other.m_display);
    m_image = PrivateText(other.m_image);
    m_relevance = other.m_relevance;
    m_matchQuality = other.m_matchQuality;
    m_source = other.m_source;
    m_permanent = other.m_permanent;
    m_sourceId = other.m_sourceId;
    return *this;
}

void TypeAheadResult::CalculateMatchQuality(const ORVustring& input) {
    m_matchQuality = GetTypeAheadMatchQuality(input, m_display);
}

int TypeAheadResult::Compare(const TypeAheadResult& other) const {
    const std::uint32_t mine = m_display.length();
    const std::uint32_t theirs = other.m_display.length();
    const int order = std::memcmp(m_display.c_str(), other.m_display.c_str(), std::min(mine, theirs));
    if (order != 0) return order;
    if (mine != theirs) return mine < theirs ? -1 : 1;
    return CompareData(other);
}

TTypeAheadResult<ORVustring>::TTypeAheadResult(const ORVustring& display, const ORVustring& image,
                                               std::int32_t relevance, bool permanent, TypeAheadSource* source,
                                               const ORVustring& data)
    : TypeAheadResult(display, image, relevance, permanent, source), m_data(PrivateText(data)) {}

TTypeAheadResult<ORVustring>::TTypeAheadResult(const TTypeAheadResult& other)
    : TypeAheadResult(other), m_data(PrivateText(other.m_data)) {}

TTypeAheadResult<ORVustring>& TTypeAheadResult<ORVustring>::operator=(const TTypeAheadResult& other) {
    if (this == &other) return *this;
    TypeAheadResult::operator=(other);
    m_data = PrivateText(other.m_data);
    return *this;
}

int TTypeAheadResult<ORVustring>::CompareData(const TypeAheadResult& other) const {
    if (GetType() != other.GetType()) return GetType() - other.GetType();
    const ORVustring& data = static_cast<const TTypeAheadResult&>(other).m_data;
    if (m_data == data) return 0;
    return m_data < data ? -1 : 1;
}

}  // namespace dorvutil
