#pragma once

#include <cstddef>
#include <cstdio>

namespace dorvutil::platform {

/// The network form ("//server/share/…", bytes, `/` between folders) of an absolute native path, by a list of mounts in
/// the form of /proc/self/mountinfo, which is read and closed. False when the path lies on no network drive or the
/// result, with its end mark, does not fit.
bool NetworkFormOf(const char* path, std::FILE* mounts, char* out, std::size_t size);

}  // namespace dorvutil::platform
