#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Settings as text files of key=value lines, straight into and out of a plain structure of the caller. A table of rows
/// describes one section of a file: for each key, where in the structure its value lives and how it is encoded. Wide
/// tables describe the same in UTF-16 (little-endian, no byte-order mark).
///
///     static const FileParseCode kTable[] = {{"[Cfg]", 0, 0, 5, kFpcBegin},
///                                            {"Name", offsetof(Settings, m_name), 16, 4, kFpcText},
///                                            {"Count", offsetof(Settings, m_count), 4, 5, kFpcInteger},
///                                            {"[End]", 0, 0, 5, kFpcEnd}};
///
/// A line break (CR LF) inside a text value stands as "||" in the file. Tables and structures are the caller's; nothing
/// is kept. Different threads may use different structures and handles.
namespace dorvutil {

class COrvFileHandleBase;

/// What a row means; any other kind: no value, an empty line.
inline constexpr std::int8_t kFpcBegin = 1;        ///< Opens the section: "key=section name".
inline constexpr std::int8_t kFpcEnd = 2;          ///< Closes it: "key". The last row of every table.
inline constexpr std::int8_t kFpcText = 3;         ///< Narrow text, of the size of the field at most.
inline constexpr std::int8_t kFpcNone = 4;         ///< In narrow tables: no value.
inline constexpr std::int8_t kFpcWideText = 4;     ///< In wide tables: UTF-16 text, aligned.
inline constexpr std::int8_t kFpcInteger = 5;      ///< 1 to 4 bytes, little-endian.
inline constexpr std::int8_t kFpcSecondBegin = 6;  ///< In wide tables: written like kFpcBegin, ignored when reading.

template <class C>
struct TFileParseCode {
    const C* m_key = nullptr;
    std::uint32_t m_offset = 0;    ///< Of the value, in bytes from the start of the structure.
    std::uint32_t m_size = 0;      ///< Of the value, in bytes.
    std::uint8_t m_keyLength = 0;  ///< Characters of the key: the value starts after one more.
    std::int8_t m_kind = kFpcEnd;

    bool operator==(const TFileParseCode&) const { return false; }  ///< Rows are never equal.
};
using FileParseCode = TFileParseCode<char>;
using FileParseCodeW = TFileParseCode<char16_t>;

/// The first row whose key is exactly `key`, the end row included; null when there is none or the key is null or empty.
DORVUTIL_API FileParseCode* FPC_Find(const FileParseCode* table, const char* key);
DORVUTIL_API FileParseCodeW* FPC_FindW(const FileParseCodeW* table, const char16_t* key);

/// Takes one line apart, of which the first 511 characters count: returns the row of its key, or null. Unless that is
/// the end row or `value` is null, stores the value, "||" of texts turned into CR LF and line ends cut off, and for an
/// integer its number (32 bits, limited; 0 when there is none) when `number` is not null. `value` has room for 512
/// characters.
DORVUTIL_API FileParseCode* FPC_DecodeStr(const FileParseCode* table, const char* line, char* value,
                                          std::int32_t* number);
/// Likewise, into exactly `valueSize` characters: the value is cut to that many, and zeros follow a shorter one.
DORVUTIL_API FileParseCodeW* FPC_DecodeStrW(const FileParseCodeW* table, const char16_t* line, char16_t* value,
                                            std::uint32_t valueSize, std::int32_t* number);

/// Reads lines of at most 511 characters from the handle until the section is complete: true. False when the file ends
/// before that, on a second begin row, on an end row, text or integer outside the section, and for a null target or
/// handle or without a file manager; what was read until then stays. Lines without a known key are skipped. A text
/// field is filled with zeros after the value, and one that the value fills has no terminator; of an integer the low
/// bytes are stored. A narrow field of a wide table takes whole characters of UTF-8, and a terminator when that fits.
DORVUTIL_API bool FPC_ParseFile(const FileParseCode* table, COrvFileHandleBase* file, void* target);
DORVUTIL_API bool FPC_ParseFileW(const FileParseCodeW* table, COrvFileHandleBase* file, void* target);

/// Writes one row, without line end but terminated, and returns its number of characters. `out` has room for the key,
/// the section name or the value (a number takes up to 11), and two more characters. Text fields are changed: CR LF
/// becomes "||". A null section name counts as empty. 0 for a null row, source or `out`.
DORVUTIL_API std::int32_t FPC_EncodeStr(const FileParseCode* row, void* source, const char* sectionName, char* out);
/// Likewise, at most `outSize` characters, terminated when there is room. Of a narrow text 255 characters at most.
DORVUTIL_API std::int32_t FPC_EncodeStrW(const FileParseCodeW* row, void* source, const char16_t* sectionName,
                                         char16_t* out, std::uint32_t outSize);

/// Writes all rows as lines ended by CR LF, with a single call of the handle's Write. False only for a null source (or
/// table): true when nothing could be written because memory ran out or there is no handle or file manager.
DORVUTIL_API bool FPC_SaveFile(const FileParseCode* table, COrvFileHandleBase* file, void* source,
                               const char* sectionName);
DORVUTIL_API bool FPC_SaveFileW(const FileParseCodeW* table, COrvFileHandleBase* file, void* source,
                                const char16_t* sectionName);

/// The same lines into a buffer of `outSize` characters, and one empty line at the end; returns the length. Lines that
/// do not fit with a terminator are left out; a line of a wide table is cut to 511 characters. 0 for a null source,
/// table or `out`.
DORVUTIL_API std::int32_t FPC_AddToBuffer(const FileParseCode* table, void* source, const char* sectionName, char* out,
                                          std::int32_t outSize);
DORVUTIL_API std::int32_t FPC_AddToBufferW(const FileParseCodeW* table, void* source, const char16_t* sectionName,
                                           char16_t* out, std::int32_t outSize);

}  // namespace dorvutil
