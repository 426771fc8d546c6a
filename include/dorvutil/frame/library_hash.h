#pragma once

#include <cstdint>

#include "dorvutil/frame/dynamic_library.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/memory/hash.h"
#include "dorvutil/text/string.h"

namespace dorvutil {

/// One library that was asked for. Not synchronised, and its strings share characters: it stays with the table's lock.
class DORVUTIL_API TLibraryHashEntry {
public:
    /// `name` as the caller gave it, UTF-8. There is no module yet.
    explicit TLibraryHashEntry(const char* name);

    std::uint32_t HashValue() const;                        ///< Of the key.
    bool operator==(const TLibraryHashEntry& other) const;  ///< By the key.

    const ORVwstring& Key() const { return m_key; }
    const ORVwstring& Name() const { return m_name; }
    HMODULE Module() const { return m_module; }  ///< Null: it could not be loaded.
    void SetModule(HMODULE module) { m_module = module; }

private:
    HMODULE m_module = nullptr;
    ORVwstring m_key;  // the name in capitals and ".DLL"
    ORVwstring m_keyCopy;
    ORVwstring m_name;
};

/// The libraries loaded by name. Owned by the registry; the functions of frame/dynamic_library.h hold its lock while
/// they look up and load. Its destruction cleans up and unloads every library, bucket by bucket.
class DORVUTIL_API CLoadedLibraryHash : public TORVIHash_TS<TLibraryHashEntry> {
public:
    CLoadedLibraryHash();
    ~CLoadedLibraryHash() override;

    void DeleteItem(TLibraryHashEntry* entry) override;

    /// The library of this name, loaded if it is the first request. True with the module, which is null for a
    /// remembered failure; false when it could not be loaded just now: `remember` says whether to look again next time.
    bool Load(const char* name, bool remember, HMODULE& module);
};

}  // namespace dorvutil
