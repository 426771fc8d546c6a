#include "dorvutil/system/jpeg_exif.h"

#include <algorithm>
#include <cstring>

#include "dorvutil/memory/vector.h"
#include "dorvutil/storage/file_api.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kSuccess = 0;
constexpr std::int32_t kNotOpened = -2;
constexpr std::int32_t kNotJpeg = -3;
constexpr std::int32_t kTooMuchFill = -4;
constexpr std::int32_t kBadLength = -5;
constexpr std::int32_t kNoMemory = -6;

constexpr std::int32_t kMarkerFound = 1;
constexpr std::int32_t kMostFill = 6;
constexpr std::int32_t kLengthBytes = 2;

constexpr unsigned char kFill = 0xFF;
constexpr unsigned char kStartOfImage = 0xD8;
constexpr unsigned char kApp1 = 0xE1;

// The EXIF block lies before all of these: the end, tables and data of the picture.
bool EndsHeaders(unsigned char marker) {
    constexpr unsigned char kEnds[] = {0xD9, 0xDA, 0xDB, 0xC4, 0xC0};
    return std::find(std::begin(kEnds), std::end(kEnds), marker) != std::end(kEnds);
}

}  // namespace

std::int32_t CJpegExifParser::ParseJpegExif(const ORVustring& path, JpegExifInfo& info) {
    m_file = FileOpen(path, eAccessRead, eBinary);
    info = JpegExifInfo();  // only now: `path` may be its title
    if (!m_file) return CleanUp(kNotOpened);
    InitFileBuffer();
    unsigned char start[2];
    const bool isJpeg = Read(start, 2) == 2 && start[0] == kFill && start[1] == kStartOfImage;
    return CleanUp(isJpeg ? ReadSegments(info) : kNotJpeg);
}

std::int32_t CJpegExifParser::ReadSegments(JpegExifInfo& info) {
    TVector<unsigned char> segment;
    for (;;) {
        unsigned char marker = 0;
        const std::int32_t found = ReadMarker(marker);
        if (found != kMarkerFound) return found;
        unsigned char head[kLengthBytes];
        if (Read(head, kLengthBytes) != kLengthBytes) return kSuccess;
        const std::uint32_t length = head[0] * 256u + head[1];
        if (length < kLengthBytes) return kBadLength;
        if (EndsHeaders(marker)) return kSuccess;
        const auto rest = static_cast<std::int32_t>(length) - kLengthBytes;
        if (marker != kApp1) {
            if (SeekForward(rest) != 0) return kSuccess;
            continue;
        }
        if (segment.Capacity() < length && !segment.SetSize(length)) return kNoMemory;
        std::memcpy(segment.Data(), head, kLengthBytes);
        if (Read(segment.Data() + kLengthBytes, rest) != rest) return kSuccess;
        if (ParseExif(info, segment.Data(), length)) return kSuccess;
    }
}

std::int32_t CJpegExifParser::ReadMarker(unsigned char& marker) {
    for (std::int32_t fill = 0; Read(&marker, 1) == 1; ++fill) {
        if (marker != kFill) return kMarkerFound;
        if (fill == kMostFill) return kTooMuchFill;
    }
    return kSuccess;
}

// What is larger than the buffer does not go through it.
std::int32_t CJpegExifParser::Read(void* buffer, std::int32_t n) {
    auto* const out = static_cast<unsigned char*>(buffer);
    std::int32_t done = 0;
    while (done < n) {
        const std::int32_t rest = n - done;
        if (m_position < 0 || m_position == m_valid) {
            if (rest >= kBufferSize) {
                InitFileBuffer();
                return done + static_cast<std::int32_t>(FileRead(m_file, out + done, static_cast<std::uint32_t>(rest)));
            }
            m_valid = static_cast<std::int32_t>(FileRead(m_file, m_buffer, kBufferSize));
            m_position = 0;
            if (m_valid == 0) break;
        }
        const std::int32_t part = std::min(rest, m_valid - m_position);
        std::memcpy(out + done, m_buffer + m_position, static_cast<std::size_t>(part));
        m_position += part;
        done += part;
    }
    return done;
}

std::int32_t CJpegExifParser::SeekForward(std::int32_t n) {
    const std::int32_t loaded = m_position < 0 ? 0 : m_valid - m_position;
    if (n <= loaded) {
        if (n > 0) m_position += n;
        return 0;
    }
    InitFileBuffer();
    return FileSeek(m_file, n - loaded, eSeekCur);
}

void CJpegExifParser::InitFileBuffer() {
    m_position = -1;
    m_valid = 0;
}

std::int32_t CJpegExifParser::CleanUp(std::int32_t code) {
    if (m_file) FileClose(m_file);
    Reset();
    return code;
}

void CJpegExifParser::Reset() {
    InitFileBuffer();
    m_file = nullptr;
    m_bigEndian = false;
    m_entriesLeft = 0;
}

}  // namespace dorvutil
