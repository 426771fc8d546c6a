#pragma once

#include <memory>

#include "dorvutil/storage/file_handle.h"

namespace dorvutil {

/// Opens a text file through the file manager, unbuffered but for the runtime; null when that fails.
std::unique_ptr<COrvFileHandleBase> OpenLogFile(const ORVustring& path, eAccessMode access);

}  // namespace dorvutil
