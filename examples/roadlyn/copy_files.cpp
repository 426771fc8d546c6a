#include "copy_files.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>

#include "dorvutil/storage/file_api.h"
#include "dorvutil/storage/file_copy.h"
#include "dorvutil/storage/file_list.h"
#include "dorvutil/storage/file_system.h"
#include "input_error.h"

namespace roadlyn {
namespace {

namespace fs = std::filesystem;
using dorvutil::ORVustring;

constexpr std::size_t kMostFolderBytes = 260;  // the library creates no folder of a longer path
constexpr std::size_t kMostDepth = 200;        // of folders in folders

ORVustring Text(const std::string& path) { return ORVustring(path.data(), static_cast<std::int32_t>(path.size())); }

// The system's form of a path that the library takes with either separator.
fs::path Native(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

std::string Joined(const std::string& folder, const std::string& name) {
    return folder.ends_with('/') || folder.ends_with('\\') ? folder + name : folder + '/' + name;
}

[[noreturn]] void Fail(const std::string& path, const std::string& reason) { throw InputError(path, 0, reason); }

bool IsSame(const std::string& a, const std::string& b) {
    std::error_code ignored;
    return fs::equivalent(Native(a), Native(b), ignored);
}

// A name that the library spells in its own way, for bytes that are not text, is unknown to the system under it. The
// library has found it, and it counts as what the library takes it for.
bool IsOddFile(const std::string& path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(Native(path), ignored);
    return fs::exists(status) && !fs::is_regular_file(status);
}

bool IsLink(const std::string& path) {
    std::error_code ignored;
    return fs::is_symlink(Native(path), ignored);
}

std::uint64_t SizeOf(const std::string& path) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(Native(path), error);
    return error ? static_cast<std::uint32_t>(dorvutil::FileLength(Text(path))) : size;
}

std::vector<std::string> Names(const std::string& folder, std::uint32_t flags) {
    dorvutil::ListMgr<ORVustring> list;
    dorvutil::FileList(list, Text(folder), ORVustring(), ORVustring(), nullptr, flags, nullptr);
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < list.Count(); ++i) names.emplace_back(list[i]->c_str());
    std::sort(names.begin(), names.end());
    return names;
}

void AddFile(CopyPlan& plan, const std::string& from, const std::string& to) {
    plan.files.push_back({from, to, SizeOf(from)});
    plan.bytes += plan.files.back().bytes;
}

void AddFolder(CopyPlan& plan, const std::string& from, const std::string& to, std::size_t depth) {
    if (depth > kMostDepth) Fail(from, "folders lie too deep in each other");
    if (::access(Native(from).c_str(), R_OK | X_OK) != 0 && errno == EACCES) Fail(from, "cannot be read");
    plan.folders.push_back(Joined(to, ""));
    if (plan.folders.back().size() > kMostFolderBytes) Fail(to, "path longer than 260 bytes");
    for (const std::string& name : Names(from, dorvutil::eListAllFiles)) {
        const std::string path = Joined(from, name);
        if (IsOddFile(path))
            ++plan.skipped;
        else
            AddFile(plan, path, Joined(to, name));
    }
    for (const std::string& name : Names(from, dorvutil::eListDirectories)) {
        const std::string path = Joined(from, name);
        if (IsLink(path))
            ++plan.skipped;
        else
            AddFolder(plan, path, Joined(to, name), depth + 1);
    }
}

bool LiesInside(const std::string& inner, const std::string& outer) {
    const fs::path in = fs::weakly_canonical(Native(inner));
    const fs::path out = fs::weakly_canonical(Native(outer));
    const auto end = out.filename().empty() ? std::prev(out.end()) : out.end();
    return std::mismatch(out.begin(), end, in.begin(), in.end()).first == end;
}

CopyPlan PlanTree(const std::string& source, const std::string& target) {
    if (!dorvutil::FileDoesDirExist(Text(source))) Fail(source, "is no folder");
    if (dorvutil::FileExists(Text(target))) Fail(target, "is no folder");
    if (LiesInside(target, source)) Fail(target, "lies inside the folder to be copied");
    CopyPlan plan;
    AddFolder(plan, source, target, 0);
    return plan;
}

CopyPlan PlanFile(const std::string& source, const std::string& target) {
    if (dorvutil::FileDoesDirExist(Text(source))) Fail(source, "is a folder; --dir copies folders");
    if (IsOddFile(source)) Fail(source, "is no regular file");
    std::string to = target;
    if (dorvutil::FileDoesDirExist(Text(target))) to = Joined(target, Native(source).filename().string());
    if (to.ends_with('/') || to.ends_with('\\') || dorvutil::FileDoesDirExist(Text(to))) Fail(to, "is no file name");
    if (IsSame(source, to)) Fail(to, "is the file to be copied itself");
    CopyPlan plan;
    AddFile(plan, source, to);
    return plan;
}

void CreateFolder(const std::string& folder) {
    if (!dorvutil::FileDoesDirExist(Text(folder)) && !dorvutil::FileCreateDir(Text(folder))) {
        Fail(folder, "this folder cannot be created");
    }
}

// The library would remove an old target before it finds out.
void CheckReadable(const std::string& path) {
    errno = 0;
    dorvutil::COrvFileHandleBase* file = dorvutil::FileOpen(Text(path), dorvutil::eAccessRead, dorvutil::eBinary);
    const int reason = errno;
    if (file == nullptr) Fail(path, "cannot be read: " + std::generic_category().message(reason));
    dorvutil::FileClose(file);
}

// The library says only that it failed; the system shows why.
[[noreturn]] void FailToCopy(const CopyItem& item) {
    const fs::path target = Native(item.to);
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    std::error_code error;
    if (fs::is_regular_file(target, error)) dorvutil::FileErase(Text(item.to));
    std::string reason = "reading " + item.from + " or writing failed";
    if (::access((folder / ".").c_str(), W_OK) != 0) {
        reason = std::generic_category().message(errno);
    } else if (const fs::space_info space = fs::space(folder, error); !error && space.available < item.bytes) {
        reason = "not enough space";
    }
    Fail(item.to, "cannot be written: " + reason);
}

int NumSteps(const CopyPlan& plan) {
    std::uint64_t steps = 0;
    for (const CopyItem& item : plan.files) steps += CopySteps(item.bytes);
    return static_cast<int>(std::min<std::uint64_t>(steps, std::numeric_limits<int>::max()));
}

}  // namespace

