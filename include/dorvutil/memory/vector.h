#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/iterator.h"
#include "dorvutil/memory/vector_storage.h"

namespace dorvutil {

class COrvFileHandleBase;
class ORVustring;

/// What every search that finds nothing returns.
inline constexpr std::uint32_t kVectorNotFound = 0x7FFFFFFFu;

/// Growable array of plain values (trivially copyable: elements are moved as bytes, never constructed), with a default
/// value that stands in for missing elements. It can wrap memory it does not own: such a vector is never resized, and
/// what would need room fails.
///
/// Growth: from the larger of capacity and chunk size by one half (8, 12, 18, 27, 41 …), to at most 0x7FFFFFFF
/// elements. New slots below the count take the default value. Growth moves the array: element pointers become invalid.
/// Source items may lie inside the vector itself. Failures leave the vector unchanged unless stated. Not synchronised.
template <class T>
class TVector {
    static_assert(std::is_trivially_copyable_v<T>, "elements are moved as bytes");

public:
    /// Negative, zero, positive: the first argument sorts before, with, after the second.
    using Compare = int (*)(const T*, const T*);

    /// Empty, or adopting `data` (`count` elements, capacity the same; when owned it must come from Mem_Malloc). The
    /// chunk size is `count`, or 8 for 0. `fourthFlag` is kept and copied, nothing reads it.
    explicit TVector(T* data = nullptr, std::uint32_t count = 0, bool ownsMemory = true, bool fourthFlag = false);
    /// The contents of a file; empty when it cannot be read.
    explicit TVector(const ORVustring& path);
    /// Copies the elements when `other` owns them (capacity = count; empty when memory runs out), else shares its array
    /// without owning it.
    TVector(const TVector& other);
    /// As the copy constructor, but chunk size, name, private and fourth flag stay. `other` must not wrap this vector's
    /// own array.
    TVector& operator=(const TVector& other);
    ~TVector() { m_array.Release(m_ownsMemory); }

    std::uint32_t Count() const { return m_array.m_count; }
    std::uint32_t Capacity() const { return m_array.m_capacity; }
    std::size_t ByteCount() const { return std::size_t{m_array.m_count} * sizeof(T); }
    /// Sets the capacity to exactly `n`, cutting the count when it is larger; 0 frees the array. False when not owning
    /// or out of memory.
    bool SetSize(std::uint32_t n);
    /// Shrinks the capacity to the count.
    bool SetSize() { return SetSize(Count()); }
    /// The least capacity of the first growth; 0 is ignored.
    void SetChunkSize(std::uint32_t n) {
        if (n != 0) m_array.m_chunkSize = n;
    }
    std::uint32_t ChunkSize() const { return m_array.m_chunkSize; }
    /// Frees an owned array; the vector is then empty and owning.
    void Empty();
    void Flush() { Empty(); }  ///< The same as Empty.
    /// Takes over `other`'s array with count, capacity and ownership; `other` is then empty and owning.
    void Transfer(TVector& other);

    /// The default value stands in for a missing element. Writing through the non-const forms to a missing element
    /// writes to a scratch value and is lost.
    const T& operator[](std::uint32_t i) const { return i < Count() ? Elements()[i] : m_default; }
    T& operator[](std::uint32_t i) { return i < Count() ? Elements()[i] : Scratch(); }
    const T& Last() const { return (*this)[Count() - 1]; }
    T& Last() { return (*this)[Count() - 1]; }
    const T& Default() const { return m_default; }
    /// Also sets fast fill to whether all bytes of `value` are equal.
    void SetDefault(const T& value);
    T* Data() { return Elements(); }
    const T* Data() const { return Elements(); }
    T* begin() { return Elements(); }
    T* end() { return Elements() + Count(); }
    const T* begin() const { return Elements(); }
    const T* end() const { return Elements() + Count(); }

    /// Appends; returns the new count, or -1 when the vector cannot grow.
    std::int32_t Add(const T& item);
    std::int32_t Add(const T* items, std::uint32_t n);
    std::int32_t Add(const TVector& items) { return Add(items.Elements(), items.Count()); }
    /// Inserts before `index`, filling a gap behind the count with the default; returns `index`, or -1 when the vector
    /// cannot grow.
    std::int32_t Insert(const T* items, std::uint32_t index, std::uint32_t n);
    std::int32_t Insert(const T& item, std::uint32_t index);
    std::int32_t Insert(const TVector& items, std::uint32_t index) {
        return Insert(items.Elements(), index, items.Count());
    }
    std::int32_t InsertAt(std::uint32_t index, const T& item) { return Insert(item, index); }
    /// Overwrites from `index` on, growing the count as needed; from the capacity on the same as Insert. False, with
    /// nothing changed, when the vector cannot grow.
    bool Replace(const T* items, std::uint32_t index, std::uint32_t n);
    bool Replace(const T& item, std::uint32_t index);
    bool DeleteAt(std::uint32_t i);  ///< False when there is no element `i`.
    /// Moves the elements up by `k`, the gap taking the default (false when it cannot grow), or down by -`k`, dropping
    /// the first ones (false when empty). 0 gives true.
    bool Shift(std::int32_t k);
    void Fill(const T& value);  ///< Overwrites every element in use.
    void Reverse();

