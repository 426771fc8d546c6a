#include "dorvutil/storage/path_text.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "dorvutil/storage/path_parts.h"
#include "dorvutil/text/chars.h"

namespace dorvutil {
namespace {

constexpr std::string_view kUnfitForNames = "'\\/:*?\"<>|&.-";

struct SizeUnit {
    std::uint32_t m_bytes;
    const char* m_name;
};
constexpr SizeUnit kKilobyte{1u << 10, " KB"};
constexpr SizeUnit kMegabyte{1u << 20, " MB"};
constexpr SizeUnit kGigabyte{1u << 30, " GB"};

constexpr const SizeUnit& UnitFor(std::uint32_t bytes) {
    if (bytes <= kMegabyte.m_bytes) return kKilobyte;
    return bytes <= kGigabyte.m_bytes ? kMegabyte : kGigabyte;
}

}  // namespace

void FileAppendSlash(char* path, std::int32_t size) {
    if (!path) return;
    std::size_t length = std::strlen(path);
    if (length != 0 && IsSeparator(path[length - 1])) return;
    while (length != 0 && path[length - 1] == ' ') --length;
    path[length] = '\0';
    if (size >= 0 && length + 1 >= static_cast<std::size_t>(size)) return;
    path[length] = '\\';
    path[length + 1] = '\0';
}

void FileNameCleanup(char* name, std::uint32_t maxLength) {
    if (!name) return;
    char* const end = name + strnlen(name, maxLength);
    char* const kept = std::remove_if(name, end, [](char c) { return kUnfitForNames.find(c) != kUnfitForNames.npos; });
    std::replace(name, kept, ' ', '_');
    if (kept != end || *end != '\0') *kept = '\0';
}

std::int32_t FileStripName(char* text) {
    if (!text) return 0;
    char* first = text;
    while (custom_isspace(*first)) ++first;
    std::size_t length = std::strlen(first);
    while (length != 0 && custom_isspace(first[length - 1])) --length;
    std::memmove(text, first, length);
    text[length] = '\0';
    return static_cast<std::int32_t>(length);
}

ORVustring GetFileSizeStr(std::uint32_t bytes) {
    if (bytes == 0) return ORVustring();
    const SizeUnit& unit = UnitFor(bytes);
    const auto value = static_cast<float>(static_cast<double>(bytes) / unit.m_bytes);
    ORVustring text = ORVustring::ftoa(static_cast<double>(value), 1);
    text += unit.m_name;
    return text;
}

void TruncatePathToLastSlash(char16_t* path, std::int32_t length) {
    if (!path || length < 0) return;
    std::int32_t end = length;
    while (end >= 0 && path[end] != u'\\' && path[end] != u'/') --end;
    path[end + 1] = u'\0';
}

}  // namespace dorvutil
