#include "dorvutil/typeahead/params.h"

#include "dorvutil/typeahead/private_text.h"

namespace dorvutil {

TypeAheadSearchParams::TypeAheadSearchParams(const TypeAheadSearchParams& other)
    : m_input(PrivateText(other.m_input)),
      m_prepareSearch(other.m_prepareSearch),
      m_originalInput(PrivateText(other.m_originalInput)),
      m_searchOwner(other.m_searchOwner) {}

TypeAheadSearchParams& TypeAheadSearchParams::operator=(const TypeAheadSearchParams& other) {
    if (this == &other) return *this;
    SetInput(other.m_input);
    m_prepareSearch = other.m_prepareSearch;
    SetOriginalInput(other.m_originalInput);
    m_searchOwner = other.m_searchOwner;
    return *this;
}

bool TypeAheadSearchParams::HasPeeledLetters() const { return !(m_originalInput == m_input); }

void TypeAheadSearchParams::SetInput(const ORVustring& text) { m_input = PrivateText(text); }

void TypeAheadSearchParams::SetOriginalInput(const ORVustring& text) { m_originalInput = PrivateText(text); }

}  // namespace dorvutil
