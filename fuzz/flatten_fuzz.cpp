// Vectors and strings read from files: what comes back is no more than the file holds and writes the same bytes.
#include "dorvutil/memory/vector.h"
#include "dorvutil/text/string.h"
#include "dorvutil/text/string_hash.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

struct Point {
    std::int32_t m_x, m_y;
    double m_weight;
};

// Memory that a file may ask for however short it is. What asks for much of it is only slow: left out here.
constexpr std::uint64_t kAlwaysHad = std::uint64_t{64} << 20;
constexpr std::uint64_t kMuch = std::uint64_t{1} << 22;

// Whether a size in the header would be granted and takes long.
template <class T>
bool IsSlow(std::string_view bytes) {
    if (bytes.size() < sizeof(T) + 14) return false;
    for (const std::size_t at : {sizeof(T) + 1, sizeof(T) + 6, sizeof(T) + 10}) {
        std::uint32_t count = 0;
        std::memcpy(&count, bytes.data() + at, 4);
        const std::uint64_t wanted = std::uint64_t{count} * sizeof(T);
        if (wanted > kMuch && wanted <= std::max<std::uint64_t>(kAlwaysHad, 2 * bytes.size())) return true;
    }
    return false;
}

template <class T>
std::uint32_t HeaderCapacity(std::string_view bytes) {
    std::uint32_t capacity = 0;
    std::memcpy(&capacity, bytes.data() + sizeof(T) + 6, 4);
    return capacity;
}

template <class T>
bool Unflatten(TVector<T>& vector, std::string_view bytes, bool byItem) {
    MemoryFile file(bytes);
    return byItem ? vector.UnflattenMeByItem(&file) : vector.UnflattenMe(&file);
}

template <class T>
std::string Flattened(const TVector<T>& vector) {
    MemoryFile file;
    FUZZ_CHECK(vector.FlattenMe(&file));
    return file.Content();
}

template <class T>
bool SameElements(const TVector<T>& a, const TVector<T>& b) {
    return a.Count() == b.Count() && (a.Count() == 0 || std::memcmp(a.Data(), b.Data(), a.ByteCount()) == 0);
}

// What is behind the flags, which are read as "not zero", is taken over as it stands; a chunk size of 0 is not, nor a
// capacity below the count.
template <class T>
void CheckBytes(const std::string& flat, std::string_view bytes, bool capacityKept) {
    FUZZ_CHECK(flat.size() <= bytes.size());
    for (std::size_t i = 0; i < flat.size(); ++i) {
        const bool flag = i == sizeof(T) || i == sizeof(T) + 5;
        const bool chunk = i > sizeof(T) && i < sizeof(T) + 5;
        const bool capacity = i >= sizeof(T) + 6 && i < sizeof(T) + 10;
        if (chunk || (capacity && !capacityKept)) continue;
        FUZZ_CHECK((flag ? (flat[i] != 0) == (bytes[i] != 0) : flat[i] == bytes[i]));
    }
}

template <class T>
void CheckVector(std::string_view bytes) {
    if (IsSlow<T>(bytes)) return;
    TVector<T> whole, byItem;
    const bool read = Unflatten(whole, bytes, false);
    FUZZ_CHECK(Unflatten(byItem, bytes, true) == read && SameElements(whole, byItem));
    FUZZ_CHECK(whole.ByteCount() <= bytes.size() && whole.Count() <= whole.Capacity());
    FUZZ_CHECK(std::size_t{whole.Capacity()} * sizeof(T) <= std::max<std::size_t>(kMuch, 2 * bytes.size()));
    if (!read) {
        FUZZ_CHECK(whole.Count() == 0);
        return;
    }
    const std::string flat = Flattened(whole);
    CheckBytes<T>(flat, bytes, HeaderCapacity<T>(bytes) >= whole.Count());
    TVector<T> back;
    FUZZ_CHECK(Unflatten(back, flat, false) && SameElements(whole, back));
    FUZZ_CHECK(back.Capacity() == whole.Capacity() && back.ChunkSize() == whole.ChunkSize());
    FUZZ_CHECK(Flattened(back) == flat);
    // It still grows.
    if (whole.Capacity() < 1000 && whole.ChunkSize() < 1000)
        FUZZ_CHECK(whole.Add(T{}) == static_cast<std::int32_t>(back.Count()) + 1);
}

template <class T>
void CheckHeaderAndPlain(std::string_view bytes, std::uint32_t n) {
    if (IsSlow<T>(bytes)) return;
    TVector<T> header, plain;
    MemoryFile file(bytes), rest(bytes);
    if (!header.UnflattenMeAdmin(&file, true)) FUZZ_CHECK(header.Count() == 0);
    FUZZ_CHECK(std::size_t{header.Count()} * sizeof(T) <= std::max<std::size_t>(kMuch, 2 * bytes.size()));
    const bool read = plain.ReadFromFile(&rest, n, false);
    if (n == 0) FUZZ_CHECK(read && plain.Count() == bytes.size() / sizeof(T));
    if (read) FUZZ_CHECK(plain.ByteCount() <= bytes.size());
}

template <class S, class T>
void CheckString(std::string_view bytes) {
    S text;
    MemoryFile file(bytes);
    const bool read = text.UnflattenMe(&file);
    FUZZ_CHECK(std::size_t{text.length()} * sizeof(T) + 2 <= std::max<std::size_t>(bytes.size(), 2));
    MemoryFile flat;
    FUZZ_CHECK(text.FlattenMe(&flat));
    if (read) FUZZ_CHECK(bytes.substr(0, flat.Content().size()) == flat.Content());
    S back;
    FUZZ_CHECK(flat.Seek(0, eSeekSet) == 0 && back.UnflattenMe(&flat));
    FUZZ_CHECK(back == text && back.HashValue() == text.HashValue());
    const S copy(text);
    FUZZ_CHECK(copy.HashValue() == text.HashValue() && text.length() == back.length());
}

}  // namespace

void TestInput(Input& input) {
    const std::uint8_t n = input.Byte();
    const std::string_view bytes = input.Rest();
    CheckVector<std::uint8_t>(bytes);
    CheckVector<std::uint32_t>(bytes);
    CheckVector<Point>(bytes);
    CheckHeaderAndPlain<std::uint32_t>(bytes, n);
    CheckString<ORVustring, char>(bytes);
    CheckString<ORVwstring, char16_t>(bytes);
}

}  // namespace dorvutil::fuzz
