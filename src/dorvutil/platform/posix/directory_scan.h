#pragma once

#include <dirent.h>

namespace dorvutil::platform {

/// Calls `visit` with the name of each entry of a folder, in the system's order, until one answers true; whether one
/// did.
template <class Visit>
bool AnyEntry(const char* folder, Visit visit) {
    DIR* const entries = ::opendir(folder);
    if (!entries) return false;
    bool found = false;
    while (!found) {
        const dirent* const entry = ::readdir(entries);
        if (!entry) break;
        found = entry->d_name[0] != '.' && visit(static_cast<const char*>(entry->d_name));
    }
    ::closedir(entries);
    return found;
}

}  // namespace dorvutil::platform
