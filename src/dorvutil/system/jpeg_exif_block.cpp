// The EXIF block: a TIFF file in a JPEG segment. Everything here checks a place against the block before it reads.
#include <cstring>

#include "dorvutil/frame/byte_order.h"
#include "dorvutil/memory/vector.h"
#include "dorvutil/system/jpeg_exif.h"

namespace dorvutil {
namespace {

constexpr char kIdentifier[] = "Exif\0";  // six bytes with the end mark
constexpr std::uint32_t kIdentifierAt = 2;
constexpr std::uint32_t kBlockAt = kIdentifierAt + sizeof(kIdentifier);
constexpr std::uint32_t kTiffHeaderBytes = 8;
constexpr std::uint16_t kTiffNumber = 42;

constexpr std::int32_t kMostDepth = 4;
constexpr std::uint32_t kCountBytes = 2;
constexpr std::uint32_t kEntryBytes = 12;
constexpr std::uint32_t kOffsetBytes = 4;
constexpr std::uint32_t kValueAt = 8;  // in an entry
constexpr std::uint32_t kInlineBytes = 4;
constexpr std::uint32_t kMostItems = 65536;

constexpr std::uint16_t kExifDirectory = 34665;
constexpr std::uint16_t kGpsDirectory = 34853;
constexpr std::uint16_t kWindowsTitle = 40091;

constexpr std::uint16_t kLatitudeRef = 1;
constexpr std::uint16_t kLatitude = 2;
constexpr std::uint16_t kLongitudeRef = 3;
constexpr std::uint16_t kLongitude = 4;

constexpr std::uint16_t kUnsignedRational = 5;
constexpr std::uint16_t kSignedRational = 10;
constexpr std::uint32_t kRationalBytes = 8;
constexpr std::uint32_t kAngleBytes = 3 * kRationalBytes;

// Bytes of one item by type; 0: there is no such type.
constexpr std::uint8_t kItemBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};

constexpr std::uint32_t kMostTitleUnits = 21842;  // three bytes each: what the longest text holds
constexpr char16_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t unit) { return (unit & 0xFC00u) == 0xD800u; }
bool IsLowSurrogate(char16_t unit) { return (unit & 0xFC00u) == 0xDC00u; }

char16_t UnitAt(const unsigned char* bytes, std::uint32_t i) {
    return static_cast<char16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
}

ORVustring TitleText(const unsigned char* bytes, std::uint32_t size) {
    const std::uint32_t count = size / 2 < kMostTitleUnits ? size / 2 : kMostTitleUnits;
    TVector<char16_t> units;
    if (count == 0 || !units.SetSize(count)) return ORVustring();
    for (std::uint32_t i = 0; i < count && UnitAt(bytes, i) != 0; ++i) {
        const char16_t unit = UnitAt(bytes, i);
        if (IsHighSurrogate(unit) && i + 1 < count && IsLowSurrogate(UnitAt(bytes, i + 1))) {
            units.Add(unit);
            units.Add(UnitAt(bytes, ++i));
        } else {
            units.Add(IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacement : unit);
        }
    }
    return ORVustring(units.Data(), static_cast<std::int32_t>(units.Count()));
}

}  // namespace

struct CJpegExifParser::Entry {
    std::uint16_t tag;
    std::uint16_t type;          // 1 to 12
    std::uint32_t count;         // items of the value
    std::uint32_t size;          // bytes of the value, all within the block
    const unsigned char* value;  // in the entry or elsewhere in the block
};

bool CJpegExifParser::ParseExif(JpegExifInfo& info, const unsigned char* segment, std::uint32_t length) {
    if (length < kBlockAt + kTiffHeaderBytes) return false;
    if (std::memcmp(segment + kIdentifierAt, kIdentifier, sizeof(kIdentifier)) != 0) return false;
    const unsigned char* const base = segment + kBlockAt;
    m_bigEndian = std::memcmp(base, "MM", 2) == 0;
    if (!m_bigEndian && std::memcmp(base, "II", 2) != 0) return false;
    if (ConvertUShort(base + 2) != kTiffNumber) return false;
    const std::uint32_t block = length - kBlockAt;
    const std::uint32_t first = ConvertUInt(base + 4);
    m_entriesLeft = block;
    return first < block && ProcessExifDir(info, base + first, base, block, 0);
}

bool CJpegExifParser::ProcessExifDir(JpegExifInfo& info, const unsigned char* directory, const unsigned char* tiffBase,
                                     std::uint32_t length, std::int32_t depth) {
    const auto room = length - static_cast<std::uint32_t>(directory - tiffBase);
    if (depth > kMostDepth || room < kCountBytes) return false;
    const std::uint32_t count = ConvertUShort(directory);
    const std::uint32_t size = kCountBytes + count * kEntryBytes;
    if (room < size) return false;
    for (std::uint32_t i = 0; i < count && Spend(1); ++i) {
        Entry entry;
        const unsigned char* const at = directory + kCountBytes + i * kEntryBytes;
        if (ReadEntry(entry, at, tiffBase, length)) ProcessExifEntry(info, entry, tiffBase, length, depth);
    }
    if (room - size < kOffsetBytes) return true;
    const std::uint32_t next = ConvertUInt(directory + size);
    if (next != 0 && next < length) ProcessExifDir(info, tiffBase + next, tiffBase, length, depth + 1);
    return true;
}

