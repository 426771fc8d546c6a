#include "dorvutil/storage/file_list.h"

#include <cstring>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/platform/directory.h"
#include "dorvutil/storage/file_list_core.h"
#include "dorvutil/storage/file_system.h"
#include "dorvutil/storage/path_parts.h"
#include "dorvutil/time/file_time.h"

namespace dorvutil {
namespace {

bool IsWanted(const platform::FileStatus& status, const ListChoice& choice) {
    if (status.m_directory && status.m_link && choice.m_links == FolderLinks::kLeftOut) return false;
    const bool isFolder = status.m_directory && !(status.m_link && choice.m_links == FolderLinks::kAsFiles);
    if (isFolder) return (choice.m_flags & eListDirectories) != 0;
    if ((choice.m_flags & eListFiles) != 0) return static_cast<std::uint32_t>(status.m_size) != 0;
    return (choice.m_flags & eListAllFiles) != 0;
}

bool IsExcluded(const char* name, const ListChoice& choice) {
    return *choice.m_exclude != '\0' && std::strcmp(name, choice.m_exclude) == 0;
}

ORVustring DateText(std::uint64_t fileTime, bool withTime) {
    const ORV_FILETIME time{static_cast<std::uint32_t>(fileTime), static_cast<std::uint32_t>(fileTime >> 32)};
    ORV_SYSTEMTIME t;
    TIME_FileTimeToSystemTime(&time, &t);
    if (!withTime) return ORVustring::printf("%d/%d/%d", t.wMonth, t.wDay, t.wYear);
    return ORVustring::printf("%d/%d/%d-%d:%d:%d", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond);
}

const char* NextCharacter(const char* at) {
    do ++at;
    while ((static_cast<unsigned char>(*at) & 0xC0u) == 0x80);
    return at;
}

void ListRecursively(ListMgr<ORVustring>& out, const ORVustring& dir, std::uint32_t flags) {
    ListMgr<ORVustring> folders;
    ListFolder(folders, dir, {.m_flags = eListDirectories, .m_links = FolderLinks::kLeftOut});
    for (std::uint32_t i = 0; i < folders.Count(); ++i) {
        if (!folders[i]->empty()) ListRecursively(out, JoinPath(dir, *folders[i]), eListFiles | eListFullPaths);
    }
    ListFolder(out, dir, {.m_flags = flags});
}

}  // namespace

bool MatchesPattern(const char* name, const char* pattern) {
    const char* star = nullptr;     // the pattern behind the last '*' met
    const char* covered = nullptr;  // the name up to here is what that '*' stands for
    for (;;) {
        if (*pattern == '*') {
            star = ++pattern;
            covered = name;
        } else if (*name == '\0') {
            return *pattern == '\0' || std::strcmp(pattern, ".*") == 0;
        } else if (*pattern == '?') {
            ++pattern;
            name = NextCharacter(name);
        } else if (*pattern == *name) {
            ++pattern;
            ++name;
        } else if (star) {
            pattern = star;
            name = ++covered;
        } else {
            return false;
        }
    }
}

void ListFolder(ListMgr<ORVustring>& out, const ORVustring& dir, const ListChoice& choice) {
    platform::DirectoryReader reader(dir.c_str());
    platform::DirectoryEntry entry;
    while (reader.Next(entry)) {
        if (!IsWanted(entry.m_status, choice) || IsExcluded(entry.m_name, choice)) continue;
        if (!MatchesPattern(entry.m_name, choice.m_pattern)) continue;
        AddText(out, (choice.m_flags & eListFullPaths) != 0 ? JoinPath(dir, entry.m_name) : ORVustring(entry.m_name));
        if (choice.m_dates) AddText(*choice.m_dates, DateText(entry.m_status.m_written, choice.m_withTime));
    }
}

void FileList(ListMgr<ORVustring>& out, const ORVustring& dir) { FileList(out, dir, ORVustring()); }

void FileList(ListMgr<ORVustring>& out, const ORVustring& dir, const ORVustring& pattern) {
    FileList(out, dir, pattern, ORVustring(), nullptr, eListFiles, nullptr);
}

bool FileList(ListMgr<ORVustring>& out, const ORVustring& dir, const ORVustring& pattern, const ORVustring& exclude,
              ListMgr<ORVustring>* dates, std::uint32_t flags, bool* withTime) {
    if (!GetFileMgr()) return false;
    ORVustring suffix("*");
    suffix += pattern;
    ListFolder(out, dir,
               {.m_flags = flags,
                .m_pattern = suffix.c_str(),
                .m_exclude = exclude.c_str(),
                .m_dates = dates,
                .m_withTime = withTime && *withTime});
    return out.Count() != 0;
}

bool FileListRecursive(ListMgr<ORVustring>& out, const ORVustring& dir, std::uint32_t flags) {
    if (!GetFileMgr()) return false;
    ListRecursively(out, dir, flags);
    return out.Count() != 0;
}

bool AreFilesInDir(const ORVustring& dir, ListMgr<ORVustring>& names) {
    if (!GetFileMgr()) return false;
    for (std::uint32_t i = names.Count(); i-- > 0;) {
        if (!names[i] || !FileExists(JoinPath(dir, *names[i]))) return false;
    }
    return true;
}

}  // namespace dorvutil
