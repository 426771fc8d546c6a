#include "dorvutil/platform/posix/symbol_table.h"

#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#if defined(DORVUTIL_HAS_DEMANGLER)
// Part of the compiler's run-time library: hands a name out in pieces instead of allocating it. 0: demangled.
extern "C" int __gcclibcxx_demangle_callback(const char* symbol, void (*piece)(const char*, std::size_t, void*),
                                             void* user);
#endif

namespace dorvutil::platform {
namespace {

using Header = ElfW(Ehdr);
using Section = ElfW(Shdr);
using Symbol = ElfW(Sym);

constexpr unsigned char kNativeClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
constexpr std::size_t kBatch = 128;  // symbols read at a time

// Read, not mapped: a file that is cut off meanwhile gives short reads and not a fault.
class File {
public:
    explicit File(const char* path) : m_number(::open(path, O_RDONLY | O_CLOEXEC)) {}
    ~File() {
        if (m_number >= 0) ::close(m_number);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Bytes read; fewer than wanted at the end of the file, 0 on failure.
    std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t n) const {
        if (m_number < 0 || offset > INT64_MAX) return 0;
        ssize_t got = 0;
        do {
            got = ::pread(m_number, to, n, static_cast<off_t>(offset));
        } while (got < 0 && errno == EINTR);
        return got < 0 ? 0 : static_cast<std::size_t>(got);
    }
    template <class T>
    bool Read(std::uint64_t offset, T& record) const {
        return ReadAt(offset, &record, sizeof(T)) == sizeof(T);
    }

private:
    int m_number;
};

// The sections of an ELF file, as far as symbols go.
class ElfFile {
public:
    explicit ElfFile(const char* path) : m_file(path) {
        m_valid = m_file.Read(0, m_header) && std::memcmp(m_header.e_ident, ELFMAG, SELFMAG) == 0 &&
                  m_header.e_ident[EI_CLASS] == kNativeClass && m_header.e_shentsize == sizeof(Section);
    }

    bool FindSection(std::uint32_t type, Section& section) const {
        for (std::uint32_t i = 0; m_valid && i < m_header.e_shnum; ++i) {
            if (!ReadSection(i, section)) return false;
            if (section.sh_type == type) return true;
        }
        return false;
    }

    // The function that holds `address`; of several, the best.
    bool FindFunction(const Section& table, std::uintptr_t address, Symbol& best) const {
        Symbol batch[kBatch];
        bool found = false;
        const std::uint64_t end = table.sh_size / sizeof(Symbol);
        for (std::uint64_t next = 0; next < end;) {
            const std::size_t wanted = std::min<std::uint64_t>(kBatch, end - next);
            const std::size_t bytes =
                m_file.ReadAt(table.sh_offset + next * sizeof(Symbol), batch, wanted * sizeof(Symbol));
            const std::size_t got = bytes / sizeof(Symbol);
            if (got == 0) break;
            for (std::size_t i = 0; i < got; ++i) {
                if (!Holds(batch[i], address) || (found && !IsBetter(batch[i], best))) continue;
                best = batch[i];
                found = true;
            }
            next += got;
        }
        return found;
    }

    bool ReadName(const Section& table, const Symbol& symbol, char* out, std::size_t size) const {
        Section names;
        if (!ReadSection(table.sh_link, names)) return false;
        const std::size_t got = m_file.ReadAt(names.sh_offset + symbol.st_name, out, size - 1);
        out[got] = '\0';
        return *out != '\0';
    }

private:
    bool ReadSection(std::uint32_t index, Section& section) const {
        return index < m_header.e_shnum &&
               m_file.Read(m_header.e_shoff + std::uint64_t{index} * sizeof(Section), section);
    }
    static bool Holds(const Symbol& symbol, std::uintptr_t address) {
        const auto type = symbol.st_info & 0xF;
        return (type == STT_FUNC || type == STT_GNU_IFUNC) && symbol.st_shndx != SHN_UNDEF &&
               address >= symbol.st_value && address - symbol.st_value < symbol.st_size;
    }
    // The one that begins last; of aliases, the name that others link to.
    static bool IsBetter(const Symbol& symbol, const Symbol& best) {
        if (symbol.st_value != best.st_value) return symbol.st_value > best.st_value;
        return symbol.st_info >> 4 != STB_LOCAL && best.st_info >> 4 == STB_LOCAL;
    }

    File m_file;
    Header m_header;
    bool m_valid = false;
};

}  // namespace

bool ReadFunctionSymbol(const char* path, std::uintptr_t address, char* out, std::size_t size) {
    const ElfFile file(path);
    *out = '\0';
    for (const auto type : {std::uint32_t{SHT_SYMTAB}, std::uint32_t{SHT_DYNSYM}}) {
        Section table;
        Symbol symbol;
        if (!file.FindSection(type, table) || !file.FindFunction(table, address, symbol)) continue;
        if (file.ReadName(table, symbol, out, size)) return true;
    }
    return false;
}

#if defined(DORVUTIL_HAS_DEMANGLER)

namespace {

struct Room {
    char* next;
    char* end;
};

void Append(const char* piece, std::size_t n, void* user) {
    auto& room = *static_cast<Room*>(user);
    n = std::min(n, static_cast<std::size_t>(room.end - room.next));
    std::memcpy(room.next, piece, n);
    room.next += n;
}

}  // namespace

// The demangler works on the stack alone, some 80 bytes for each of a symbol's characters, and refuses symbols of over
// a thousand. Its one call of the C library's formatting writes an integer, which needs no heap either.
bool Demangle(const char* symbol, char* out, std::size_t size) {
    Room room{out, out + size - 1};
    // What is no symbol of a function may still read as a type: "f" as float.
    const bool done = symbol[0] == '_' && symbol[1] == 'Z' && __gcclibcxx_demangle_callback(symbol, Append, &room) == 0;
    *(done ? room.next : out) = '\0';
    return done;
}

#else

bool Demangle(const char*, char* out, std::size_t) {
    *out = '\0';
    return false;
}

#endif

}  // namespace dorvutil::platform
