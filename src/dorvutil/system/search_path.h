#pragma once

#include <cstddef>
#include <initializer_list>

namespace dorvutil {

/// Where symbols are looked for, each place followed by ";": the user's own places, the current folder, that of the
/// program, and what the environment names. A place that does not fit any more is left out. Safe in a fault handler.
class SearchPath {
public:
    /// `userPath` may be null.
    explicit SearchPath(const char* userPath);

    const char* Text() const { return m_text; }

private:
    static constexpr std::size_t kRoom = 4000;  // bytes, without the last ";"

    void AddPlace(std::initializer_list<const char*> parts);
    void AddVariable(const char* name, const char* rest = "");

    std::size_t m_size = 0;
    char m_text[kRoom + 2];
};

}  // namespace dorvutil
