#pragma once

#include <algorithm>
#include <cstring>

#include "dorvutil/text/basic_string.h"
#include "dorvutil/text/string_hash.h"
#include "dorvutil/text/string_widths.h"

/// TOrvString: parts of the text, and what it consists of.
namespace dorvutil {

template <class T>
TOrvString<T> TOrvString<T>::substr(std::int32_t start, std::int32_t n) const {
    TOrvString result;
    if (m_guts == nullptr) return result;
    const auto from = static_cast<std::uint32_t>(start);
    const std::uint32_t left = start < 0 || from > m_guts->m_length ? 0 : m_guts->m_length - from;
    result.assignUnits(m_guts->m_data + (left == 0 ? 0 : from), std::min(left, widths::Limit(n, left)));
    return result;
}

// Makes the `n` units from `start` the whole text.
template <class T>
void TOrvString<T>::Keep(std::uint32_t start, std::uint32_t n) {
    assignUnits(m_guts->m_data + start, n);
}

template <class T>
TOrvString<T>& TOrvString<T>::substr_self(std::int32_t start, std::int32_t n) {
    if (m_guts == nullptr || start < 0) return *this;
    const auto from = static_cast<std::uint32_t>(start);
    const std::uint32_t all = m_guts->m_length;
    if (from > all) return *this;
    const std::uint32_t count = widths::Limit(n, all - from);
    if (count > all - from || (from == 0 && count == all)) return *this;
    Keep(from, count);
    return *this;
}

template <class T>
TOrvString<T> TOrvString<T>::strip() const {
    TOrvString result(*this);
    result.strip_self();
    return result;
}

template <class T>
TOrvString<T>& TOrvString<T>::strip_self() {
    if (empty()) return *this;
    const std::int32_t first = find_first_not_of(m_pWhitespace);
    if (first < 0) {
        Clear();
        return *this;
    }
    const std::int32_t last = find_last_not_of(m_pWhitespace);
    const auto count = static_cast<std::uint32_t>(last - first + 1);
    if (count != m_guts->m_length) Keep(static_cast<std::uint32_t>(first), count);
    return *this;
}

template <class T>
TOrvString<T> TOrvString<T>::common_starting_substring(const TOrvString& other) const {
    TOrvString result(*this);
    result.common_starting_substring_self(other);
    return result;
}

template <class T>
TOrvString<T>& TOrvString<T>::common_starting_substring_self(const TOrvString& other) {
    if (m_guts == nullptr || other.m_guts == nullptr) {
        Release(m_guts);
        m_guts = nullptr;
        return *this;
    }
    const std::uint32_t limit = std::min(length(), other.length());
    const T* const a = m_guts->m_data;
    const T* const b = other.m_guts->m_data;
    std::uint32_t same = 0;
    while (same < limit) {
        const std::uint32_t units = widths::CharUnits(a + same, length() - same);
        if (units > limit - same || units != widths::CharUnits(b + same, other.length() - same) ||
            std::memcmp(a + same, b + same, units * sizeof(T)) != 0)
            break;
        same += units;
    }
    if (same != length()) Keep(0, same);
    return *this;
}

template <class T>
bool TOrvString<T>::IsAscii7() const {
    const T* const text = Text();
    for (std::uint32_t i = 0; i < length(); ++i) {
        if (widths::Value(text[i]) >= 0x7F) return false;
    }
    return true;
}

template <class T>
bool TOrvString<T>::IsNumeric() const {
    const T* text = Text();
    const T* const end = text + length();
    if (text != end && (*text == '+' || *text == '-')) ++text;
    if (text == end) return false;
    return std::all_of(text, end, [](T c) { return c >= '0' && c <= '9'; });
}

template <class T>
bool TOrvString<T>::IsHex() const {
    if (m_guts == nullptr) return false;
    const T* text = m_guts->m_data;
    const T* const end = text + m_guts->m_length;
    if (m_guts->m_length >= 3 && text[0] == '0' && text[1] == 'x') text += 2;
    return std::all_of(text, end,
                       [](T c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); });
}

template <class T>
std::int32_t TOrvString<T>::num_lines() const {
    return 1 + static_cast<std::int32_t>(std::count(Text(), Text() + length(), T{'\n'}));
}

template <class T>
std::uint32_t TOrvString<T>::HashValue() const {
    return m_guts ? StrHashValue(m_guts->m_data, m_guts->m_length) : 0;
}

}  // namespace dorvutil