CopyPlan PlanCopy(const std::string& source, const std::string& target, bool tree) {
    if (!dorvutil::FileExists(Text(source)) && !dorvutil::FileDoesDirExist(Text(source)))
        Fail(source, "does not exist");
    if (target.empty()) throw InputError("DST", 0, "is empty");
    return tree ? PlanTree(source, target) : PlanFile(source, target);
}

CopyResult RunCopy(const CopyPlan& plan, dorvutil::CB_Dialog& dialog) {
    CopyResult result;
    dialog.SetNumSteps(NumSteps(plan));
    for (const std::string& folder : plan.folders) CreateFolder(folder);
    for (const CopyItem& item : plan.files) {
        result.cancelled = dialog.Is_Cancelled();
        if (result.cancelled) return result;
        CheckReadable(item.from);
        const std::int32_t copied =
            dorvutil::FileCopySetBufSize(Text(item.from), Text(item.to), true, kCopyBlock, &dialog);
        if (copied == dorvutil::eFileCopyFailed) FailToCopy(item);
        result.cancelled = copied == dorvutil::eFileCopyCancelled;
        if (result.cancelled) {
            result.incomplete = item.to;
            return result;
        }
        ++result.files;
    }
    dialog.Close();
    return result;
}

}  // namespace roadlyn
