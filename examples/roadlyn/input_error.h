#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace roadlyn {

/// What is wrong with an input: "file:line: reason", or "file: reason" where no line is to blame (line 0).
class InputError : public std::runtime_error {
public:
    InputError(const std::string& file, std::size_t line, const std::string& reason)
        : std::runtime_error(line == 0 ? file + ": " + reason : file + ":" + std::to_string(line) + ": " + reason) {}
};

}  // namespace roadlyn
