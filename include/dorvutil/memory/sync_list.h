#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/semaphore.h"
#include "dorvutil/concurrency/sync.h"
#include "dorvutil/memory/list.h"

/// Lists shared between threads.
namespace dorvutil {

/// A ListMgr whose every operation runs under its own lock (a TCompactSync<L>, which users may hold over several
/// operations). Two manual-reset events follow the count: items present (created cleared) and empty (created set). The
/// semaphore is released once for each element added without `noSignal` and once by a flush. Events and semaphore are
/// touched after the operation has left the lock. A list derived from this one that overrides DeleteItem calls
/// FlushItems in its own destructor.
template <class T, class L, bool kSignals = true>
class ListMgr_TS : protected ListMgr<T>, public TCompactSync<L> {
    static_assert(kSignals, "every list of this kind signals");
    using List = ListMgr<T>;

public:
    using typename List::Compare;

    explicit ListMgr_TS(bool ownsItems = true, std::uint32_t chunkSize = 8) : List(ownsItems, chunkSize) {
        m_empty.SignalEvent();
    }

    /// As ListMgr; `noSignal` leaves the semaphore alone.
    std::int32_t Add(T* item, bool noSignal = false) {
        return Adding(item, noSignal, [this](T* added) { return List::Add(added); });
    }
    std::int32_t Insert(T* item, std::uint32_t index, bool noSignal = false) {
        return Adding(item, noSignal, [this, index](T* added) { return List::Insert(added, index); });
    }
    /// Removes the first element and hands it to the caller; null when the list is empty. Leaves the semaphore alone.
    T* TakeFront();
    bool DeleteAt(std::uint32_t index);
    /// Disposes of all elements under the lock, frees the array and releases the semaphore once.
    void Flush();

    std::uint32_t Count() const {
        return Locked([this] { return List::Count(); });
    }
    /// Null when there is no such element. What comes back lives as long as the list holds it: hold the lock, or a
    /// reference of your own.
    T* operator[](std::uint32_t i) const {
        return Locked([this, i] { return List::operator[](i); });
    }
    T* Last() const {
        return Locked([this] { return List::Last(); });
    }
    bool FindFirst(const T* key, Compare compare, T*& found) const {
        return Locked([&] { return List::FindFirst(key, compare, found); });
    }
    void QSort(Compare compare) {
        Locked([&] { return List::QSort(compare); });
    }
    void Iterate(TIterator<T>& visitor) {
        Locked([&] { return List::Iterate(visitor); });
    }
    bool OwnsItems() const {
        return Locked([this] { return List::OwnsItems(); });
    }
    void SetOwnsItems(bool owns) {
        Locked([&] { return List::SetOwnsItems(owns); });
    }
    void SetChunkSize(std::uint32_t n) {
        Locked([&] { return List::SetChunkSize(n); });
    }
    void SetName(const char* name) {
        Locked([&] { return List::SetName(name); });
    }

    TSem<critSec>& Semaphore() { return m_semaphore; }
    const event& ItemsPresentEvent() const { return m_itemsPresent; }
    const event& EmptyEvent() const { return m_empty; }

protected:
    using List::FlushItems;

    /// Runs `change` under the lock, then brings the events up to date.
    template <class F>
    void Changing(F change);
    /// Runs `add` with `item` under the lock and signals when it gave no -1.
    template <class F>
    std::int32_t Adding(T* item, bool noSignal, F add);

private:
    template <class F>
    auto Locked(F operation) const {
        const TScopedLock<CBaseSync> lock(*this);
        return operation();
    }
    void Publish();

    TSem<critSec> m_semaphore;
    event m_itemsPresent{true};
    event m_empty{true};
    critSec m_eventLock;                   // keeps the events in step with the count; no other lock is taken under it
    std::atomic<std::uint32_t> m_held{0};  // the count; written under the list's lock, read under the events'
};

/// The same for reference-counted elements: takes a reference on every element it adds, and disposing drops one.
/// TakeFront hands the list's reference to the caller.
template <class T, class L, bool kSignals = true>
class ListMgr_TS_RC : protected ListMgr_TS<T, L, kSignals> {
    using List = ListMgr_TS<T, L, kSignals>;
    using Plain = ListMgr<T>;

public:
    using typename List::Compare;

    explicit ListMgr_TS_RC(bool ownsItems = true, std::uint32_t chunkSize = 8) : List(ownsItems, chunkSize) {}
    ~ListMgr_TS_RC() override { this->FlushItems(); }

    void DeleteItem(T* item) override { item->Unref(); }

    std::int32_t Add(T* item, bool noSignal = false) {
        return this->Adding(item, noSignal, [this](T* added) { return Referenced(added, Plain::Add(added)); });
    }
    std::int32_t Insert(T* item, std::uint32_t index, bool noSignal = false) {
        return this->Adding(item, noSignal,
                            [this, index](T* added) { return Referenced(added, Plain::Insert(added, index)); });
    }

    using List::operator[];
    using List::Count;
    using List::DeleteAt;
    using List::EmptyEvent;
    using List::Enter;
    using List::Exit;
    using List::FindFirst;
    using List::Flush;
    using List::ItemsPresentEvent;
    using List::Iterate;
    using List::Last;
    using List::Lock;
    using List::OwnsItems;
    using List::QSort;
    using List::Semaphore;
    using List::SetChunkSize;
    using List::SetName;
    using List::SetOwnsItems;
    using List::TakeFront;
    using List::TryLock;
    using List::Unlock;

private:
    // Still under the lock: nobody sees the element before the list's reference is on it.
    static std::int32_t Referenced(T* item, std::int32_t result) {
        if (item && result >= 0) item->Ref();
        return result;
    }
};

template <class T, class L, bool kSignals>
template <class F>
void ListMgr_TS<T, L, kSignals>::Changing(F change) {
    Locked([&] {
        change();
        m_held = List::Count();
    });
    Publish();
}

template <class T, class L, bool kSignals>
template <class F>
std::int32_t ListMgr_TS<T, L, kSignals>::Adding(T* item, bool noSignal, F add) {
    std::int32_t result = -1;
    Changing([&] { result = add(item); });
    if (result >= 0 && !noSignal) m_semaphore.Release(1);
    return result;
}

template <class T, class L, bool kSignals>
T* ListMgr_TS<T, L, kSignals>::TakeFront() {
    T* front = nullptr;
    Changing([&] {
        front = List::operator[](0);
        if (front) List::Detach(0);
    });
    return front;
}

template <class T, class L, bool kSignals>
bool ListMgr_TS<T, L, kSignals>::DeleteAt(std::uint32_t index) {
    bool deleted = false;
    Changing([&] { deleted = List::DeleteAt(index); });
    return deleted;
}

template <class T, class L, bool kSignals>
void ListMgr_TS<T, L, kSignals>::Flush() {
    Changing([&] {
        FlushItems();
        List::SetSize(0);
    });
    m_semaphore.Release(1);
}

// Two threads may arrive here in the other order than they changed the list. Both read the count as it is now, under a
// lock of their own, so the later one leaves the events as the list stands.
template <class T, class L, bool kSignals>
void ListMgr_TS<T, L, kSignals>::Publish() {
    const TScopedLock<critSec> lock(m_eventLock);
    if (m_held != 0) {
        m_empty.ClearEvent();
        m_itemsPresent.SignalEvent();
    } else {
        m_itemsPresent.ClearEvent();
        m_empty.SignalEvent();
    }
}

}  // namespace dorvutil
