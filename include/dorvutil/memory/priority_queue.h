#pragma once

#include <cstdint>

#include "dorvutil/concurrency/semaphore.h"
#include "dorvutil/concurrency/sync.h"
#include "dorvutil/memory/list.h"

namespace dorvutil {

/// Queue of work units, at most one for each key unless duplicates are allowed. T offers `const void* Key() const`. Any
/// thread; every operation runs under the queue's lock. The semaphore, released after the lock, counts insertions and
/// removals by key.
template <class T>
class PriorityQueue_TS : protected ListMgr<T>, public CCustomSync {
    using List = ListMgr<T>;

public:
    explicit PriorityQueue_TS(std::uint32_t chunkSize = 32) : List(true, chunkSize), CCustomSync(ts_critSec) {}

    /// Takes the unit over in any case and returns its index, or -1 when it was disposed of. When a unit with its key
    /// waits and duplicates are not allowed, it takes that one's place (which is disposed of; no release) or, with
    /// replacement off, is disposed of itself.
    std::int32_t Add(T* unit);
    /// Removes the first unit and hands it to the caller; null when there is none.
    T* TakeFront() {
        const TScopedLock<CBaseSync> lock(*this);
        return List::operator[](0) ? List::Detach(0) : nullptr;
    }
    /// Disposes of the first unit with this key and releases the semaphore once; false when there is none.
    bool RemoveByKey(const void* key);
    void Flush() {
        const TScopedLock<CBaseSync> lock(*this);
        List::Flush();
    }
    std::uint32_t Count() const {
        const TScopedLock<CBaseSync> lock(*this);
        return List::Count();
    }
    TSem<critSec>& Semaphore() { return m_semaphore; }

    /// Set these before units are added.
    void SetAllowDuplicates(bool allow) { m_allowDuplicates = allow; }
    void SetReplaceDuplicate(bool replace) { m_replaceDuplicate = replace; }

private:
    std::uint32_t IndexOf(const void* key) const;
    std::int32_t Place(T* unit, bool& inserted);

    TSem<critSec> m_semaphore;
    bool m_allowDuplicates = false;
    bool m_replaceDuplicate = true;
};

template <class T>
std::uint32_t PriorityQueue_TS<T>::IndexOf(const void* key) const {
    for (std::uint32_t i = 0; i < List::Count(); ++i) {
        const T* const unit = List::operator[](i);
        if (unit && unit->Key() == key) return i;
    }
    return kVectorNotFound;
}

template <class T>
std::int32_t PriorityQueue_TS<T>::Place(T* unit, bool& inserted) {
    const TScopedLock<CBaseSync> lock(*this);
    const std::uint32_t same = m_allowDuplicates ? kVectorNotFound : IndexOf(unit->Key());
    if (same != kVectorNotFound) {
        if (!m_replaceDuplicate) return -1;
        List::Set(same, unit);
        return static_cast<std::int32_t>(same);
    }
    std::uint32_t position = 0;
    while (position < List::Count() && List::operator[](position)) ++position;
    const std::int32_t index = List::Insert(unit, position);
    inserted = index >= 0;
    return index;
}

template <class T>
std::int32_t PriorityQueue_TS<T>::Add(T* unit) {
    if (!unit) return -1;
    bool inserted = false;
    const std::int32_t index = Place(unit, inserted);
    if (inserted) m_semaphore.Release(1);
    if (index < 0) List::DeleteItem(unit);
    return index;
}

template <class T>
bool PriorityQueue_TS<T>::RemoveByKey(const void* key) {
    Enter();
    const bool removed = List::DeleteAt(IndexOf(key));
    Exit();
    if (removed) m_semaphore.Release(1);
    return removed;
}

}  // namespace dorvutil
