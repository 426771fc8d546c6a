#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "choice.h"

namespace roadlyn {

/// The latest choices of the user, newest first, in a small tab-separated file.
inline constexpr std::size_t kMaxRecentChoices = 50;

/// Reads the file; one that does not exist gives no choices. Throws InputError when it is damaged.
std::vector<Choice> ReadRecentFile(const std::string& path);

/// Puts `choice` in front of the file's choices (once) and writes them, at most kMaxRecentChoices. The file is replaced
/// in one step: a reader, or a crash, meets the old content or the new one. Creates missing folders. Throws InputError
/// when the file is damaged or cannot be written; it is unchanged then.
void RememberChoice(const std::string& path, const Choice& choice);

/// One line of the file, without its end, and back. ParseChoice throws InputError for a line that FormatChoice did not
/// make.
std::string FormatChoice(const Choice& choice);
Choice ParseChoice(const std::string& line);

/// Where the choices are kept unless the user says otherwise: below $XDG_STATE_HOME or ~/.local/state. Empty when
/// neither is known.
std::string DefaultRecentPath();

}  // namespace roadlyn
