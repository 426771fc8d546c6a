#include "dorvutil/platform/posix/pe_version.h"

#include "dorvutil/platform/posix/file_bytes.h"

// The layout is that of the "PE Format" reference of the Windows documentation.
namespace dorvutil::platform {
namespace {

constexpr std::uint32_t kVersionResource = 16;
constexpr std::uint32_t kAnyEntry = 0xFFFFFFFFu;
constexpr std::uint32_t kSubfolder = 0x80000000u;
constexpr std::uint32_t kFixedInfoAt = 40;  // behind the head and the name "VS_VERSION_INFO" of the resource
constexpr std::uint32_t kFixedInfoSignature = 0xFEEF04BDu;

// Little-endian numbers at places of the file; once one cannot be read, all are 0 and the image is not whole.
class Image {
public:
    explicit Image(int file) : m_file(file) {}

    std::uint32_t Read(std::uint64_t at, std::uint32_t bytes) {
        unsigned char raw[4] = {};
        m_whole = m_whole && ReadAt(m_file, raw, bytes, at);
        if (!m_whole) return 0;
        std::uint32_t value = 0;
        for (std::uint32_t i = 0; i < bytes; ++i) value |= std::uint32_t{raw[i]} << (8 * i);
        return value;
    }
    std::uint16_t Read16(std::uint64_t at) { return static_cast<std::uint16_t>(Read(at, 2)); }
    std::uint32_t Read32(std::uint64_t at) { return Read(at, 4); }
    bool Whole() const { return m_whole; }

private:
    int m_file;
    bool m_whole = true;
};

struct Headers {
    std::uint64_t sections;
    std::uint32_t sectionCount;
    std::uint32_t resources;  // address in memory; 0: none
};

bool ReadHeaders(Image& image, Headers& headers) {
    if (image.Read16(0) != 0x5A4D) return false;  // "MZ"
    const std::uint64_t start = image.Read32(0x3C);
    if (image.Read32(start) != 0x4550) return false;  // "PE"
    const std::uint64_t optional = start + 24;
    const bool wide = image.Read16(optional) == 0x20B;
    const std::uint64_t folders = optional + (wide ? 112 : 96);
    headers.sectionCount = image.Read16(start + 6);
    headers.sections = optional + image.Read16(start + 20);
    headers.resources = image.Read32(folders - 4) > 2 ? image.Read32(folders + 16) : 0;
    return image.Whole() && headers.resources != 0;
}

// Where in the file lies what the program sees at `address`; 0: nowhere.
std::uint64_t PlaceOf(Image& image, const Headers& headers, std::uint32_t address) {
    for (std::uint32_t i = 0; i < headers.sectionCount && image.Whole(); ++i) {
        const std::uint64_t section = headers.sections + std::uint64_t{i} * 40;
        const std::uint32_t begin = image.Read32(section + 12);
        const std::uint32_t size = image.Read32(section + 16);
        if (address >= begin && address - begin < size)
            return std::uint64_t{image.Read32(section + 20)} + address - begin;
    }
    return 0;
}

// The offset that the entry `id` of a resource folder holds; 0: there is none.
std::uint32_t EntryOf(Image& image, std::uint64_t folder, std::uint32_t id) {
    const std::uint32_t count = std::uint32_t{image.Read16(folder + 12)} + image.Read16(folder + 14);
    for (std::uint32_t i = 0; i < count && image.Whole(); ++i) {
        const std::uint64_t entry = folder + 16 + std::uint64_t{i} * 8;
        if (id == kAnyEntry || image.Read32(entry) == id) return image.Read32(entry + 4);
    }
    return 0;
}

}  // namespace

bool ReadPeVersion(int file, std::uint16_t (&parts)[4]) {
    Image image(file);
    Headers headers{};
    if (!ReadHeaders(image, headers)) return false;
    const std::uint64_t resources = PlaceOf(image, headers, headers.resources);
    // By kind, then by name, then by language: three levels, the first version of all.
    const std::uint32_t kind = EntryOf(image, resources, kVersionResource);
    if (resources == 0 || (kind & kSubfolder) == 0) return false;
    const std::uint32_t name = EntryOf(image, resources + (kind & ~kSubfolder), kAnyEntry);
    if ((name & kSubfolder) == 0) return false;
    const std::uint32_t entry = EntryOf(image, resources + (name & ~kSubfolder), kAnyEntry);
    if (entry == 0 || (entry & kSubfolder) != 0) return false;
    const std::uint64_t info = PlaceOf(image, headers, image.Read32(resources + entry)) + kFixedInfoAt;
    if (image.Read32(info) != kFixedInfoSignature) return false;
    const std::uint32_t high = image.Read32(info + 8), low = image.Read32(info + 12);
    if (!image.Whole()) return false;
    parts[0] = static_cast<std::uint16_t>(high >> 16);
    parts[1] = static_cast<std::uint16_t>(high);
    parts[2] = static_cast<std::uint16_t>(low >> 16);
    parts[3] = static_cast<std::uint16_t>(low);
    return true;
}

}  // namespace dorvutil::platform
