#pragma once

/// Definitions of TVector's members; included by memory/vector.h alone.

namespace dorvutil {

template <class T>
TVector<T>::TVector(T* data, std::uint32_t count, bool ownsMemory, bool fourthFlag) : m_fourthFlag(fourthFlag) {
    std::memset(static_cast<void*>(&m_default), 0, sizeof(T));
    std::memset(static_cast<void*>(&m_scratch), 0, sizeof(T));
    SetChunkSize(count);
    if (!data) return;
    m_array.m_data = data;
    m_array.m_count = m_array.m_capacity = count;
    m_ownsMemory = ownsMemory;
}

template <class T>
TVector<T>::TVector(const ORVustring& path) : TVector() {
    ReadFromFile(path, false);
}

template <class T>
TVector<T>::TVector(const TVector& other)
    : m_scratch(other.m_default), m_name(other.m_name), m_private(other.m_private), m_fourthFlag(other.m_fourthFlag) {
    SetChunkSize(other.ChunkSize());
    CopyFrom(other);
}

template <class T>
TVector<T>& TVector<T>::operator=(const TVector& other) {
    if (this == &other) return *this;
    m_array.Release(m_ownsMemory);
    CopyFrom(other);
    return *this;
}

template <class T>
void TVector<T>::CopyFrom(const TVector& other) {
    m_default = other.m_default;
    m_fastFill = other.m_fastFill;
    m_ownsMemory = other.m_ownsMemory;
    if (m_ownsMemory) {
        m_array.CopyElements(other.m_array, sizeof(T));
        return;
    }
    m_array.m_data = other.m_array.m_data;
    m_array.m_count = other.m_array.m_count;
    m_array.m_capacity = other.m_array.m_capacity;
}

template <class T>
bool TVector<T>::SetSize(std::uint32_t n) {
    return m_ownsMemory && m_array.Resize(n, sizeof(T));
}

template <class T>
void TVector<T>::Empty() {
    m_array.Release(m_ownsMemory);
    m_ownsMemory = true;
}

template <class T>
void TVector<T>::Transfer(TVector& other) {
    if (this == &other) return;
    m_array.Release(m_ownsMemory);
    m_ownsMemory = true;
    if (other.m_array.m_data) {
        m_array.m_data = other.m_array.m_data;
        m_array.m_count = other.m_array.m_count;
        m_array.m_capacity = other.m_array.m_capacity;
        m_ownsMemory = other.m_ownsMemory;
    }
    other.m_array.Release(false);
    other.m_ownsMemory = true;
}

template <class T>
T& TVector<T>::Scratch() {
    m_scratch = m_default;
    return m_scratch;
}

template <class T>
void TVector<T>::SetDefault(const T& value) {
    m_default = value;
    m_fastFill = detail::IsUniform(&m_default, sizeof(T));
}

template <class T>
inline std::int32_t TVector<T>::Add(const T& item) {
    const T value = item;  // the caller's variable never leaves its register for the call below
    const std::uint32_t count = m_array.m_count;
    if (count >= m_array.m_capacity) [[unlikely]] {
        return m_array.Insert(&value, count, 1, Rule()) < 0 ? -1 : static_cast<std::int32_t>(count + 1);
    }
    Elements()[count] = value;
    m_array.m_count = count + 1;
    return static_cast<std::int32_t>(count + 1);
}

template <class T>
inline std::int32_t TVector<T>::Add(const T* items, std::uint32_t n) {
    if (n == 1 && items) return Add(*items);
    return m_array.Insert(items, Count(), n, Rule()) < 0 ? -1 : static_cast<std::int32_t>(Count());
}

template <class T>
std::int32_t TVector<T>::Insert(const T* items, std::uint32_t index, std::uint32_t n) {
    return m_array.Insert(items, index, n, Rule());
}

template <class T>
std::int32_t TVector<T>::Insert(const T& item, std::uint32_t index) {
    return m_array.Insert(&item, index, 1, Rule());
}

template <class T>
bool TVector<T>::Replace(const T* items, std::uint32_t index, std::uint32_t n) {
    return m_array.Replace(items, index, n, Rule());
}

template <class T>
bool TVector<T>::Replace(const T& item, std::uint32_t index) {
    return m_array.Replace(&item, index, 1, Rule());
}

template <class T>
bool TVector<T>::DeleteAt(std::uint32_t i) {
    if (i >= Count()) return false;
    m_array.Remove(i, 1, sizeof(T));
    return true;
}

template <class T>
bool TVector<T>::Shift(std::int32_t k) {
    return m_array.Shift(k, Rule());
}

template <class T>
void TVector<T>::Fill(const T& value) {
    const T copy = value;
    for (T& element : *this) element = copy;
}

template <class T>
void TVector<T>::Reverse() {
    if (Count() < 2) return;
    for (T *low = begin(), *high = end() - 1; low < high; ++low, --high) {
        const T held = *low;
        *low = *high;
        *high = held;
    }
}

template <class T>
bool TVector<T>::operator==(const TVector& other) const {
    if (this == &other) return true;
    if (Count() != other.Count()) return false;
    return Count() == 0 || std::memcmp(Elements(), other.Elements(), ByteCount()) == 0;
}

template <class T>
void TVector<T>::Iterate(TIterator<T>& visitor) {
    for (std::uint32_t i = 0; i < Count(); ++i) visitor.OnElement(Elements() + i);
}

}  // namespace dorvutil

#include "dorvutil/memory/vector_flat.h"
#include "dorvutil/memory/vector_search.h"
