#pragma once

#include <cstdint>
#include <new>

#include "dorvutil/memory/vector.h"

/// Lists of pointers to heap objects, owned or merely held.
namespace dorvutil {

/// True for element types whose owning lists store a copy of what is added to them instead of the pointer: the string
/// types, which set it next to their class.
template <class T>
inline constexpr bool kListCopiesItems = false;

/// A list of element pointers. With owns items set (the default) it disposes of an element that leaves it by deletion,
/// replacement or flushing; otherwise it forgets the pointer. DeleteItem says how: a derived list that overrides it
/// calls FlushItems in its own destructor. Not copied, not synchronised.
template <class T>
class ListMgr : protected TVector<T*> {
    using Vector = TVector<T*>;

public:
    using Compare = int (*)(T* const*, T* const*);

    explicit ListMgr(bool ownsItems = true, std::uint32_t chunkSize = 8) : m_ownsItems(ownsItems) {
        Vector::SetChunkSize(chunkSize);
    }
    ListMgr(const ListMgr&) = delete;
    ListMgr& operator=(const ListMgr&) = delete;
    virtual ~ListMgr() { FlushItems(); }

    /// Disposes of one element.
    virtual void DeleteItem(T* item) { delete item; }

    using Vector::Capacity;
    using Vector::ChunkSize;
    using Vector::Count;
    using Vector::Name;
    using Vector::SetChunkSize;
    using Vector::SetName;

    /// Null when there is no such element.
    T* operator[](std::uint32_t i) const { return static_cast<const Vector&>(*this)[i]; }
    T* Last() const { return Vector::Last(); }
    T** Data() { return Vector::Data(); }
    T* const* Data() const { return Vector::Data(); }
    bool OwnsItems() const { return m_ownsItems; }
    void SetOwnsItems(bool owns) { m_ownsItems = owns; }
    /// Sets the capacity to exactly `n`; elements from `n` on are disposed of.
    bool SetSize(std::uint32_t n);

    /// Appends; returns the new count, or -1 when the list cannot grow: an owning list then leaves `item` to the
    /// caller. An owning list of strings appends a copy and never takes `item` itself.
    std::int32_t Add(T* item);
    /// Inserts the pointer, filling a gap with nulls; returns `index`, or -1 as Add.
    std::int32_t Insert(T* item, std::uint32_t index) { return Vector::Insert(item, index); }
    /// Stores the pointer at `index`, disposing of the element there (unless it is the same). The list grows as needed;
    /// false, unchanged, when it cannot.
    bool Set(std::uint32_t index, T* item);
    /// Disposes of the element and removes its slot; false when there is no such slot.
    bool DeleteAt(std::uint32_t index);
    /// Removes the slot and hands the element to the caller; null when there is none.
    T* Detach(std::uint32_t index);
    /// Disposes of all elements in order; the array stays allocated.
    void Flush() { FlushItems(); }
    /// Moves all elements of `from` here. An empty list takes over `from`'s array and its owns-items flag (`from` then
    /// owns its items again); otherwise they are appended and the flags stay. False, unchanged, when it cannot grow.
    bool StealList(ListMgr& from);

    using Vector::QSort;
    /// The searches of TVector; the comparison is called with the key first.
    std::uint32_t BinSearch(const T* key, bool first, Compare compare) const {
        return Vector::BinSearch(const_cast<T*>(key), first, compare);
    }
    std::uint32_t FindInsertionIndex(const T* key, bool first, Compare compare) const {
        return Vector::FindInsertionIndex(const_cast<T*>(key), first, compare);
    }
    /// The first element equal to `key` in `found`; false and null when there is none.
    bool FindFirst(const T* key, Compare compare, T*& found) const {
        found = (*this)[BinSearch(key, true, compare)];
        return found != nullptr;
    }
    /// Index of the last slot that holds this pointer, or kVectorNotFound.
    std::uint32_t FindR(const T* item) const { return Vector::FindR(const_cast<T*>(item)); }
    /// Visits every non-null element in order.
    void Iterate(TIterator<T>& visitor) {
        for (std::uint32_t i = 0; i < Count(); ++i) visitor.Visit((*this)[i]);
    }

protected:
    void FlushItems();
    /// What Add stores: the item or, for an owning list of strings, a new copy (null when memory ran out).
    T* ItemToStore(T* item) const;
    /// Takes back what ItemToStore made of `item`.
    void Unstore(T* stored, T* item) {
        if (stored != item && stored) DeleteItem(stored);
    }

private:
    void Dispose(std::uint32_t index);