void CJpegExifParser::ProcessExifEntry(JpegExifInfo& info, const Entry& entry, const unsigned char* tiffBase,
                                       std::uint32_t length, std::int32_t depth) {
    if (entry.tag == kWindowsTitle) {
        if (Spend(entry.size / kEntryBytes)) info.m_title = TitleText(entry.value, entry.size);
        return;
    }
    if (entry.tag != kExifDirectory && entry.tag != kGpsDirectory) return;
    const std::uint32_t offset = ConvertUInt(entry.value);  // a value in the entry has four bytes, used or not
    if (offset >= length) return;
    if (entry.tag == kGpsDirectory) {
        ProcessGPSInfo(info, tiffBase + offset, tiffBase, length);
    } else {
        ProcessExifDir(info, tiffBase + offset, tiffBase, length, depth + 1);
    }
}

bool CJpegExifParser::ProcessGPSInfo(JpegExifInfo& info, const unsigned char* directory, const unsigned char* tiffBase,
                                     std::uint32_t length) {
    const auto room = length - static_cast<std::uint32_t>(directory - tiffBase);
    if (room < kCountBytes) return false;
    const std::uint32_t count = ConvertUShort(directory);
    for (std::uint32_t i = 0; i < count && room - kCountBytes >= (i + 1) * kEntryBytes && Spend(1); ++i) {
        Entry entry;
        const unsigned char* const at = directory + kCountBytes + i * kEntryBytes;
        if (!ReadEntry(entry, at, tiffBase, length)) continue;
        const bool isLatitude = entry.tag == kLatitudeRef || entry.tag == kLatitude;
        if (entry.tag == kLatitudeRef || entry.tag == kLongitudeRef) {
            char& letter = isLatitude ? info.m_latitudeRef : info.m_longitudeRef;
            if (entry.size != 0) letter = static_cast<char>(*entry.value);
        } else if (entry.tag == kLatitude || entry.tag == kLongitude) {
            if (!TakeAngle(isLatitude ? info.m_latitude : info.m_longitude, entry)) return false;
        }
    }
    return true;
}

// False for a type that there is not, and for a value that is not all within the block.
bool CJpegExifParser::ReadEntry(Entry& entry, const unsigned char* at, const unsigned char* tiffBase,
                                std::uint32_t length) const {
    entry.tag = ConvertUShort(at);
    entry.type = ConvertUShort(at + 2);
    entry.count = ConvertUInt(at + 4);
    if (entry.type == 0 || entry.type >= sizeof(kItemBytes)) return false;
    if (entry.count > kMostItems) return false;
    entry.size = entry.count * kItemBytes[entry.type];
    if (entry.size <= kInlineBytes) {
        entry.value = at + kValueAt;
        return true;
    }
    const std::uint32_t offset = ConvertUInt(at + kValueAt);
    if (offset > length || length - offset < entry.size) return false;
    entry.value = tiffBase + offset;
    return true;
}

// False when the entry is no rational.
bool CJpegExifParser::TakeAngle(double& degrees, const Entry& entry) const {
    if (entry.type != kUnsignedRational && entry.type != kSignedRational) return false;
    if (entry.size < kAngleBytes) return true;
    const bool isSigned = entry.type == kSignedRational;
    const double whole = ConvertRational(entry.value, isSigned);
    const double minutes = ConvertRational(entry.value + kRationalBytes, isSigned);
    const double seconds = ConvertRational(entry.value + 2 * kRationalBytes, isSigned);
    degrees = whole + minutes / 60.0 + seconds / 3600.0;
    return true;
}

double CJpegExifParser::ConvertRational(const unsigned char* bytes, bool isSigned) const {
    const std::int32_t numerator = ConvertInt(bytes);
    const std::int32_t denominator = ConvertInt(bytes + kRationalBytes / 2);
    if (denominator == 0) return 0.0;
    if (isSigned) return static_cast<double>(numerator) / denominator;
    return static_cast<double>(static_cast<std::uint32_t>(numerator)) / static_cast<std::uint32_t>(denominator);
}

std::int32_t CJpegExifParser::ConvertInt(const void* bytes) const {
    const auto* const b = static_cast<const unsigned char*>(bytes);
    const std::uint32_t little =
        b[0] | std::uint32_t{b[1]} << 8 | std::uint32_t{b[2]} << 16 | std::uint32_t{b[3]} << 24;
    return static_cast<std::int32_t>(m_bigEndian ? ConvBig2Little(little) : little);
}

std::uint16_t CJpegExifParser::ConvertUShort(const void* bytes) const {
    const auto* const b = static_cast<const unsigned char*>(bytes);
    const auto little = static_cast<std::uint16_t>(b[0] | b[1] << 8);
    return m_bigEndian ? ConvBig2Little(little) : little;
}

// False, and all work on the block ends, when the entries are not left.
bool CJpegExifParser::Spend(std::uint32_t entries) {
    const bool left = entries <= m_entriesLeft;
    m_entriesLeft = left ? m_entriesLeft - entries : 0;
    return left;
}

}  // namespace dorvutil
