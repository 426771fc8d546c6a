#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace roadlyn {

/// What one run of the program did, in "roadlyn.log": its arguments, its result and how long it took. A log that cannot
/// be written is not an error: nothing is written then.
class CommandLog {
public:
    /// Logs the start. `directory`: where the log files of this process lie, created if need be; empty: beside
    /// the executable.
    CommandLog(const std::string& directory, const std::vector<std::string>& arguments);

    /// Logs the end.
    void Finish(int exitCode) const;

private:
    std::int32_t m_publisher = -1;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

}  // namespace roadlyn
