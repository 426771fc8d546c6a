#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

namespace dorvutil {

class COrvFileHandleBase;

/// Where a photo was taken and what it is called. The numbers carry no sign: south and west are told by the letters
/// alone. A photo has a position when both letters are there.
struct JpegExifInfo {
    double m_latitude = 0.0;   ///< Degrees.
    double m_longitude = 0.0;  ///< Degrees.
    char m_latitudeRef = 0;    ///< 'N' or 'S', as the file has it; 0 when absent.
    char m_longitudeRef = 0;   ///< 'E' or 'W', as the file has it; 0 when absent.
    ORVustring m_title;        ///< UTF-8; empty when absent.
};

/// Reads the position and the title from the EXIF block of a JPEG file, without reading the picture. Layouts: JPEG
/// (ITU-T T.81, annex B), EXIF 2.3 (JEITA CP-3451C), TIFF 6.0; the title is the tag XPTitle of Windows.
///
/// A file may be damaged or made to harm: no offset or count of it is used before it is checked, and the work grows
/// with its size only. Directories may overlap or lead to each other; in a block of n bytes n entries are looked at and
/// no more, where a title counts as one entry for every 12 of its bytes. A block whose directories lie beside each
/// other has not the room for so many; of any other, what was found until then stands.
///
/// One thread uses a parser at a time; it may parse any number of files.
class DORVUTIL_API CJpegExifParser {
public:
    CJpegExifParser() { Reset(); }
    CJpegExifParser(const CJpegExifParser&) = delete;
    CJpegExifParser& operator=(const CJpegExifParser&) = delete;

    /// Clears `info` and fills in what the file has. 0: success, with or without a position; the end of the file inside
    /// the headers, or an EXIF block that makes no sense, is one too. Failures, with `info` as found until then:
    ///  -2  the file cannot be opened
    ///  -3  it does not begin as a JPEG file does (FF D8)
    ///  -4  seven bytes FF before a marker
    ///  -5  a segment shorter than its own length field
    ///  -6  out of memory
    ///
    /// What is not plain in a damaged block:
    /// - A directory that does not fit its block is not read; one that another leads to takes nothing else with it.
    /// - An entry with fewer bytes than are read of it (three rationals for an angle) is passed over. An angle that is
    ///   no rational ends the reading of its GPS directory.
    /// - Rationals of type 5 are unsigned, those of type 10 signed.
    /// - A title is UTF-16, little-endian in files of both byte orders. It ends at a zero unit or after 21,842
    ///   units; an odd byte at its end is dropped, an unpaired surrogate becomes U+FFFD. It is empty when memory
    ///   runs out.
    /// - Of entries that occur twice the last one counts.
    std::int32_t ParseJpegExif(const ORVustring& path, JpegExifInfo& info);

private:
    struct Entry;

    std::int32_t ReadSegments(JpegExifInfo& info);
    std::int32_t ReadMarker(unsigned char& marker);  // 1, 0 at the end of the file, or a failure
    std::int32_t Read(void* buffer, std::int32_t n);
    std::int32_t SeekForward(std::int32_t n);
    void InitFileBuffer();
    std::int32_t CleanUp(std::int32_t code);
    void Reset();

    // The block: `tiffBase` is its first byte, `length` its size, offsets count from there.
    bool ParseExif(JpegExifInfo& info, const unsigned char* segment, std::uint32_t length);
    bool ProcessExifDir(JpegExifInfo& info, const unsigned char* directory, const unsigned char* tiffBase,
                        std::uint32_t length, std::int32_t depth);
    void ProcessExifEntry(JpegExifInfo& info, const Entry& entry, const unsigned char* tiffBase, std::uint32_t length,
                          std::int32_t depth);
    bool ProcessGPSInfo(JpegExifInfo& info, const unsigned char* directory, const unsigned char* tiffBase,
                        std::uint32_t length);
    bool ReadEntry(Entry& entry, const unsigned char* at, const unsigned char* tiffBase, std::uint32_t length) const;
    bool TakeAngle(double& degrees, const Entry& entry) const;
    double ConvertRational(const unsigned char* bytes, bool isSigned) const;
    std::int32_t ConvertInt(const void* bytes) const;
    std::uint16_t ConvertUShort(const void* bytes) const;
    std::uint32_t ConvertUInt(const void* bytes) const { return static_cast<std::uint32_t>(ConvertInt(bytes)); }
    bool Spend(std::uint32_t entries);

    static constexpr std::int32_t kBufferSize = 1024;

    unsigned char m_buffer[kBufferSize];
    std::int32_t m_position;      // in the buffer; -1: it is not loaded
    std::int32_t m_valid;         // bytes in the buffer
    COrvFileHandleBase* m_file;   // owned; null between calls
    bool m_bigEndian;             // "MM"
    std::uint32_t m_entriesLeft;  // that may still be looked at in this block
};

}  // namespace dorvutil
