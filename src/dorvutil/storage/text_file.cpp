#include "dorvutil/storage/text_file.h"

#include <cstring>
#include <memory>
#include <new>

#include "dorvutil/platform/file.h"
#include "dorvutil/storage/file_api.h"
#include "dorvutil/storage/transfer.h"
#include "dorvutil/text/encoding.h"
#include "dorvutil/text/utf8.h"

namespace dorvutil {
namespace {

constexpr unsigned char kUtf8Mark[] = {0xEF, 0xBB, 0xBF};
constexpr unsigned char kUtf16Mark[] = {0xFF, 0xFE};
constexpr std::uint32_t kChunkBytes = 32768;
constexpr std::uint32_t kMostLineUnits = 0x80000000u;

template <std::size_t n>
bool StripMark(COrvFileHandleBase* handle, const unsigned char (&mark)[n]) {
    unsigned char start[n] = {};
    FileSeek(handle, 0, eSeekSet);
    if (FileRead(handle, start, n) == n && std::memcmp(start, mark, n) == 0) return true;
    FileSeek(handle, 0, eSeekSet);
    return false;
}

bool ReadWideLine(COrvFileHandleBase* handle, char* buffer, std::uint32_t size) {
    const std::uint32_t capacity = size < kMostLineUnits / 2 ? 2 * size : kMostLineUnits;
    const std::unique_ptr<char16_t[]> line(new (std::nothrow) char16_t[capacity]);
    if (!line || !handle->ReadLine(line.get(), capacity - 2)) return false;
    const auto length = static_cast<std::uint32_t>(std::char_traits<char16_t>::length(line.get()));
    // The last byte stays zero: the text is terminated however long the line is.
    return length == 0 || ORVConvertUTF16toUTF8(line.get(), length, buffer, size - 1);
}

// How many bytes at the end of `text` begin a character of UTF-8 that the next chunk may complete.
std::uint32_t CutCharacter(const char* text, std::uint32_t n) {
    for (std::uint32_t back = 1; back <= 3 && back <= n; ++back) {
        const std::int32_t length = CharByteCount(text[n - back]);
        if (length != 0) return static_cast<std::uint32_t>(length) > back ? back : 0;
    }
    return 0;
}

// Converts one chunk; what is not UTF-8 becomes one unit for each byte.
std::uint32_t ToUnits(const char* text, std::uint32_t n, char16_t* units) {
    const std::uint32_t count = GetNumUnitsNeededForUTF16(text, n);
    const bool hasZero = std::memchr(text, 0, n) != nullptr;
    if (!hasZero || count == n) {
        ORVConvertUTF8toUTF16(text, n, units, count);
        return count;
    }
    // The conversion of Latin-1 ends at a zero byte: here zeroes are characters, so the pieces between are converted.
    std::uint32_t written = 0;
    for (const char* const end = text + n; text != end;) {
        if (*text == '\0') {
            units[written++] = u'\0';
            ++text;
            continue;
        }
        const auto piece = static_cast<std::uint32_t>(strnlen(text, static_cast<std::size_t>(end - text)));
        const std::uint32_t pieceUnits = GetNumUnitsNeededForUTF16(text, piece);
        ORVConvertUTF8toUTF16(text, piece, units + written, pieceUnits);
        written += pieceUnits;
        text += piece;
    }
    return written;
}

bool ConvertToUtf16(COrvFileHandleBase* from, COrvFileHandleBase* to) {
    const std::unique_ptr<char[]> text(new (std::nothrow) char[kChunkBytes]);
    const std::unique_ptr<char16_t[]> units(new (std::nothrow) char16_t[kChunkBytes]);
    if (!text || !units || FileWrite(to, kUtf16Mark, sizeof(kUtf16Mark)) != sizeof(kUtf16Mark)) return false;
    std::uint32_t held = 0;
    for (bool more = true; more;) {
        const std::uint32_t got = FileRead(from, text.get() + held, kChunkBytes - held);
        more = got != 0;
        const std::uint32_t total = held + got;
        held = more ? CutCharacter(text.get(), total) : 0;
        const std::uint32_t bytes = 2 * ToUnits(text.get(), total - held, units.get());
        if (FileWrite(to, units.get(), bytes) != bytes) return false;
        std::memmove(text.get(), text.get() + (total - held), held);
    }
    return FileTell(from) >= FileLength(from);  // otherwise a read failed
}

}  // namespace

bool StripUTF8Start(COrvFileHandleBase* handle) { return StripMark(handle, kUtf8Mark); }

bool StripUTF16Start(COrvFileHandleBase* handle) { return StripMark(handle, kUtf16Mark); }

eFileType StripFileStart(COrvFileHandleBase* handle) {
    if (!IsUsable(handle)) return eFileTypeNone;
    if (StripUTF16Start(handle)) return eFileTypeUTF16;
    return StripUTF8Start(handle) ? eFileTypeUTF8 : eFileTypePlain;
}

bool ReadStringFromFile(COrvFileHandleBase* handle, eFileType type, char* buffer, std::uint32_t size) {
    if (!buffer || size == 0) return false;
    std::memset(buffer, 0, size);
    if (!IsUsable(handle)) return false;
    return type == eFileTypeUTF16 ? ReadWideLine(handle, buffer, size) : handle->ReadLine(buffer, size) != nullptr;
}

bool FileANSI2UniCode(const ORVustring& from, const ORVustring& to) {
    if (platform::IsSameFile(from.c_str(), to.c_str())) return false;
    COrvFileHandleBase* source = FileOpen(from, eAccessRead, eBinary);
    if (!source) return false;
    COrvFileHandleBase* target = StripUTF16Start(source) ? nullptr : FileOpen(to, eAccessWrite, eBinary);
    const bool converted = target && ConvertToUtf16(source, target);
    FileClose(source);
    return FileClose(target) && converted;
}

}  // namespace dorvutil
