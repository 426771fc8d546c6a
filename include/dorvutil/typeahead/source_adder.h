#pragma once

#include "dorvutil/frame/export.h"
#include "dorvutil/typeahead/shared_guts.h"
#include "dorvutil/typeahead/source.h"

namespace dorvutil {

class TypeAheadSearchHandle;

/// What all copies of one adder share. Its end starts the handle's preload.
class DORVUTIL_API TypeAheadSourceAdderGuts : public SharedGuts {
public:
    explicit TypeAheadSourceAdderGuts(TypeAheadSearchHandle* handle) : m_handle(handle) {}
    ~TypeAheadSourceAdderGuts();

    void AddSource(TypeAheadSource* source);

private:
    TypeAheadSearchHandle* m_handle;  // not owned; outlives the adders
};

/// Adds sources to a handle; when the last copy goes, the preload of what was added begins, in one go and in its order
/// of priority. Must go before its handle does.
class DORVUTIL_API TypeAheadSourceAdder : public SharedGutsHolder<TypeAheadSourceAdderGuts> {
public:
    using SharedGutsHolder::SharedGutsHolder;

    /// The handle becomes the source's observer, and its owner as far as FlushSources goes. Null is ignored.
    void AddSource(TypeAheadSource* source) const {
        if (Guts()) Guts()->AddSource(source);
    }
};

}  // namespace dorvutil
