#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/frame/export.h"

/// The byte work of TVector, compiled once for all element types. Not for direct use.
namespace dorvutil::detail {

/// The most elements a vector grows to: every index stays below the not-found index and every count fits a signed long.
inline constexpr std::uint32_t kVectorMaxCount = 0x7FFFFFFFu;

/// What the byte work has to know about the elements of one vector.
struct ElementRule {
    std::size_t m_size;   ///< Bytes of one element.
    const void* m_value;  ///< The default value.
    bool m_fastFill;      ///< Fill with the default's first byte instead of its whole value.
    bool m_ownsMemory;    ///< The array may be reallocated.
};

/// Array, count and capacity of one vector. Operations that fail leave it as it was. Source pointers may lie inside the
/// array: what is copied is what was there before the call.
struct DORVUTIL_API VectorArray {
    void* m_data = nullptr;
    std::uint32_t m_count = 0;
    std::uint32_t m_capacity = 0;
    std::uint32_t m_chunkSize = 8;  ///< Never 0.

    /// Reallocates to exactly `n` elements and cuts the count; 0 frees the array.
    bool Resize(std::uint32_t n, std::size_t elementSize);
    /// Cuts the count, or grows it with default values.
    bool SetCount(std::uint32_t n, const ElementRule& rule);
    /// Returns `index`, or -1.
    std::int32_t Insert(const void* items, std::uint32_t index, std::uint32_t n, const ElementRule& rule);
    bool Replace(const void* items, std::uint32_t index, std::uint32_t n, const ElementRule& rule);
    void Remove(std::uint32_t index, std::uint32_t n, std::size_t elementSize);
    bool Shift(std::int32_t k, const ElementRule& rule);
    /// Writes the default value over the elements `from` to `to` - 1.
    void FillDefault(std::uint32_t from, std::uint32_t to, const ElementRule& rule);
    /// Becomes an owned copy of `other`'s elements, capacity equal to count; empty when memory runs out. The old array
    /// is not freed here.
    void CopyElements(const VectorArray& other, std::size_t elementSize);
    /// Frees the array when `ownsMemory`; empty afterwards.
    void Release(bool ownsMemory);

private:
    bool Reallocate(std::uint32_t capacity, std::size_t elementSize);
    bool Grow(std::uint32_t needed, const void* items, const ElementRule& rule, void*& replaced);
    unsigned char* At(std::uint32_t index, std::size_t elementSize) const;
    bool Holds(const void* items, std::size_t elementSize) const;
};

/// True when all `size` bytes of `value` are equal.
DORVUTIL_API bool IsUniform(const void* value, std::size_t size);

/// The fields of a flattened vector after its default value.
struct FlatHeader {
    static constexpr std::size_t kBytes = 14;
    bool m_fastFill;
    std::uint32_t m_chunkSize;
    bool m_private;
    std::uint32_t m_capacity;
    std::uint32_t m_count;
};

DORVUTIL_API void StoreFlatHeader(const FlatHeader& header, unsigned char* bytes);
DORVUTIL_API FlatHeader LoadFlatHeader(const unsigned char* bytes);

/// Whether `count` elements may be given memory when `remaining` bytes of input are left: a damaged count must not make
/// the process reserve memory out of proportion (more than 64 MiB and more than twice what is left).
DORVUTIL_API bool IsPlausible(std::uint32_t count, std::size_t elementSize, std::uint32_t remaining);

}  // namespace dorvutil::detail
