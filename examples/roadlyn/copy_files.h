#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dorvutil/messaging/progress.h"

namespace roadlyn {

/// Bytes of a block; the dialog makes a step for each, and one at the end of each file.
inline constexpr std::uint32_t kCopyBlock = 256 * 1024;

struct CopyItem {
    std::string from;
    std::string to;
    std::uint64_t bytes;
};

/// What a copy is going to do.
struct CopyPlan {
    std::vector<std::string> folders;  ///< To be created, outer ones first; each ends in a separator.
    std::vector<CopyItem> files;
    std::uint64_t bytes = 0;
    std::uint32_t skipped = 0;  ///< Links to folders, and what is neither file nor folder.
};

/// Looks at the source: a file or, with `tree`, a folder with all that is in it. A file goes into `target` when that is
/// a folder; the content of a folder goes into the folder `target`. Throws InputError when that cannot be.
CopyPlan PlanCopy(const std::string& source, const std::string& target, bool tree);

/// Steps that the dialog will make for a file of so many bytes.
constexpr std::uint64_t CopySteps(std::uint64_t bytes) { return (bytes + kCopyBlock - 1) / kCopyBlock + 1; }

struct CopyResult {
    std::uint32_t files = 0;  ///< Copied whole.
    bool cancelled = false;
    std::string incomplete;  ///< The target that the cancellation left unfinished; empty when it came between two.
};

/// Copies with the library; targets that exist are replaced. Throws InputError for what cannot be read or written: what
/// is complete by then stays, the unfinished target goes. Cancelled through the dialog, the unfinished target stays.
CopyResult RunCopy(const CopyPlan& plan, dorvutil::CB_Dialog& dialog);

}  // namespace roadlyn
