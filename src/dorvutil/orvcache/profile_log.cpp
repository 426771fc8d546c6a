#include "dorvutil/orvcache/profile_log.h"

#include <atomic>

#include "dorvutil/logging/log.h"

namespace dorvutil {
namespace {

constexpr int kProfileCategory = 5;  // publisher

constinit std::atomic<ProfileSink> g_sink{nullptr};

}  // namespace

void PublishProfileLine(const char* line) {
    if (const ProfileSink sink = g_sink.load(std::memory_order_acquire)) return sink(line);
    Log_Publish(kProfileCategory, eLogLevelBrief, "src/dorvutil/orvcache", 0, line);
}

ProfileSink ReplaceProfileSink(ProfileSink sink) { return g_sink.exchange(sink, std::memory_order_acq_rel); }

}  // namespace dorvutil
