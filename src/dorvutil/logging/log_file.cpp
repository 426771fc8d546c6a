#include "dorvutil/logging/log_file.h"

#include "dorvutil/storage/file_api.h"

namespace dorvutil {

std::unique_ptr<COrvFileHandleBase> OpenLogFile(const ORVustring& path, eAccessMode access) {
    return std::unique_ptr<COrvFileHandleBase>(FileOpen(path, access, eText));
}

}  // namespace dorvutil
