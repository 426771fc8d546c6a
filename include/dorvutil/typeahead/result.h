#pragma once

#include <cstdint>

#include "dorvutil/concurrency/lockable.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"
#include "dorvutil/typeahead/source.h"

namespace dorvutil {

template <class T>
class ListMgr;

/// What kind of data a result carries.
enum TypeAheadResultType : std::int32_t {
    TART_STRING = 0,  ///< TTypeAheadResult<ORVustring>
};

/// One completion offered to the user. Lives on the heap, created by a source with count 0; deletes itself with the
/// last reference. A source that reports a result and wants to be sure that it does not leak when nobody takes it holds
/// a TLocker<TypeAheadResult> on it meanwhile.
///
/// Threads: reference counting from any thread; the rest does not change after construction, except the match quality,
/// which belongs to the thread that reads the handle's list. Strings count their references without a lock, so the
/// constructors give the result text storage of its own. Its strings may be read from any thread that holds a
/// reference; a reader that wants to keep a text makes a string from its characters (c_str) instead of copying the
/// string object, and does not ask for its wide form while another thread may read it.
class DORVUTIL_API TypeAheadResult : TLockable<critSec> {
public:
    using TLockable<critSec>::Ref;
    using TLockable<critSec>::Unref;

    TypeAheadResult& operator=(const TypeAheadResult& other);  ///< All but the reference count.

    const ORVustring& GetDisplayString() const { return m_display; }  ///< What the user sees, and what is matched.
    const ORVustring& GetImageString() const { return m_image; }      ///< Name of an icon or picture; may be empty.
    std::int32_t GetRelevance() const { return m_relevance; }         ///< The source's score; higher is better.
    std::uint32_t GetMatchQuality() const {
        return m_matchQuality;
    }                                                             ///< A MatchQuality; MQ_NONE before the first grading.
    TypeAheadSourceID GetSourceID() const { return m_sourceId; }  ///< kNoTypeAheadSource without a source.
    bool IsPermanent() const { return m_permanent; }              ///< Always shown, before all others.

    /// Grades the display string (GetTypeAheadMatchQuality) and keeps the grade.
    void CalculateMatchQuality(const ORVustring& input);

    /// Identity order: display strings byte by byte, unsigned, an empty one first; then the data. Negative, 0,
    /// positive.
    int Compare(const TypeAheadResult& other) const;

    std::int32_t ObtainRef() const { return Ref(); }
    std::int32_t ReleaseRef() { return Unref(); }  ///< The object is gone when this returns 0.

protected:
    /// `source` may be null; only its id is used later on.
    TypeAheadResult(const ORVustring& display, const ORVustring& image, std::int32_t relevance, bool permanent,
                    TypeAheadSource* source);
    TypeAheadResult(const TypeAheadResult& other);  ///< The copy has count 0.
    ~TypeAheadResult() override = default;

public:
    virtual TypeAheadResultType GetType() const = 0;

private:
    friend class ListMgr<TypeAheadResult>;  // names the destructor in a disposal that its lists of results override
    friend class TypeAheadListBuilder;

    /// Order of the data of results with equal display strings. Must be a consistent order over all types.
    virtual int CompareData(const TypeAheadResult& other) const = 0;

    ORVustring m_display;
    ORVustring m_image;
    std::int32_t m_relevance;
    std::uint32_t m_matchQuality = 0;
    TypeAheadSource* m_source;  // not owned; may be gone
    bool m_permanent;
    TypeAheadSourceID m_sourceId;  // a result may outlive its source
};

template <class T>
class TTypeAheadResult;

/// A result with a text as data, for instance a key that identifies the place.
template <>
class DORVUTIL_API TTypeAheadResult<ORVustring> : public TypeAheadResult {
public:
    TTypeAheadResult(const ORVustring& display, const ORVustring& image, std::int32_t relevance, bool permanent,
                     TypeAheadSource* source, const ORVustring& data);
    TTypeAheadResult(const TTypeAheadResult& other);
    TTypeAheadResult& operator=(const TTypeAheadResult& other);

    const ORVustring& GetData() const { return m_data; }  ///< For its threads see TypeAheadResult.

    static TypeAheadResultType GetStaticType() { return TART_STRING; }
    TypeAheadResultType GetType() const override { return GetStaticType(); }

protected:
    ~TTypeAheadResult() override = default;

private:
    int CompareData(const TypeAheadResult& other) const override;

    ORVustring m_data;
};

}  // namespace dorvutil
