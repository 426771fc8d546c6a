#pragma once

#include <cstdint>

#include "dorvutil/memory/list.h"

/// Containers that keep their elements sorted, and the deferral of that work.
namespace dorvutil {

/// The order a TSortedListMgr<T> takes when none is given: specialised next to T with
/// `static int Compare(T* const* a, T* const* b)`.
template <class T>
struct DefaultListOrder;

/// Likewise for TSortedVector<T>: `static int Compare(const T* a, const T* b)`.
template <class T>
struct DefaultVectorOrder;

template <>
struct DefaultVectorOrder<std::int32_t> {
    static int Compare(const std::int32_t* a, const std::int32_t* b) { return CompareByLong(a, b); }
};

/// While it lives, what is added to a sorted container is appended. When the outermost deferral ends, the container is
/// sorted once. Deferrals of one container end in the reverse order of their creation.
template <class C>
class SortDeferral {
public:
    explicit SortDeferral(C& container) : m_container(container), m_before(container.m_sortDeferred) {
        m_container.m_sortDeferred = true;
    }
    ~SortDeferral() {
        m_container.m_sortDeferred = m_before;
        if (!m_before) m_container.Sort();
    }
    SortDeferral(const SortDeferral&) = delete;
    SortDeferral& operator=(const SortDeferral&) = delete;

private:
    C& m_container;
    const bool m_before;
};

/// A ListMgr kept in the order of a comparison. Among equals the place of a new element is not defined.
template <class T>
class TSortedListMgr : protected ListMgr<T> {
    using List = ListMgr<T>;

public:
    using typename List::Compare;

    explicit TSortedListMgr(Compare compare = &DefaultListOrder<T>::Compare, bool ownsItems = true,
                            std::uint32_t chunkSize = 8)
        : List(ownsItems, chunkSize), m_compare(compare) {}

    /// Returns the new count, or -1 when the list cannot grow. An owning list of strings adds a copy.
    std::int32_t Add(T* item);
    /// Index of an element equal to `key`, with `first` the lowest, or kVectorNotFound. Needs a sorted list, as
    /// FindFirst.
    std::uint32_t BinSearch(const T* key, bool first) const { return List::BinSearch(key, first, m_compare); }
    bool FindFirst(const T* key, T*& found) const { return List::FindFirst(key, m_compare, found); }
    void Sort() { List::QSort(m_compare); }

    using List::operator[];
    using List::Capacity;
    using List::ChunkSize;
    using List::Count;
    using List::Data;
    using List::DeleteAt;
    using List::DeleteItem;
    using List::Detach;
    using List::Flush;
    using List::Iterate;
    using List::Last;
    using List::Name;
    using List::OwnsItems;
    using List::SetChunkSize;
    using List::SetName;
    using List::SetOwnsItems;
    using List::SetSize;

private:
    friend class SortDeferral<TSortedListMgr>;

    Compare m_compare;
    bool m_sortDeferred = false;
};

/// A TVector kept in the order of a comparison (signed 32-bit integers: CompareByLong unless another is given).
template <class T>
class TSortedVector : protected TVector<T> {
    using Vector = TVector<T>;

public:
    using typename Vector::Compare;

    explicit TSortedVector(Compare compare = &DefaultVectorOrder<T>::Compare) : m_compare(compare) {}

    /// Returns the new count, or -1 when the vector cannot grow.
    std::int32_t Add(const T& item);
    std::uint32_t BinSearch(const T& key, bool first) const { return Vector::BinSearch(key, first, m_compare); }
    bool FindFirst(const T& key, T*& found) const { return Vector::FindFirst(key, m_compare, found); }
    void Sort() { Vector::QSort(m_compare); }

    const T& operator[](std::uint32_t i) const { return Vector::operator[](i); }
    const T& Last() const { return Vector::Last(); }
    const T* Data() const { return Vector::Data(); }
    const T* begin() const { return Vector::begin(); }
    const T* end() const { return Vector::end(); }
    using Vector::Capacity;
    using Vector::ChunkSize;
    using Vector::Count;
    using Vector::DeleteAt;
    using Vector::Empty;
    using Vector::Flush;
    using Vector::Iterate;
    using Vector::Name;
    using Vector::SetChunkSize;
    using Vector::SetName;
    using Vector::SetSize;

private:
    friend class SortDeferral<TSortedVector>;

    Compare m_compare;
    bool m_sortDeferred = false;
};

template <class T>
std::int32_t TSortedListMgr<T>::Add(T* item) {
    if (m_sortDeferred) return List::Add(item);
    T* const stored = List::ItemToStore(item);
    if (item && !stored) return -1;
    if (List::Insert(stored, List::FindInsertionIndex(stored, false, m_compare)) < 0) {
        List::Unstore(stored, item);
        return -1;
    }
    return static_cast<std::int32_t>(Count());
}

template <class T>
std::int32_t TSortedVector<T>::Add(const T& item) {
    if (m_sortDeferred) return Vector::Add(item);
    if (Vector::Insert(item, Vector::FindInsertionIndex(item, false, m_compare)) < 0) return -1;
    return static_cast<std::int32_t>(Count());
}

}  // namespace dorvutil
