#pragma once

#include <cstdint>
#include <memory>

#include "dorvutil/memory/heap.h"
#include "dorvutil/security/secret_bytes.h"
#include "dorvutil/storage/file_api.h"
#include "dorvutil/text/string.h"

/// Files that are read from the start to the end, through the file manager.
namespace dorvutil {

/// Closes what FileOpen gave.
struct FileCloser {
    void operator()(COrvFileHandleBase* handle) const { FileClose(handle); }
};
using OpenFile = std::unique_ptr<COrvFileHandleBase, FileCloser>;

inline OpenFile OpenForReading(const ORVustring& fileName) {
    return OpenFile(fileName.empty() ? nullptr : FileOpen(fileName, eAccessRead, eBinary));
}

/// The length of an open file that can be told (less than 2 GiB), else 0.
inline std::uint32_t LengthOf(COrvFileHandleBase& file) {
    const std::int32_t length = file.Length();
    return length > 0 ? static_cast<std::uint32_t>(length) : 0;
}

/// The content of a file, cleared when it dies; null and empty when it is not to be had in whole.
class WholeFile {
public:
    explicit WholeFile(const ORVustring& fileName) : m_content{Read(fileName, m_length), m_length} {}
    const std::uint8_t* Data() const { return m_content.Data(); }
    std::uint32_t Length() const { return m_length; }

private:
    static std::uint8_t* Read(const ORVustring& fileName, std::uint32_t& length);

    std::uint32_t m_length = 0;
    SecretBlock m_content;
};

}  // namespace dorvutil
