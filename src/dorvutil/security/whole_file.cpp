#include "dorvutil/security/whole_file.h"

namespace dorvutil {

std::uint8_t* WholeFile::Read(const ORVustring& fileName, std::uint32_t& length) {
    length = 0;
    const OpenFile file = OpenForReading(fileName);
    const std::uint32_t size = file ? LengthOf(*file) : 0;
    if (size == 0) return nullptr;
    auto* const content = static_cast<std::uint8_t*>(Mem_Malloc(size));
    if (!content) return nullptr;
    if (FileRead(file.get(), content, size) != size) {
        const SecretBlock dropped(content, size);
        return nullptr;
    }
    length = size;
    return content;
}

}  // namespace dorvutil
