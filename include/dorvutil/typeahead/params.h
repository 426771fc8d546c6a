#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

namespace dorvutil {

/// Is told when a source has finished a search.
class DORVUTIL_API TypeAheadSearchObserver {
public:
    /// Once for each source and search, on the thread that ran the search.
    virtual void OnSearchComplete() = 0;

protected:
    TypeAheadSearchObserver() = default;
    TypeAheadSearchObserver(const TypeAheadSearchObserver&) = default;
    TypeAheadSearchObserver& operator=(const TypeAheadSearchObserver&) = default;
    ~TypeAheadSearchObserver() = default;
};

/// What one search asks for. Strings count their references without a lock, so every copy of the parameters has text
/// storage of its own: an original that one thread guards may be copied under its lock and the copy used on another
/// thread.
class DORVUTIL_API TypeAheadSearchParams {
public:
    TypeAheadSearchParams() = default;
    TypeAheadSearchParams(const TypeAheadSearchParams& other);
    TypeAheadSearchParams& operator=(const TypeAheadSearchParams& other);
    ~TypeAheadSearchParams() = default;

    /// Whether letters were taken off the end of what the user typed: original input and input differ.
    bool HasPeeledLetters() const;

    /// Both take a private copy of the text.
    void SetInput(const ORVustring& text);
    void SetOriginalInput(const ORVustring& text);

    ORVustring m_input;                                ///< The text searched for now.
    bool m_prepareSearch = false;                      ///< Only prepare for this text; no results are wanted.
    ORVustring m_originalInput;                        ///< The text the user typed.
    TypeAheadSearchObserver* m_searchOwner = nullptr;  ///< Told when a source finishes; not owned.
};

/// Where the work of a search handle runs.
enum eSearchThreadingControl : std::int32_t {
    STC_THREADED = 0,     ///< On the two worker threads that all handles share.
    STC_SYNCHRONOUS = 1,  ///< In the thread that calls the handle.
};

}  // namespace dorvutil
