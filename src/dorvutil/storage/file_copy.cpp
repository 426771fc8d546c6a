#include "dorvutil/storage/file_copy.h"

#include <memory>
#include <new>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/platform/file.h"
#include "dorvutil/storage/copy_progress.h"
#include "dorvutil/storage/file_api.h"
#include "dorvutil/storage/file_list.h"
#include "dorvutil/storage/file_list_core.h"
#include "dorvutil/storage/file_system.h"
#include "dorvutil/storage/path_parts.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kBlockSize = 8192;     // bytes
constexpr std::uint32_t kBlocksPerStep = 100;  // of FileCopy

struct CopyPace {
    std::uint32_t m_blockSize;
    std::uint32_t m_blocksPerStep;
    CB_Dialog* m_dialog;
};

void StepAsIfCopied(std::uint32_t size, CB_Dialog* dialog) {
    const std::uint32_t blocks = size / kBlockSize + (size % kBlockSize != 0 ? 1 : 0);
    for (std::uint32_t i = 0; i < blocks / kBlocksPerStep; ++i) StepCopyProgress(dialog);
    StepCopyProgress(dialog);
}

// `size` is what the source had at the start (low 32 bits): less means that a read failed.
eFileCopyResult CopyBlocks(COrvFileHandleBase* source, COrvFileHandleBase* target, std::uint32_t size,
                           const CopyPace& pace) {
    const std::unique_ptr<unsigned char[]> block(new (std::nothrow) unsigned char[pace.m_blockSize]);
    if (!block) return eFileCopyFailed;
    std::uint64_t copied = 0;
    for (std::uint32_t blocks = 1;; ++blocks) {
        const std::uint32_t got = FileRead(source, block.get(), pace.m_blockSize);
        if (got == 0) break;
        if (FileWrite(target, block.get(), got) != got) return eFileCopyFailed;
        copied += got;
        if (blocks % pace.m_blocksPerStep == 0) StepCopyProgress(pace.m_dialog);
        if (IsCopyCancelled(pace.m_dialog)) return eFileCopyCancelled;
    }
    StepCopyProgress(pace.m_dialog);
    return copied >= size ? eFileCopyDone : eFileCopyFailed;
}

std::int32_t Copy(const ORVustring& from, const ORVustring& to, bool force, const CopyPace& pace) {
    if (!GetFileMgr()) return eFileCopyFailed;
    std::uint32_t size = 0;
    if (!FileCopyPreCheck(from, to, &size, force)) {
        StepAsIfCopied(size, pace.m_dialog);
        return eFileCopyDone;
    }
    COrvFileHandleBase* source = FileOpen(from, eAccessRead, eBinary);
    if (!source) return eFileCopyFailed;
    COrvFileHandleBase* target = FileOpen(to, eAccessWrite, eBinary);
    const eFileCopyResult result = target ? CopyBlocks(source, target, size, pace) : eFileCopyFailed;
    FileClose(source);
    // The last bytes may only now have met a full disk.
    const bool closed = FileClose(target);
    return closed || result == eFileCopyCancelled ? result : eFileCopyFailed;
}

// `top` is the target of the whole copy, which must not be copied into itself.
bool CopyFolder(const ORVustring& from, const ORVustring& to, const ORVustring& top, bool force, bool createTarget) {
    bool done = !createTarget || FileCreateDir(to);
    ListMgr<ORVustring> names;
    ListFolder(names, from, {.m_flags = eListDirectories, .m_links = FolderLinks::kLeftOut});
    for (std::uint32_t i = names.Count(); i-- > 0;) {
        const ORVustring folder = JoinPath(from, *names[i]);
        const bool copied = !platform::IsSameFile(folder.c_str(), top.c_str()) &&
                            CopyFolder(folder, JoinPath(to, *names[i]), top, force, createTarget);
        done = copied && done;
    }
    names.Flush();
    ListFolder(names, from, {.m_flags = eListFiles});
    for (std::uint32_t i = names.Count(); i-- > 0;) {
        done = FileCopy(*names[i], from, to, force, nullptr) == eFileCopyDone && done;
    }
    return done;
}

}  // namespace

std::int32_t FileCopy(const ORVustring& from, const ORVustring& to, bool force, CB_Dialog* dialog) {
    return Copy(from, to, force, {kBlockSize, kBlocksPerStep, dialog});
}

std::int32_t FileCopy(const ORVustring& name, const ORVustring& fromDir, const ORVustring& toDir, bool force,
                      CB_Dialog* dialog) {
    return FileCopy(JoinPath(fromDir, name), JoinPath(toDir, name), force, dialog);
}

std::int32_t FileCopySetBufSize(const ORVustring& from, const ORVustring& to, bool force, std::uint32_t blockSize,
                                CB_Dialog* dialog) {
    return Copy(from, to, force, {blockSize != 0 ? blockSize : kBlockSize, 1, dialog});
}

bool FileCopyPreCheck(const ORVustring& from, const ORVustring& to, std::uint32_t* size, bool force) {
    platform::FileStatus source;
    platform::FileStatus target;
    if (size) *size = 0;
    if (!GetFileMgr()) return false;
    const bool hasSource = platform::GetFileStatus(from.c_str(), source) && !source.m_directory;
    const auto sourceSize = static_cast<std::uint32_t>(source.m_size);
    if (size && hasSource) *size = sourceSize;
    if (!platform::GetFileStatus(to.c_str(), target) || target.m_directory || target.m_device || !hasSource)
        return true;
    if (platform::IsSameFile(from.c_str(), to.c_str())) return false;
    if (!force && target.m_size == source.m_size) return false;
    platform::RemoveFile(to.c_str(), false);
    return true;
}

bool FileCopyDir(const ORVustring& from, const ORVustring& to, bool force, bool createTarget) {
    return GetFileMgr() && FileDoesDirExist(from) && CopyFolder(from, to, to, force, createTarget);
}

std::int32_t FileCopyRecursive(const ORVustring& from, const ORVustring& to) {
    ListMgr<ORVustring> files;
    FileListRecursive(files, from, eListFiles | eListFullPaths | eListAllFiles);
    std::int32_t result = 0;
    for (std::uint32_t i = 0; i < files.Count(); ++i) {
        const ORVustring& file = *files[i];
        const std::int32_t nameStart = file.find_last_of(kSeparators) + 1;
        const auto below = static_cast<std::int32_t>(JoinPath(from, ORVustring()).length());
        const ORVustring folder = file.substr(0, nameStart);
        const ORVustring target = JoinPath(to, folder.substr(below));
        if (!FileDoesDirExist(target) && !FileCreateDir(target)) continue;
        result = FileCopy(file.substr(nameStart), folder, target, true, nullptr);
    }
    return result;
}

}  // namespace dorvutil
