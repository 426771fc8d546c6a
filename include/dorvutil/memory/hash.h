#pragma once

#include <cstdint>
#include <memory>
#include <new>

#include "dorvutil/concurrency/semaphore.h"
#include "dorvutil/concurrency/sync.h"
#include "dorvutil/memory/heap.h"
#include "dorvutil/memory/pool.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil {

/// Chained hash table of element pointers. T offers `std::uint32_t HashValue() const` and operator==. With owns items
/// set (the default) flushing disposes of the elements by DeleteItem; a derived table that overrides it calls Flush in
/// its own destructor. Buckets, and the node pool when one is asked for, are made at the first Add. Not copied, not
/// synchronised.
template <class T>
class TORVIHash {
public:
    explicit TORVIHash(std::uint32_t bucketCount = 63, bool useNodePool = false)
        : m_bucketCount(bucketCount), m_useNodePool(useNodePool) {}
    TORVIHash(const TORVIHash&) = delete;
    TORVIHash& operator=(const TORVIHash&) = delete;
    virtual ~TORVIHash();

    /// Disposes of one element.
    virtual void DeleteItem(T* item) { delete item; }

    /// Puts `item` in front of its chain: of equal elements the last one added is found. False, with the item left to
    /// the caller, for null, for a table without buckets and when memory runs out.
    bool Add(T* item);
    /// The element equal to `probe`, or null. It stays in the table.
    T* Find(const T& probe) const;
    void Flush();
    /// Visits every element: bucket by bucket, the last added of a bucket first.
    void Iterate(TIterator<T>& visitor);
    std::uint32_t Count() const { return m_count; }
    bool OwnsItems() const { return m_ownsItems; }
    void SetOwnsItems(bool owns) { m_ownsItems = owns; }

private:
    struct Node {
        T* m_item;
        Node* m_next;
    };

    bool Prepare();
    void FreeNode(Node* node);

    Node** m_buckets = nullptr;
    std::unique_ptr<Allocator> m_nodePool;
    std::uint32_t m_bucketCount;
    std::uint32_t m_count = 0;
    bool m_ownsItems = true;
    bool m_useNodePool;
    bool m_bucketsAllocated = false;
};

/// The same table with a lock for every operation (its CCustomSync base, which users may hold over several operations)
/// and a semaphore for its users; the table itself never releases it. What Find returns lives as long as it stays in
/// the table. A derived table that overrides DeleteItem calls Flush in its own destructor.
template <class T>
class TORVIHash_TS : protected TORVIHash<T>, public CCustomSync {
    using Table = TORVIHash<T>;

public:
    explicit TORVIHash_TS(std::uint32_t bucketCount = 63, bool useNodePool = false)
        : Table(bucketCount, useNodePool), CCustomSync(ts_critSec) {}

    using Table::DeleteItem;

    bool Add(T* item) {
        const TScopedLock<CBaseSync> lock(*this);
        return Table::Add(item);
    }
    T* Find(const T& probe) const {
        const TScopedLock<CBaseSync> lock(*this);
        return Table::Find(probe);
    }
    void Flush() {
        const TScopedLock<CBaseSync> lock(*this);
        Table::Flush();
    }
    void Iterate(TIterator<T>& visitor) {
        const TScopedLock<CBaseSync> lock(*this);
        Table::Iterate(visitor);
    }
    std::uint32_t Count() const {
        const TScopedLock<CBaseSync> lock(*this);
        return Table::Count();
    }
    bool OwnsItems() const {
        const TScopedLock<CBaseSync> lock(*this);
        return Table::OwnsItems();
    }
    void SetOwnsItems(bool owns) {
        const TScopedLock<CBaseSync> lock(*this);
        Table::SetOwnsItems(owns);
    }
    TSem<critSec>& Semaphore() { return m_semaphore; }

private:
    TSem<critSec> m_semaphore;
};

template <class T>
TORVIHash<T>::~TORVIHash() {
    Flush();
    Mem_Free(m_buckets);
}

template <class T>
bool TORVIHash<T>::Prepare() {
    if (!m_bucketsAllocated && m_bucketCount != 0) {
        m_buckets = static_cast<Node**>(Mem_Calloc(m_bucketCount, sizeof(Node*)));
        m_bucketsAllocated = m_buckets != nullptr;
    }
    if (m_useNodePool && !m_nodePool) {
        m_nodePool.reset(new (std::nothrow) Allocator(sizeof(Node), ts_nullSync, 4096, nullptr, false, false));
        m_useNodePool = m_nodePool != nullptr;  // nodes never mix: without a pool they come from the heap from now on
    }
    return m_bucketsAllocated;
}

template <class T>
bool TORVIHash<T>::Add(T* item) {
    if (!item || !Prepare()) return false;
    void* const memory = m_nodePool ? m_nodePool->Alloc() : Mem_Malloc(sizeof(Node));
    if (!memory) return false;
    Node*& bucket = m_buckets[item->HashValue() % m_bucketCount];
    bucket = new (memory) Node{item, bucket};
    ++m_count;
    return true;
}

template <class T>
T* TORVIHash<T>::Find(const T& probe) const {
    if (!m_bucketsAllocated) return nullptr;
    for (const Node* node = m_buckets[probe.HashValue() % m_bucketCount]; node; node = node->m_next) {
        if (*node->m_item == probe) return node->m_item;
    }
    return nullptr;
}

template <class T>
void TORVIHash<T>::FreeNode(Node* node) {
    if (m_nodePool) {
        m_nodePool->Free(node);
    } else {
        Mem_Free(node);
    }
}

template <class T>
void TORVIHash<T>::Flush() {
    for (std::uint32_t i = 0; m_bucketsAllocated && i < m_bucketCount; ++i) {
        while (Node* const node = m_buckets[i]) {
            m_buckets[i] = node->m_next;
            T* const item = node->m_item;
            FreeNode(node);
            if (m_ownsItems) DeleteItem(item);
        }
    }
    m_count = 0;
}

template <class T>
void TORVIHash<T>::Iterate(TIterator<T>& visitor) {
    for (std::uint32_t i = 0; m_bucketsAllocated && i < m_bucketCount; ++i) {
        for (Node* node = m_buckets[i]; node; node = node->m_next) visitor.Visit(node->m_item);
    }
}

}  // namespace dorvutil
