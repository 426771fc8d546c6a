#pragma once

/// Storage: the one file-handle interface over disk files, buffers and memory, and the file system.
#include "dorvutil/storage/file_api.h"
#include "dorvutil/storage/file_buffer.h"
#include "dorvutil/storage/file_copy.h"
/// Storage: the one file-handle interface over disk files and memory; the budgets of the caches.
#include "dorvutil/orvcache/cache_mgr.h"
#include "dorvutil/storage/file_handle.h"
#include "dorvutil/storage/file_list.h"
#include "dorvutil/storage/file_mgr.h"
#include "dorvutil/storage/file_name.h"
#include "dorvutil/storage/file_system.h"
#include "dorvutil/storage/folders.h"
#include "dorvutil/storage/key_value_file.h"
#include "dorvutil/storage/memory_handle.h"
#include "dorvutil/storage/path_text.h"
#include "dorvutil/storage/stdio_handle.h"
#include "dorvutil/storage/text_file.h"
