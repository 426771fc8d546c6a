#pragma once

#include <cstring>
#include <string_view>

#include "dorvutil/text/basic_string.h"
#include "dorvutil/text/string_widths.h"

/// TOrvString: comparing and searching.
namespace dorvutil {
namespace search {

// As strcmp and strncmp: up to the terminator of either side.
inline std::int32_t CompareUnits(const char* a, const char* b) { return std::strcmp(a, b); }
inline std::int32_t CompareUnits(const char* a, const char* b, std::uint32_t n) { return std::strncmp(a, b, n); }
inline std::int32_t CompareUnits(const char16_t* a, const char16_t* b, std::uint32_t n = 0xFFFF'FFFFu) {
    for (std::uint32_t i = 0; i < n; ++i) {
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
        if (a[i] == 0) return 0;
    }
    return 0;
}

inline std::int32_t Position(std::size_t found) {
    return found == std::string_view::npos ? -1 : static_cast<std::int32_t>(found);
}

}  // namespace search

template <class T>
std::int32_t TOrvString<T>::compare(const T* other, bool ignoreCase, std::int32_t n) const {
    const bool otherEmpty = other == nullptr || *other == T{};
    if (empty()) return otherEmpty ? 0 : -1;
    if (otherEmpty) return 1;
    const T* const text = m_guts->m_data;
    const auto limit = static_cast<std::uint32_t>(n);
    if (ignoreCase) {
        return n < 0 ? widths::CompareNoCase(text, other) : widths::CompareNoCase(text, other, limit);
    }
    return n < 0 ? search::CompareUnits(text, other) : search::CompareUnits(text, other, limit);
}

template <class T>
std::int32_t TOrvString<T>::FindUnits(const T* s, std::size_t n, std::uint32_t start) const {
    return search::Position(std::basic_string_view<T>(m_guts->m_data, m_guts->m_length).find(s, start, n));
}

template <class T>
std::int32_t TOrvString<T>::FindNoCase(const T* s, std::uint32_t start) const {
    TOrvString text(m_guts->m_data + start, static_cast<std::int32_t>(m_guts->m_length - start));
    TOrvString pattern(s);
    if (text.m_guts == nullptr || pattern.m_guts == nullptr) return -1;
    text.to_lower();
    pattern.to_lower();
    const std::int32_t found = text.find(pattern.m_guts->m_data);
    return found < 0 ? -1 : found + static_cast<std::int32_t>(start);
}

template <class T>
std::int32_t TOrvString<T>::rfind(const T* s, bool ignoreCase) const {
    if (s == nullptr || empty()) return -1;
    const std::uint32_t n = widths::Length(s);
    if (n > m_guts->m_length) return -1;
    const T* const text = m_guts->m_data;
    if (!ignoreCase) {
        const std::basic_string_view<T> view(text, m_guts->m_length);
        return search::Position(view.rfind(s, m_guts->m_length - 1u, n));
    }
    const std::uint32_t characters = widths::CharCount(s, n);
    std::uint32_t pos = std::min(m_guts->m_length - 1u, m_guts->m_length - n);
    for (;; --pos) {
        if (widths::CompareNoCase(text + pos, s, characters) == 0) return static_cast<std::int32_t>(pos);
        if (pos == 0) return -1;
    }
}

template <class T>
std::int32_t TOrvString<T>::find_first_of(T c, std::uint32_t start) const {
    if (m_guts == nullptr || start > m_guts->m_length) return -1;
    return search::Position(std::basic_string_view<T>(m_guts->m_data, m_guts->m_length + 1u).find(c, start));
}

template <class T>
std::int32_t TOrvString<T>::find_first_of(const T* set, std::uint32_t start) const {
    if (set == nullptr || start >= length()) return -1;
    return search::Position(std::basic_string_view<T>(m_guts->m_data, m_guts->m_length).find_first_of(set, start));
}

template <class T>
std::int32_t TOrvString<T>::find_last_of(const T* set) const {
    if (set == nullptr || empty()) return -1;
    return search::Position(std::basic_string_view<T>(m_guts->m_data, m_guts->m_length).find_last_of(set));
}

template <class T>
std::int32_t TOrvString<T>::find_first_not_of(const T* set) const {
    if (set == nullptr || empty()) return -1;
    return search::Position(std::basic_string_view<T>(m_guts->m_data, m_guts->m_length).find_first_not_of(set));
}

template <class T>
std::int32_t TOrvString<T>::find_last_not_of(const T* set) const {
    if (set == nullptr || empty()) return -1;
    return search::Position(std::basic_string_view<T>(m_guts->m_data, m_guts->m_length).find_last_not_of(set));
}

template <class T>
bool TOrvString<T>::starts_with(const T* s, bool ignoreCase, std::int32_t n) const {
    if (empty() || s == nullptr || *s == T{} || n == 0) return false;
    const std::uint32_t count = n < 0 ? widths::Length(s) : static_cast<std::uint32_t>(n);
    if (m_guts->m_length < count) return false;
    if (!ignoreCase) return search::CompareUnits(m_guts->m_data, s, count) == 0;
    TOrvString prefix(m_guts->m_data, static_cast<std::int32_t>(count));
    std::uint32_t available = 0;
    while (available < count && s[available] != T{}) ++available;
    TOrvString other(s, static_cast<std::int32_t>(available));
    if (prefix.m_guts == nullptr || other.m_guts == nullptr) return false;
    prefix.to_lower();
    other.to_lower();
    return prefix == other;
}

template <class T>
bool TOrvString<T>::ends_with(const TOrvString& other) const {
    const std::uint32_t n = other.length();
    if (n == 0) return true;
    return length() >= n && widths::CompareNoCase(m_guts->m_data + (m_guts->m_length - n), other.m_guts->m_data) == 0;
}

}  // namespace dorvutil
