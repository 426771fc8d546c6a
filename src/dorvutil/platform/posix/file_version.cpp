#include <elf.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "dorvutil/platform/posix/file_bytes.h"
#include "dorvutil/platform/posix/path.h"
#include "dorvutil/platform/posix/pe_version.h"
#include "dorvutil/platform/posix/text_file.h"
#include "dorvutil/platform/system_facts.h"

// A Windows program has a version resource. An ELF program carries its version in the note of its package (type
// 0xCAFE1A7E, owner "FDO", a JSON object with a text "version"; systemd, "Package Metadata for Executable Files"). A
// library without one carries it in its file name, "libname.so.1.2.3", to which its other names link.
namespace dorvutil::platform {
namespace {

constexpr std::uint32_t kPackageNote = 0xCAFE1A7Eu;
constexpr char kOwner[] = "FDO";
constexpr std::size_t kMostNoteBytes = 0x10000;
constexpr std::uint32_t kMostSegments = 256;

// Up to four numbers, the missing ones 0; false when there is not even one.
bool ReadVersion(const char* text, std::uint16_t (&parts)[4]) {
    std::uint16_t read[4] = {};
    std::size_t count = 0;
    for (; count < 4; ++count) {
        std::uint64_t number = 0;
        if (*text < '0' || *text > '9' || !ReadNumber(text, number, &text)) break;
        read[count] = static_cast<std::uint16_t>(std::min<std::uint64_t>(number, 0xFFFF));
        if (*text != '.' && *text != '-') {
            ++count;
            break;
        }
        ++text;
    }
    if (count == 0) return false;
    std::copy(read, read + 4, parts);
    return true;
}

// `json` ends with a zero byte.
bool ReadVersionMember(const char* json, std::uint16_t (&parts)[4]) {
    static constexpr char kMember[] = "\"version\"";
    while ((json = std::strstr(json, kMember)) != nullptr) {
        json += sizeof(kMember) - 1;
        json += std::strspn(json, " \t\r\n");
        if (*json != ':') continue;  // a value that reads like the name
        ++json;
        json += std::strspn(json, " \t\r\n");
        return *json == '"' && ReadVersion(json + 1, parts);
    }
    return false;
}

constexpr std::size_t Padded(std::uint32_t size) { return (std::size_t{size} + 3) / 4 * 4; }

// A segment of notes: each has the sizes of owner and contents, a type, the owner and the contents, padded to four.
bool ReadNotes(const char* bytes, std::size_t size, std::uint16_t (&parts)[4]) {
    for (std::size_t at = 0; size - at >= sizeof(Elf64_Nhdr);) {
        Elf64_Nhdr note;
        std::memcpy(&note, bytes + at, sizeof(note));
        at += sizeof(note);
        if (Padded(note.n_namesz) > size - at) return false;
        const char* const owner = bytes + at;
        at += Padded(note.n_namesz);
        if (note.n_descsz > size - at) return false;
        if (note.n_type == kPackageNote && note.n_namesz == sizeof(kOwner) &&
            std::memcmp(owner, kOwner, sizeof(kOwner)) == 0) {
            char json[4096];
            const std::size_t length = std::min<std::size_t>(note.n_descsz, sizeof(json) - 1);
            std::memcpy(json, bytes + at, length);
            json[length] = '\0';
            return ReadVersionMember(json, parts);
        }
        at += std::min(Padded(note.n_descsz), size - at);
    }
    return false;
}

bool ReadElf(int file, std::uint16_t (&parts)[4]) {
    Elf64_Ehdr header;
    if (!ReadAt(file, &header, sizeof(header), 0)) return false;
    constexpr unsigned char kData = std::endian::native == std::endian::little ? ELFDATA2LSB : ELFDATA2MSB;
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64 ||
        header.e_ident[EI_DATA] != kData || header.e_phentsize != sizeof(Elf64_Phdr)) {
        return false;
    }
    const std::uint32_t segments = std::min<std::uint32_t>(header.e_phnum, kMostSegments);
    for (std::uint32_t i = 0; i < segments; ++i) {
        Elf64_Phdr segment;
        const std::uint64_t place = std::uint64_t{i} * sizeof(segment);
        if (header.e_phoff > UINT64_MAX - place || !ReadAt(file, &segment, sizeof(segment), header.e_phoff + place))
            return false;
        if (segment.p_type != PT_NOTE || segment.p_filesz > kMostNoteBytes) continue;
        const auto size = static_cast<std::size_t>(segment.p_filesz);
        const std::unique_ptr<char[]> notes(new (std::nothrow) char[size + 1]);
        if (notes && ReadAt(file, notes.get(), size, segment.p_offset) && ReadNotes(notes.get(), size, parts))
            return true;
    }
    return false;
}

bool ReadFileName(const char* path, std::uint16_t (&parts)[4]) {
    char real[PATH_MAX];
    if (!::realpath(path, real)) return false;
    const char* const slash = std::strrchr(real, '/');
    const char* const number = slash ? std::strstr(slash, ".so.") : nullptr;
    return number && ReadVersion(number + 4, parts);
}

}  // namespace

bool QueryFileVersion(const char16_t* path, std::uint16_t (&parts)[4]) {
    const NativePath native(path);
    const int file = ::open(native.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return false;
    const bool found = ReadElf(file, parts) || ReadPeVersion(file, parts);
    ::close(file);
    return found || ReadFileName(native.c_str(), parts);
}

}  // namespace dorvutil::platform
