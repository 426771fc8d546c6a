#include "dorvutil/storage/file_system.h"

#include "dorvutil/frame/accessors.h"
#include "dorvutil/platform/directory.h"
#include "dorvutil/storage/file_api.h"
#include "dorvutil/storage/file_copy.h"
#include "dorvutil/storage/file_list.h"
#include "dorvutil/storage/file_list_core.h"
#include "dorvutil/storage/file_name.h"
#include "dorvutil/storage/path_parts.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kMostFolderBytes = 260;

bool GetStatus(const ORVustring& path, platform::FileStatus& status) {
    return GetFileMgr() && platform::GetFileStatus(path.c_str(), status);
}

// Cut between characters.
void CutTo(ORVustring& text, std::uint32_t most) {
    if (text.length() <= most) return;
    auto end = static_cast<std::int32_t>(most);
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80) --end;
    text = text.substr(0, end);
}

// A file can be moved between volumes only by copying.
bool MoveToOtherVolume(const ORVustring& from, const ORVustring& to) {
    platform::FileStatus status;
    if (!FileExists(from) || GetStatus(to, status)) return false;
    if (FileCopy(from, to, false, nullptr) == eFileCopyDone && platform::RemoveFile(from.c_str(), false)) return true;
    platform::RemoveFile(to.c_str(), false);
    return false;
}

void DeleteMatching(const ORVustring& dir, const char* pattern, bool recurse, bool& lastDeleted) {
    ListMgr<ORVustring> names;
    ListFolder(names, dir,
               {.m_flags = eListAllFiles | eListFullPaths, .m_pattern = pattern, .m_links = FolderLinks::kAsFiles});
    for (std::uint32_t i = 0; i < names.Count(); ++i) lastDeleted = platform::RemoveFile(names[i]->c_str(), true);
    if (!recurse) return;
    names.Flush();
    ListFolder(names, dir,
               {.m_flags = eListDirectories | eListFullPaths, .m_pattern = pattern, .m_links = FolderLinks::kLeftOut});
    for (std::uint32_t i = 0; i < names.Count(); ++i) {
        DeleteMatching(*names[i], pattern, true, lastDeleted);
        platform::RemoveFolder(names[i]->c_str());
    }
}

}  // namespace

bool FileExists(const ORVustring& path) {
    platform::FileStatus status;
    return GetStatus(path, status) && !status.m_directory;
}

bool FileExists(const OrvFileName& name) { return FileExists(name.GetFullPath(true)); }

bool FileDoesDirExist(const ORVustring& path) {
    platform::FileStatus status;
    return GetStatus(path, status) && status.m_directory;
}

bool FileErase(const ORVustring& path) { return GetFileMgr() && platform::RemoveFile(path.c_str(), false); }

bool FileErase(const OrvFileName& name) { return FileErase(name.GetFullPath(true)); }

std::int32_t FileMove(const ORVustring& from, const ORVustring& to) {
    if (!GetFileMgr()) return 0;
    const platform::MoveResult result = platform::MovePath(from.c_str(), to.c_str());
    if (result == platform::MoveResult::kOtherVolume) return MoveToOtherVolume(from, to) ? 1 : 0;
    return result == platform::MoveResult::kDone ? 1 : 0;
}

std::int32_t FileLength(const ORVustring& path) {
    platform::FileStatus status;
    return GetStatus(path, status) ? static_cast<std::int32_t>(static_cast<std::uint32_t>(status.m_size)) : 0;
}

bool FileEnsureExistence(const ORVustring& path) {
    if (FileExists(path)) return true;
    COrvFileHandleBase* handle = FileOpen(path, eAccessWrite, eBinary);
    return FileClose(handle);
}

bool FileEnsureExistence(const OrvFileName& name) { return FileEnsureExistence(name.GetFullPath(true)); }

bool FileCreateDir(const ORVustring& path) {
    if (!GetFileMgr()) return false;
    ORVustring folder = path.strip();
    CutTo(folder, kMostFolderBytes);
    if (folder.empty()) return false;
    folder.appendSlash();
    const auto length = static_cast<std::int32_t>(folder.length());
    for (std::int32_t i = 1; i < length; ++i) {
        if (!IsSeparator(folder[i]) || folder[i - 1] == ':') continue;
        const ORVustring above = folder.substr(0, i);
        if (!FileDoesDirExist(above)) platform::CreateFolder(above.c_str());
    }
    return FileDoesDirExist(folder);
}

bool FileRemoveDir(const ORVustring& dir, bool emptyFirst, bool recurse) {
    if (!GetFileMgr()) return false;
    if (emptyFirst) FileDeleteMultipleFiles(dir, "*", recurse);
    return platform::RemoveFolder(dir.c_str());
}

bool FileDeleteMultipleFiles(const ORVustring& dir, const ORVustring& pattern, bool recurse) {
    bool lastDeleted = false;
    // Not even the current folder is meant by an empty name here.
    if (GetFileMgr() && !dir.empty()) DeleteMatching(dir, pattern.c_str(), recurse, lastDeleted);
    return lastDeleted;
}

std::int32_t FileAttributes(const ORVustring&) { return -1; }

}  // namespace dorvutil
