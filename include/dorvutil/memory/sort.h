#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

/// The sort behind TVector::QSort: quicksort that partitions without branches, falls back to heapsort when partitions
/// stay lopsided, and reads inside the array whatever the comparison answers. Not for direct use.
namespace dorvutil::detail {

template <class T>
class ElementSorter {
public:
    using Compare = int (*)(const T*, const T*);

    explicit ElementSorter(Compare compare) : m_compare(compare) {}

    void Sort(T* first, T* last) const {
        if (IsOneRun(first, last)) return;
        Quick(first, last, 2 * static_cast<int>(std::bit_width(static_cast<std::size_t>(last - first))), nullptr);
    }

private:
    static constexpr std::ptrdiff_t kInsertionLimit = 20;
    static constexpr std::ptrdiff_t kNintherLimit = 128;
    static constexpr bool kCheapMoves = sizeof(T) <= 4 * sizeof(void*);

    bool Less(const T& a, const T& b) const { return m_compare(&a, &b) < 0; }

    static void Swap(T& a, T& b) {
        const T held = a;
        a = b;
        b = held;
    }

    // Sorted input is left alone and strictly descending input reversed: both are common, and cost one pass.
    bool IsOneRun(T* first, T* last) const {
        T* p = first + 1;
        while (p < last && !Less(*p, *(p - 1))) ++p;
        if (p == last) return true;
        if (p != first + 1) return false;
        while (p < last && Less(*p, *(p - 1))) ++p;
        if (p != last) return false;
        for (T* high = last - 1; first < high; ++first, --high) Swap(*first, *high);
        return true;
    }

    void Insertion(T* first, T* last) const {
        for (T* next = first + 1; next < last; ++next) {
            if (!Less(*next, *(next - 1))) continue;
            const T held = *next;
            T* hole = next;
            do {
                *hole = *(hole - 1);
                --hole;
            } while (hole != first && Less(held, *(hole - 1)));
            *hole = held;
        }
    }

    T* Median(T* a, T* b, T* c) const {
        if (Less(*b, *a)) {
            T* const held = a;
            a = b;
            b = held;
        }
        if (!Less(*c, *b)) return b;
        return Less(*c, *a) ? a : c;
    }

    T* Pivot(T* first, T* last) const {
        const std::ptrdiff_t n = last - first;
        T* const middle = first + n / 2;
        if (n < kNintherLimit) return Median(first, middle, last - 1);
        const std::ptrdiff_t step = n / 8;
        return Median(Median(first, first + step, first + 2 * step), Median(middle - step, middle, middle + step),
                      Median(last - 1 - 2 * step, last - 1 - step, last - 1));
    }

    // Moves what sorts before `pivot` (with kEqual: not after it) to the front; returns where the rest starts. Every
    // element costs one comparison and no branch that depends on its answer.
    template <bool kEqual>
    T* Partition(T* first, T* last, const T& pivot) const {
        T* rest = first;
        for (T* p = first; p != last; ++p) {
            const int order = m_compare(p, &pivot);
            const bool front = kEqual ? order <= 0 : order < 0;
            if constexpr (kCheapMoves) {
                const T held = *p;
                *p = *rest;
                *rest = held;
                rest += front;
            } else if (front) {
                Swap(*p, *rest++);
            }
        }
        return rest;
    }

    // `before` is the element in front of the range, if any: nothing in the range sorts before it, so a pivot equal to
    // it is the least element, and all its equals are split off at once.
    void Quick(T* first, T* last, int depth, const T* before) const {
        while (last - first > kInsertionLimit) {
            if (depth-- == 0) return Heap(first, static_cast<std::size_t>(last - first));
            Swap(*first, *Pivot(first, last));
            const T pivot = *first;
            if (before && !Less(*before, pivot)) {
                first = Partition<true>(first + 1, last, pivot);
                continue;
            }
            T* const right = Partition<false>(first + 1, last, pivot);
            Swap(*first, *(right - 1));
            if (right - 1 - first < last - right) {  // recursion into the smaller part bounds the stack
                Quick(first, right - 1, depth, before);
                before = right - 1;
                first = right;
            } else {
                Quick(right, last, depth, right - 1);
                last = right - 1;
            }
        }
        Insertion(first, last);
    }

    void Sift(T* first, std::size_t root, std::size_t n) const {
        const T held = first[root];
        for (std::size_t child; (child = 2 * root + 1) < n; root = child) {
            if (child + 1 < n && Less(first[child], first[child + 1])) ++child;
            if (!Less(held, first[child])) break;
            first[root] = first[child];
        }
        first[root] = held;
    }

    void Heap(T* first, std::size_t n) const {
        for (std::size_t root = n / 2; root-- > 0;) Sift(first, root, n);
        while (n-- > 1) {
            Swap(first[0], first[n]);
            Sift(first, 0, n);
        }
    }

    Compare m_compare;
};

/// Sorts `n` elements by `compare`, not stably.
template <class T>
void SortElements(T* elements, std::uint32_t n, int (*compare)(const T*, const T*)) {
    if (n > 1) ElementSorter<T>(compare).Sort(elements, elements + n);
}

}  // namespace dorvutil::detail
