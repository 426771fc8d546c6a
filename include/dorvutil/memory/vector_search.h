#pragma once

/// TVector's sorting, searching and set members; included by memory/vector.h.
#include "dorvutil/memory/sort.h"

namespace dorvutil {

template <class T>
void TVector<T>::QSort(Compare compare) {
    detail::SortElements(Elements(), Count(), compare);
}

// Steps back from a match to the lowest equal element; bisects, because runs of equals can be long.
template <class T>
std::uint32_t TVector<T>::FirstEqual(const T& key, std::uint32_t low, std::uint32_t match, Compare compare) const {
    const T* const elements = Elements();
    while (match > low && compare(&key, elements + match - 1) == 0) {
        --match;
        const std::uint32_t mid = low + (match - low) / 2;
        if (compare(&key, elements + mid) == 0) {
            match = mid;
        } else {
            low = mid + 1;
        }
    }
    return match;
}

// The index of a match (with `first` the lowest), or where the key would go.
template <class T>
std::uint32_t TVector<T>::Bisect(const T& key, bool first, Compare compare, bool& found) const {
    const T* const elements = Elements();
    std::uint32_t low = 0;
    std::uint32_t end = Count();
    found = false;
    while (low < end) {
        const std::uint32_t mid = low + (end - 1 - low) / 2;
        const int order = compare(&key, elements + mid);
        if (order == 0) {
            found = true;
            return first ? FirstEqual(key, low, mid, compare) : mid;
        }
        // Selections, not branches: which half comes next is a coin toss that no predictor wins.
        end = order < 0 ? mid : end;
        low = order < 0 ? low : mid + 1;
    }
    return end;
}

template <class T>
std::uint32_t TVector<T>::BinSearch(const T& key, bool first, Compare compare) const {
    bool found = false;
    const std::uint32_t index = Bisect(key, first, compare, found);
    return found ? index : kVectorNotFound;
}

template <class T>
bool TVector<T>::FindFirst(const T& key, Compare compare, T*& found) const {
    const std::uint32_t index = BinSearch(key, true, compare);
    found = index == kVectorNotFound ? nullptr : Elements() + index;
    return found != nullptr;
}

template <class T>
std::uint32_t TVector<T>::FindInsertionIndex(const T& key, bool first, Compare compare) const {
    bool found = false;
    return Bisect(key, first, compare, found);
}

template <class T>
std::uint32_t TVector<T>::FindR(const T& value) const {
    for (std::uint32_t i = Count(); i-- > 0;) {
        if (std::memcmp(Elements() + i, &value, sizeof(T)) == 0) return i;
    }
    return kVectorNotFound;
}

template <class T>
void TVector<T>::RemoveDuplicates(Compare sort, Compare equal) {
    if (Count() < 2) return;
    if (!equal) equal = sort;
    QSort(sort);
    T* const elements = Elements();
    std::uint32_t last = 0;
    for (std::uint32_t r = 1; r < Count(); ++r) {
        if (equal(elements + r, elements + last) != 0) elements[++last] = elements[r];
    }
    if (last + 1 == Count()) return;
    m_array.m_count = last + 1;
    SetSize();
}

template <class T>
void TVector<T>::RemoveOverlap(Compare compare, TVector& other) {
    QSort(compare);
    if (this == &other) {
        m_array.m_count = 0;
        return;
    }
    other.QSort(compare);
    T* const mine = Elements();
    const T* const theirs = other.Elements();
    std::uint32_t kept = 0;
    std::uint32_t i = 0;
    for (std::uint32_t j = 0; i < Count() && j < other.Count();) {
        const int order = compare(mine + i, theirs + j);
        if (order < 0) mine[kept++] = mine[i];
        if (order <= 0) {
            ++i;
        } else {
            ++j;
        }
    }
    m_array.Remove(kept, i - kept, sizeof(T));
}

template <class T>
void TVector<T>::RemoveOverlap(Compare compare) {
    if (Count() < 2) return;
    QSort(compare);
    T* const elements = Elements();
    std::uint32_t kept = 0;
    for (std::uint32_t run = 0, end; run < Count(); run = end) {
        end = run + 1;
        while (end < Count() && compare(elements + run, elements + end) == 0) ++end;
        if (end - run == 1) elements[kept++] = elements[run];
    }
    m_array.m_count = kept;
}

}  // namespace dorvutil
