#pragma once

#include <cstdarg>

namespace dorvutil {

/// The arguments of a formatted print, passed on explicitly: the address of the caller's list, which the print uses up.
/// Null once that has happened.
struct OrvPrintArgs {
    std::va_list* m_list;
};

}  // namespace dorvutil
