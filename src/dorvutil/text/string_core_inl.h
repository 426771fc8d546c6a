#pragma once

#include <algorithm>
#include <cstring>

#include "dorvutil/text/basic_string.h"

/// TOrvString: the handle on the block. Included by basic_string.cpp alone, as all of its kind.
namespace dorvutil {

template <class T>
StringGuts<T>* TOrvString<T>::ShareByCopy(const Guts& guts) {
    return Guts::CreateCopy(guts, guts.m_length);
}

template <class T>
StringGuts<T>* TOrvString<T>::ShareUnwatched(const TOrvString& other) {
    const Guts* const guts = other.m_guts;
    const bool watched = guts && guts->m_references > 1 && (guts->m_flags & Guts::kChanged) != 0;
    return watched ? ShareByCopy(*guts) : Share(guts);
}

template <class T>
StringGuts<T>* TOrvString<T>::StealUnwatched(TOrvString& other) {
    const Guts* const guts = other.m_guts;
    const bool watched = guts && guts->m_references > 1 && (guts->m_flags & Guts::kChanged) != 0;
    return watched ? ShareByCopy(*guts) : Steal(other);
}

template <class T>
TOrvString<T>& TOrvString<T>::operator=(const TOrvString& other) {
    if (other.m_guts != nullptr) {
        assignUnits(other.m_guts->m_data, other.m_guts->m_length);
    } else {
        Release(m_guts);
        m_guts = nullptr;
    }
    return *this;
}

template <class T>
void TOrvString<T>::share(const Guts* guts) {
    Guts* const taken = Share(guts);
    if (taken == nullptr && guts != nullptr) return;  // no memory for the copy
    Release(m_guts);
    m_guts = taken;
}

template <class T>
bool TOrvString<T>::unshare() {
    if (m_guts == nullptr || m_guts->Private()) return true;
    Guts* const own = m_guts->takeback();
    if (own == nullptr) return false;
    m_guts = own;
    return true;
}

template <class T>
bool TOrvString<T>::re_alloc(std::uint32_t n) {
    Guts* const block = Guts::re_alloc(m_guts, n);
    if (block == nullptr) return false;
    m_guts = block;
    return true;
}

template <class T>
void TOrvString<T>::Clear() {
    if (m_guts && m_guts->Private()) {
        m_guts->SetLength(0);
        m_guts->Touch();
        return;
    }
    Release(m_guts);
    m_guts = Guts::Empty();
}

template <class T>
bool TOrvString<T>::resize(std::uint32_t n) {
    if (n == 0) {
        Clear();
        return true;
    }
    if (!re_alloc(n)) return false;
    m_guts->SetLength(n);  // what lies behind a text is zero already
    m_guts->m_flags |= Guts::kChanged;
    return true;
}

template <class T>
void TOrvString<T>::SetText(std::uint32_t length) {
    if (m_guts->m_capacity == 0) return;
    m_guts->m_length = static_cast<std::uint16_t>(length);
    m_guts->zerofill();
    m_guts->Touch();
}

// A source inside this string's own block is read before the block goes.
template <class T>
bool TOrvString<T>::assignUnits(const T* s, std::uint64_t n) {
    const std::uint32_t capacity = Guts::CapacityFor(n);
    if (capacity == Guts::kNoCapacity) return false;
    if (n == 0) {
        Clear();
        return true;
    }
    const auto length = static_cast<std::uint32_t>(n);
    if (m_guts && m_guts->m_capacity >= capacity && m_guts->Private()) {
        std::memmove(m_guts->m_data, s, length * sizeof(T));
        m_guts->SetLength(length);
        m_guts->Touch();
        return true;
    }
    Guts* const block = Guts::CreateUnfilled(capacity, length);
    if (block == nullptr) return false;
    std::memcpy(block->m_data, s, length * sizeof(T));
    Release(m_guts);
    m_guts = block;
    return true;
}

template <class T>
bool TOrvString<T>::assign(const T* s, std::int32_t n) {
    if (s == nullptr || n == 0 || *s == T{}) return assignUnits(s, 0);
    return assignUnits(s, n < 0 ? LengthOf(s) : static_cast<std::uint32_t>(n));
}

template <class T>
bool TOrvString<T>::assign(T c) {
    return assignUnits(&c, c == T{} ? 0 : 1);
}

template <class T>
bool TOrvString<T>::concat(const T* s, std::int32_t n) {
    if (s == nullptr) return false;
    const std::uint64_t count = n < 0 ? LengthOf(s) : static_cast<std::uint32_t>(n);
    const std::uint32_t old = length();
    const std::uint32_t capacity = Guts::CapacityFor(old + count);
    if (capacity == Guts::kNoCapacity) return false;
    const auto total = static_cast<std::uint32_t>(old + count);
    if (m_guts && m_guts->m_capacity >= capacity && m_guts->Private()) {
        std::memmove(m_guts->m_data + old, s, count * sizeof(T));
        m_guts->m_length = static_cast<std::uint16_t>(total);
        m_guts->Touch();
        return true;
    }
    Guts* const block = Guts::CreateUnfilled(capacity, total);
    if (block == nullptr) return false;
    if (old != 0) std::memcpy(block->m_data, m_guts->m_data, old * sizeof(T));
    if (count != 0) std::memcpy(block->m_data + old, s, count * sizeof(T));
    Release(m_guts);
    m_guts = block;
    return true;
}

template <class T>
bool TOrvString<T>::append(const TOrvString& s, std::int32_t n) {
    if (s.m_guts == nullptr) return true;
    const std::uint32_t all = s.m_guts->m_length;
    const std::uint32_t count = n < 0 ? all : std::min(all, static_cast<std::uint32_t>(n));
    return concat(s.m_guts->m_data, static_cast<std::int32_t>(count));
}

}  // namespace dorvutil
