#include "dorvutil/frame/library_hash.h"

#include <memory>
#include <new>

#include "dorvutil/platform/library.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kBuckets = 63;

// The library's names do not mind the case; on some systems those of files do. Folders are taken as given.
HMODULE OpenInAnyCase(const ORVwstring& name) {
    const std::int32_t start = name.find_last_of(u"\\/") + 1;
    const ORVwstring file = name.substr(start);
    for (const ORVwstring& spelling : {file, file.to_upper_ret(), file.to_lower_ret()}) {
        ORVwstring path = name.substr(0, start);
        path += spelling;
        if (void* const module = platform::OpenLibrary(path.T_str())) return module;
    }
    return nullptr;
}

class LibraryUnloader : public TIterator<TLibraryHashEntry> {
public:
    void OnElement(TLibraryHashEntry* entry) override {
        void* const module = entry->Module();
        if (!module) return;
        ORVwstring function = entry->Name();
        function += u"_cleanup";
        if (void* const address = platform::FindFunction(module, function.c_str())) {
            reinterpret_cast<void (*)()>(address)();
        }
        platform::CloseLibrary(module);
        entry->SetModule(nullptr);
    }
};

}  // namespace

TLibraryHashEntry::TLibraryHashEntry(const char* name) : m_name(ORVustring(name)) {
    m_key = m_name.to_upper_ret();
    m_key += u".DLL";
    m_keyCopy = m_key;
}

std::uint32_t TLibraryHashEntry::HashValue() const { return m_key.HashValue(); }

bool TLibraryHashEntry::operator==(const TLibraryHashEntry& other) const { return m_key == other.m_key; }

CLoadedLibraryHash::CLoadedLibraryHash() : TORVIHash_TS(kBuckets) {}

CLoadedLibraryHash::~CLoadedLibraryHash() {
    const TScopedLock<CBaseSync> lock(*this);
    LibraryUnloader unloader;
    Iterate(unloader);
    Flush();
}

void CLoadedLibraryHash::DeleteItem(TLibraryHashEntry* entry) { delete entry; }

bool CLoadedLibraryHash::Load(const char* name, bool remember, HMODULE& module) {
    module = nullptr;
    std::unique_ptr<TLibraryHashEntry> wanted(new (std::nothrow) TLibraryHashEntry(name));
    if (!wanted) return false;
    const TScopedLock<CBaseSync> lock(*this);
    if (const TLibraryHashEntry* const known = Find(*wanted)) {
        module = known->Module();
        return true;
    }
    void* const loaded = OpenInAnyCase(wanted->Name());
    if (!loaded && !remember) return false;
    wanted->SetModule(loaded);
    if (!Add(wanted.get())) {
        platform::CloseLibrary(loaded);
        return false;
    }
    wanted.release();  // the table's
    module = loaded;
    return loaded != nullptr;
}

}  // namespace dorvutil