    bool m_ownsItems;
};

/// A list whose disposal of an element is dropping one reference (T is a TLockable). Adding takes no reference: it
/// takes over one that the caller holds.
template <class T>
class ListMgr_RC : protected ListMgr<T> {
    using List = ListMgr<T>;

public:
    using typename List::Compare;

    explicit ListMgr_RC(bool ownsItems = true, std::uint32_t chunkSize = 8) : List(ownsItems, chunkSize) {}
    ~ListMgr_RC() override { this->FlushItems(); }

    void DeleteItem(T* item) override { item->Unref(); }

    using List::operator[];
    using List::Add;
    using List::BinSearch;
    using List::Capacity;
    using List::ChunkSize;
    using List::Count;
    using List::Data;
    using List::DeleteAt;
    using List::Detach;
    using List::FindFirst;
    using List::FindInsertionIndex;
    using List::FindR;
    using List::Flush;
    using List::Insert;
    using List::Iterate;
    using List::Last;
    using List::Name;
    using List::OwnsItems;
    using List::QSort;
    using List::Set;
    using List::SetChunkSize;
    using List::SetName;
    using List::SetOwnsItems;
    using List::SetSize;
    bool StealList(ListMgr_RC& from) { return List::StealList(from); }
};

template <class T>
bool ListMgr<T>::SetSize(std::uint32_t n) {
    for (std::uint32_t i = n; i < Count(); ++i) Dispose(i);
    if (n < Count()) Vector::SetCount(n);
    return Vector::SetSize(n);
}

template <class T>
T* ListMgr<T>::ItemToStore(T* item) const {
    if constexpr (kListCopiesItems<T>) {
        if (m_ownsItems && item) return new (std::nothrow) T(*item);
    }
    return item;
}

template <class T>
std::int32_t ListMgr<T>::Add(T* item) {
    T* const stored = ItemToStore(item);
    if (item && !stored) return -1;
    const std::int32_t count = Vector::Add(stored);
    if (count < 0) Unstore(stored, item);
    return count;
}

// The slot is emptied first, so that a disposal that looks at the list does not meet a dying element.
template <class T>
void ListMgr<T>::Dispose(std::uint32_t index) {
    T* const item = (*this)[index];
    if (!item || !m_ownsItems) return;
    Data()[index] = nullptr;
    DeleteItem(item);
}

template <class T>
bool ListMgr<T>::Set(std::uint32_t index, T* item) {
    T* const old = (*this)[index];
    if (old && old == item) return true;
    Dispose(index);
    return Vector::Replace(item, index);
}

template <class T>
bool ListMgr<T>::DeleteAt(std::uint32_t index) {
    Dispose(index);
    return Vector::DeleteAt(index);
}

template <class T>
T* ListMgr<T>::Detach(std::uint32_t index) {
    T* const item = (*this)[index];
    Vector::DeleteAt(index);
    return item;
}

template <class T>
void ListMgr<T>::FlushItems() {
    for (std::uint32_t i = 0; i < Count(); ++i) Dispose(i);
    Vector::SetCount(0);
}

template <class T>
bool ListMgr<T>::StealList(ListMgr& from) {
    if (this == &from) return true;
    if (Count() == 0 && from.Count() != 0) {
        Vector::Transfer(from);
        m_ownsItems = from.m_ownsItems;
        from.m_ownsItems = true;
        return true;
    }
    if (Vector::Add(static_cast<const Vector&>(from)) < 0) return false;
    from.Vector::Empty();
    return true;
}

}  // namespace dorvutil
