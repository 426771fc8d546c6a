#include "dorvutil/messaging/flat_signature.h"

#include "dorvutil/storage/file_handle.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kMagicAt = 4;
constexpr std::uint32_t kVersionAt = 8;
constexpr std::uint32_t kNumberAt = 10;
constexpr std::uint32_t kNumber = 8;

void Store(unsigned char* bytes, std::uint32_t value, std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i) bytes[i] = static_cast<unsigned char>(value >> (8 * i));
}

std::uint32_t Load(const unsigned char* bytes, std::uint32_t count) {
    std::uint32_t value = 0;
    for (std::uint32_t i = 0; i < count; ++i) value |= std::uint32_t{bytes[i]} << (8 * i);
    return value;
}

}  // namespace

bool CFlatSignature::Write(COrvFileHandleBase* file) const {
    unsigned char record[kBytes] = {};
    Store(record + kMagicAt, m_magic, 4);
    Store(record + kVersionAt, m_version, 2);
    Store(record + kNumberAt, kNumber, 2);
    return file && file->Write(record, kBytes, 1) == kBytes;
}

bool CFlatSignature::Check(COrvFileHandleBase* file) const {
    unsigned char record[kBytes];
    return file && file->Read(record, kBytes, 1) == kBytes && Load(record + kMagicAt, 4) == m_magic &&
           Load(record + kVersionAt, 2) == m_version;
}

}  // namespace dorvutil
