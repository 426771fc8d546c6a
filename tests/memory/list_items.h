#pragma once

#include <cstdint>
#include <vector>

#include "dorvutil/concurrency/lockable.h"
#include "dorvutil/concurrency/locks.h"
#include "dorvutil/memory/list.h"

/// An element that logs its death and can be searched, hashed and queued by its key.
struct Item {
    explicit Item(std::int32_t key, std::int32_t serial = 0) : m_key(key), m_serial(serial) { ++s_alive; }
    Item(const Item& other) : m_key(other.m_key), m_serial(other.m_serial) { ++s_alive; }
    ~Item() {
        --s_alive;
        s_deaths.push_back(m_key);
    }

    std::uint32_t HashValue() const { return static_cast<std::uint32_t>(m_key); }
    const void* Key() const { return reinterpret_cast<const void*>(static_cast<std::intptr_t>(m_key)); }
    bool operator==(const Item& other) const { return m_key == other.m_key; }

    static int Compare(Item* const* a, Item* const* b) { return (*a)->m_key - (*b)->m_key; }
    static void Reset() {
        s_alive = 0;
        s_deaths.clear();
    }

    std::int32_t m_key;
    std::int32_t m_serial;
    static inline int s_alive = 0;
    static inline std::vector<std::int32_t> s_deaths;
};

/// A copied element, as the string types are.
struct TextItem : Item {
    using Item::Item;
};

template <>
inline constexpr bool dorvutil::kListCopiesItems<TextItem> = true;

/// A reference-counted element.
struct Shared : dorvutil::TLockable<dorvutil::critSec> {
    explicit Shared(std::int32_t key) : m_key(key) { ++s_alive; }
    ~Shared() override { --s_alive; }

    /// References held now.
    std::int32_t References() {
        Ref();
        return Unref();
    }

    std::int32_t m_key;
    static inline std::atomic<int> s_alive{0};
};