    /// Sorts, not stably, in n log n comparisons at worst. Any function is safe, an inconsistent one gives some order.
    void QSort(Compare compare);
    /// Index of an element equal to `key` in a vector sorted by `compare`: the one bisection meets, or with `first` the
    /// lowest one. `compare` is called with the key first.
    std::uint32_t BinSearch(const T& key, bool first, Compare compare) const;
    /// Address of the first element equal to `key`, in `found`; false and null when there is none.
    bool FindFirst(const T& key, Compare compare, T*& found) const;
    /// Where `key` keeps a sorted vector sorted: at an equal element (the one met, or with `first` the lowest), else
    /// before the first greater one.
    std::uint32_t FindInsertionIndex(const T& key, bool first, Compare compare) const;
    /// Index of the last element with the same bytes as `value`.
    std::uint32_t FindR(const T& value) const;
    /// Sorts and keeps the first of each group of equals (`equal` null: by `sort`); the capacity is cut to the rest
    /// when anything went.
    void RemoveDuplicates(Compare sort, Compare equal);
    /// Sorts both vectors and removes every element here that compares equal to one of `other`.
    void RemoveOverlap(Compare compare, TVector& other);
    /// Sorts and removes every element that occurs more than once.
    void RemoveOverlap(Compare compare);
    bool operator==(const TVector& other) const;  ///< Same count and same bytes.
    /// Visits every element in order.
    void Iterate(TIterator<T>& visitor);

    void SetName(const char* name) { m_name = name; }  ///< The pointer is kept as it is.
    const char* Name() const { return m_name; }
    void SetOwnsMemory(bool owns) { m_ownsMemory = owns; }
    bool OwnsMemory() const { return m_ownsMemory; }
    void SetFastFill(bool fast) { m_fastFill = fast; }
    bool FastFill() const { return m_fastFill; }
    void SetPrivate(bool isPrivate) { m_private = isPrivate; }  ///< Kept and flattened; no operation acts on it.
    bool Private() const { return m_private; }

    /// Writes the elements from `start`, `n` of them (0, or beyond the end: to the end), as one block. False when there
    /// is no handle, no such element, or not all bytes were written.
    bool WriteToFile(COrvFileHandleBase* handle, std::uint32_t start, std::uint32_t n) const;
    /// An empty vector leaves the file alone and gives true.
    bool WriteToFile(const ORVustring& path, bool append) const;
    /// Reads `n` elements (0: all that are left) behind the present ones or in their place; capacity becomes the count.
    /// On a short read false: the count stays and what was not read whole takes the default.
    bool ReadFromFile(COrvFileHandleBase* handle, std::uint32_t n, bool append);
    bool ReadFromFile(const ORVustring& path, bool append);

    /// The flattened header, in the machine's byte order without padding: default value, fast fill (1 byte), chunk size
    /// (4), private (1), capacity (4), count (4).
    bool FlattenMeAdmin(COrvFileHandleBase* handle) const;
    /// Takes over a header (its default value only without `keepDefault`), growing or cutting to its count. False, and
    /// unchanged, when it cannot be read whole; false and empty when its sizes cannot be had. A wrapped array is let
    /// go.
    bool UnflattenMeAdmin(COrvFileHandleBase* handle, bool keepDefault);
    /// Header and elements. Reading does nothing on a handle of length 0 and leaves the vector empty when the elements
    /// are not all there.
    bool FlattenMe(COrvFileHandleBase* handle) const;
    bool UnflattenMe(COrvFileHandleBase* handle);
    /// The same bytes, element by element.
    bool FlattenMeByItem(COrvFileHandleBase* handle) const;
    bool UnflattenMeByItem(COrvFileHandleBase* handle);

protected:
    /// Cuts the count, or grows it with default values; false when it cannot grow.
    bool SetCount(std::uint32_t n) { return m_array.SetCount(n, Rule()); }

private:
    static constexpr std::size_t kFlatBytes = sizeof(T) + detail::FlatHeader::kBytes;

    T* Elements() const { return static_cast<T*>(m_array.m_data); }
    detail::ElementRule Rule() const { return {sizeof(T), &m_default, m_fastFill, m_ownsMemory}; }
    T& Scratch();
    void CopyFrom(const TVector& other);
    std::uint32_t FirstEqual(const T& key, std::uint32_t low, std::uint32_t match, Compare compare) const;
    std::uint32_t Bisect(const T& key, bool first, Compare compare, bool& found) const;
    bool ApplyHeader(const unsigned char* bytes, bool keepDefault);
    bool ReadHeader(COrvFileHandleBase* handle, bool keepDefault, bool elementsFollow);

    detail::VectorArray m_array;
    T m_default;
    T m_scratch;
    const char* m_name = "unnamed";
    bool m_ownsMemory = true;
    bool m_fastFill = true;
    bool m_private = false;
    bool m_fourthFlag = false;
};

/// Orders signed 32-bit integers.
DORVUTIL_API int CompareByLong(const std::int32_t* a, const std::int32_t* b);

}  // namespace dorvutil

#include "dorvutil/memory/vector_inl.h"

namespace dorvutil {
extern template class DORVUTIL_API TVector<std::uint32_t>;
}  // namespace dorvutil
