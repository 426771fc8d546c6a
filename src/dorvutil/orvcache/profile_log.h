#pragma once

namespace dorvutil {

/// Where the lines of the profile go, one call for each.
using ProfileSink = void (*)(const char* line);

/// Publishes a line of the profile at level 4 in category 5.
void PublishProfileLine(const char* line);

/// Sends the lines to `sink` instead of the log, null: to the log again (tests only). Returns the sink before.
ProfileSink ReplaceProfileSink(ProfileSink sink);

}  // namespace dorvutil
