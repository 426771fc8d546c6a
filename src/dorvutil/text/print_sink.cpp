#include <algorithm>
#include <cstring>

#include "dorvutil/text/print_engine.h"

namespace dorvutil::print {

template <class T>
T* Sink<T>::Extend(std::uint64_t n) {
    constexpr std::uint32_t kLongest = StringGuts<T>::kMaxCapacity;
    if (n > kLongest - m_length) return nullptr;
    const std::uint32_t wanted = m_length + static_cast<std::uint32_t>(n);
    if (wanted > m_capacity) {
        const std::uint32_t capacity = std::min(kLongest, std::max(wanted, 2 * m_capacity));
        auto* const grown = static_cast<T*>(Mem_Realloc(m_heap, capacity * sizeof(T)));
        if (grown == nullptr) return nullptr;
        if (m_heap == nullptr) std::memcpy(grown, m_stack, m_length * sizeof(T));
        m_heap = grown;
        m_capacity = capacity;
    }
    T* const place = (m_heap ? m_heap : m_stack) + m_length;
    m_length = wanted;
    return place;
}

template <class T>
bool Sink<T>::Append(const T* units, std::uint32_t n) {
    T* const place = Extend(n);
    if (place && n != 0) std::memcpy(place, units, n * sizeof(T));
    return place != nullptr;
}

template <class T>
bool Sink<T>::Fill(std::uint64_t n, char c) {
    T* const place = Extend(n);
    if (place) std::fill_n(place, n, static_cast<T>(c));
    return place != nullptr;
}

template class Sink<char>;
template class Sink<char16_t>;

}  // namespace dorvutil::print
