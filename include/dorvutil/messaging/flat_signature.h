#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

class CB_Dialog;
class COrvFileHandleBase;

/// A record of 12 bytes that tells what follows it in a file: 4 bytes that readers ignore (written as 0), the magic,
/// the version (16 bits) and the number 8 (16 bits, ignored by readers), all little-endian.
class DORVUTIL_API CFlatSignature {
public:
    static constexpr std::uint32_t kBytes = 12;

    constexpr CFlatSignature(std::uint32_t magic, std::uint16_t version) : m_magic(magic), m_version(version) {}

    /// Writes the record in one piece; false when that failed or there is no file.
    bool Write(COrvFileHandleBase* file) const;
    /// Reads a record: whether it is whole and of this magic and version.
    bool Check(COrvFileHandleBase* file) const;

private:
    std::uint32_t m_magic;
    std::uint16_t m_version;
};

/// The signature of the flattened form of a T.
template <class T>
class TFlatSignature;

template <>
class TFlatSignature<CB_Dialog> : public CFlatSignature {
public:
    constexpr TFlatSignature() : CFlatSignature(0xBBF63DBCu, 3) {}
};

inline constexpr TFlatSignature<CB_Dialog> CB_Dialog_Sig;

}  // namespace dorvutil
