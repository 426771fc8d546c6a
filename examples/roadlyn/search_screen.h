#pragma once

#include "host_session.h"

namespace roadlyn {

/// The full-screen search: runs until the user leaves it, and leaves the terminal as it was. Throws std::runtime_error
/// when the data cannot be loaded or the terminal cannot be used.
void RunSearchScreen(SessionOptions options);

}  // namespace roadlyn
