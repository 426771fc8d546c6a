#include "dorvutil/memory/vector_storage.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "dorvutil/memory/heap.h"

namespace dorvutil::detail {
namespace {

constexpr std::size_t kAlwaysPlausibleBytes = std::size_t{64} << 20;

bool BytesOf(std::uint32_t count, std::size_t elementSize, std::size_t& bytes) {
    if (count > kVectorMaxCount || count > std::numeric_limits<std::size_t>::max() / elementSize) return false;
    bytes = count * elementSize;
    return true;
}

// By one half each time; capped, so that the last step before the limit is not lost.
std::uint32_t GrownCapacity(std::uint32_t start, std::uint32_t needed) {
    std::uint64_t capacity = start;
    while (capacity < needed) capacity = (3 * capacity + 1) / 2;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(capacity, kVectorMaxCount));
}

// Overlapping moves of zero bytes may come with null pointers, which memmove does not allow.
void Move(void* to, const void* from, std::size_t bytes) {
    if (bytes != 0) std::memmove(to, from, bytes);
}

// Doubles what is already written: large fills run at memcpy speed for every element size.
void Repeat(unsigned char* to, const void* value, std::size_t size, std::size_t bytes) {
    if (bytes == 0) return;
    std::memcpy(to, value, size);
    for (std::size_t done = size; done < bytes;) {
        const std::size_t step = std::min(done, bytes - done);
        std::memcpy(to + done, to, step);
        done += step;
    }
}

}  // namespace

unsigned char* VectorArray::At(std::uint32_t index, std::size_t elementSize) const {
    unsigned char* const bytes = static_cast<unsigned char*>(m_data);
    return index == 0 ? bytes : bytes + index * elementSize;
}

bool VectorArray::Holds(const void* items, std::size_t elementSize) const {
    const auto begin = reinterpret_cast<std::uintptr_t>(m_data);
    const auto at = reinterpret_cast<std::uintptr_t>(items);
    return at >= begin && at - begin < m_capacity * elementSize;
}

bool VectorArray::Reallocate(std::uint32_t capacity, std::size_t elementSize) {
    std::size_t bytes = 0;
    if (!BytesOf(capacity, elementSize, bytes)) return false;
    void* const data = Mem_Realloc(m_data, bytes);
    if (!data) return false;
    m_data = data;
    m_capacity = capacity;
    return true;
}

bool VectorArray::Resize(std::uint32_t n, std::size_t elementSize) {
    if (n == m_capacity) return true;
    if (n == 0) {
        Release(true);
        return true;
    }
    if (!Reallocate(n, elementSize)) return false;
    m_count = std::min(m_count, n);
    return true;
}

// Makes room for `needed` elements. When `items` lies in the array, the elements move to a new one and the old one, in
// which `items` stays readable, is handed to the caller to free.
bool VectorArray::Grow(std::uint32_t needed, const void* items, const ElementRule& rule, void*& replaced) {
    if (!rule.m_ownsMemory) return false;
    if (!Holds(items, rule.m_size))
        return Reallocate(GrownCapacity(std::max(m_capacity, m_chunkSize), needed), rule.m_size);
    VectorArray copy;
    if (!copy.Reallocate(GrownCapacity(std::max(m_count, m_chunkSize), needed), rule.m_size)) return false;
    Move(copy.m_data, m_data, m_count * rule.m_size);
    replaced = m_data;
    m_data = copy.m_data;
    m_capacity = copy.m_capacity;
    return true;
}

void VectorArray::FillDefault(std::uint32_t from, std::uint32_t to, const ElementRule& rule) {
    if (from >= to) return;
    const std::size_t bytes = (to - from) * rule.m_size;
    if (rule.m_fastFill) {
        std::memset(At(from, rule.m_size), *static_cast<const unsigned char*>(rule.m_value), bytes);
    } else {
        Repeat(At(from, rule.m_size), rule.m_value, rule.m_size, bytes);
    }
}

bool VectorArray::SetCount(std::uint32_t n, const ElementRule& rule) {
    void* none = nullptr;
    if (n > m_capacity && (n > kVectorMaxCount || !Grow(n, nullptr, rule, none))) return false;
    FillDefault(m_count, n, rule);
    m_count = n;
    return true;
}

