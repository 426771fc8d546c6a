#pragma once

#include <cstdint>

#include "dorvutil/memory/list.h"
#include "dorvutil/text/string.h"

namespace dorvutil {

/// What becomes of links to folders.
enum class FolderLinks { kAsFolders, kAsFiles, kLeftOut };

struct ListChoice {
    std::uint32_t m_flags = 0;  ///< eFileListFlags.
    const char* m_pattern = "*";
    const char* m_exclude = "";  ///< Empty: no name.
    FolderLinks m_links = FolderLinks::kAsFolders;
    ListMgr<ORVustring>* m_dates = nullptr;
    bool m_withTime = false;
};

/// Adds what `choice` chooses of `dir` to `out`.
void ListFolder(ListMgr<ORVustring>& out, const ORVustring& dir, const ListChoice& choice);

/// Whether `name` matches: `*` stands for any run of characters, `?` for any one, ".*" at the end also for nothing.
bool MatchesPattern(const char* name, const char* pattern);

}  // namespace dorvutil
