#include "dorvutil/logging/file_logger.h"
#include "dorvutil/logging/log.h"
#include "dorvutil/storage/folders.h"

namespace dorvutil {

bool Log_SetLoggingDirectory(const char* directory) { return SetLoggingDirectory(directory); }

void FileLogger::GetLoggingDirectory(char* buffer, std::int32_t size) { dorvutil::GetLoggingDirectory(buffer, size); }

}  // namespace dorvutil