std::int32_t VectorArray::Insert(const void* items, std::uint32_t index, std::uint32_t n, const ElementRule& rule) {
    const std::uint32_t base = std::max(index, m_count);
    if (base > kVectorMaxCount || n > kVectorMaxCount - base || (n != 0 && !items)) return -1;
    const std::size_t size = rule.m_size;
    const void* const old = m_data;
    void* replaced = nullptr;
    if (base + n > m_capacity && !Grow(base + n, items, rule, replaced)) return -1;
    FillDefault(m_count, index, rule);

    // Source bytes that lie in the tail move up with it, unless they are read from the array left behind.
    std::size_t before = n * size;
    std::size_t moved = 0;
    if (index < m_count) {
        const unsigned char* const tail = At(index, size);
        Move(At(index + n, size), tail, (m_count - index) * size);
        if (m_data == old && Holds(items, size)) {
            const std::ptrdiff_t ahead = tail - static_cast<const unsigned char*>(items);
            before = std::min(before, ahead > 0 ? static_cast<std::size_t>(ahead) : 0);
            moved = n * size - before;
        }
    }
    unsigned char* const to = At(index, size);
    const unsigned char* const source = static_cast<const unsigned char*>(items);
    Move(to, source, before);
    if (moved != 0) Move(to + before, source + before + n * size, moved);
    m_count = base + n;
    Mem_Free(replaced);
    return static_cast<std::int32_t>(index);
}

bool VectorArray::Replace(const void* items, std::uint32_t index, std::uint32_t n, const ElementRule& rule) {
    if (index >= m_capacity) return Insert(items, index, n, rule) >= 0;
    if (index > kVectorMaxCount || n > kVectorMaxCount - index || (n != 0 && !items)) return false;
    const std::uint32_t end = index + n;
    void* replaced = nullptr;
    if (end > m_capacity && !Grow(end, items, rule, replaced)) return false;
    FillDefault(m_count, index, rule);
    Move(At(index, rule.m_size), items, n * rule.m_size);
    m_count = std::max(m_count, end);
    Mem_Free(replaced);
    return true;
}

void VectorArray::Remove(std::uint32_t index, std::uint32_t n, std::size_t elementSize) {
    Move(At(index, elementSize), At(index + n, elementSize), (m_count - index - n) * elementSize);
    m_count -= n;
}

bool VectorArray::Shift(std::int32_t k, const ElementRule& rule) {
    if (k == 0) return true;
    if (k < 0) {
        if (m_count == 0) return false;
        Remove(0, std::min(0u - static_cast<std::uint32_t>(k), m_count), rule.m_size);
        return true;
    }
    const auto up = static_cast<std::uint32_t>(k);
    void* none = nullptr;
    if (m_count > kVectorMaxCount - up || !Grow(m_count + up, nullptr, rule, none)) return false;
    Move(At(up, rule.m_size), m_data, m_count * rule.m_size);
    FillDefault(0, up, rule);
    m_count += up;
    return true;
}

void VectorArray::CopyElements(const VectorArray& other, std::size_t elementSize) {
    m_data = nullptr;
    m_count = m_capacity = 0;
    if (other.m_count == 0 || !Reallocate(other.m_count, elementSize)) return;
    std::memcpy(m_data, other.m_data, other.m_count * elementSize);
    m_count = other.m_count;
}

void VectorArray::Release(bool ownsMemory) {
    if (ownsMemory) Mem_Free(m_data);
    m_data = nullptr;
    m_count = m_capacity = 0;
}

bool IsUniform(const void* value, std::size_t size) {
    const auto* const bytes = static_cast<const unsigned char*>(value);
    return std::memcmp(bytes, bytes + 1, size - 1) == 0;
}

void StoreFlatHeader(const FlatHeader& header, unsigned char* bytes) {
    bytes[0] = header.m_fastFill;
    std::memcpy(bytes + 1, &header.m_chunkSize, 4);
    bytes[5] = header.m_private;
    std::memcpy(bytes + 6, &header.m_capacity, 4);
    std::memcpy(bytes + 10, &header.m_count, 4);
}

FlatHeader LoadFlatHeader(const unsigned char* bytes) {
    FlatHeader header;
    header.m_fastFill = bytes[0] != 0;
    std::memcpy(&header.m_chunkSize, bytes + 1, 4);
    header.m_private = bytes[5] != 0;
    std::memcpy(&header.m_capacity, bytes + 6, 4);
    std::memcpy(&header.m_count, bytes + 10, 4);
    return header;
}

bool IsPlausible(std::uint32_t count, std::size_t elementSize, std::uint32_t remaining) {
    const std::uint64_t limit = std::max<std::uint64_t>(kAlwaysPlausibleBytes, 2 * std::uint64_t{remaining});
    return count <= kVectorMaxCount && count <= limit / elementSize;
}

}  // namespace dorvutil::detail
