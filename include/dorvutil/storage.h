#pragma once

/// Storage: the one file-handle interface over disk files and memory.
#include "dorvutil/storage/file_handle.h"
#include "dorvutil/storage/file_mgr.h"
#include "dorvutil/storage/memory_handle.h"
#include "dorvutil/storage/stdio_handle.h"
