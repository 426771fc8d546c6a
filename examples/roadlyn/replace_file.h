#pragma once

#include <string>
#include <string_view>

namespace roadlyn {

/// Makes `text` the content of the file in one step: a reader, or a crash, meets the old content or the new one.
/// Creates missing folders; a file that exists keeps its permissions, and a link to it stays. Throws InputError when it
/// cannot be written; it is unchanged then and nothing is left beside it.
void ReplaceFile(const std::string& path, std::string_view text);

/// The same for a file that must not exist yet, not even as a link: throws InputError when it does.
void CreateWholeFile(const std::string& path, std::string_view text);

}  // namespace roadlyn
