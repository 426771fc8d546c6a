#include "dorvutil/typeahead/source_adder.h"

#include "dorvutil/typeahead/handle.h"

namespace dorvutil {

TypeAheadSourceAdderGuts::~TypeAheadSourceAdderGuts() {
    if (m_handle) m_handle->StartPreload();
}

void TypeAheadSourceAdderGuts::AddSource(TypeAheadSource* source) {
    if (m_handle) m_handle->AddSource(source);
}

}  // namespace dorvutil
