#pragma once

#include <cstdio>
#include <exception>
#include <iostream>

namespace roadlyn {

/// Does the work of a command and answers its exit code: 0; 2 for input that it refuses, with the reason on standard
/// error; 1 when standard output does not take the result.
template <class Work>
int RunCommand(Work work) {
    try {
        work();
    } catch (const std::exception& error) {
        std::cout.flush();
        std::cerr << "roadlyn: " << error.what() << '\n';
        return 2;
    }
    return std::cout.flush().good() && std::fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace roadlyn
