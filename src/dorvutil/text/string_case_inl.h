#pragma once

#include <algorithm>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/text/basic_string.h"
#include "dorvutil/text/special_chars.h"
#include "dorvutil/text/string_widths.h"

/// TOrvString: case.
namespace dorvutil {
namespace casing {

inline bool Available(char) { return GetSpecCharMgr() != nullptr; }
inline bool Available(char16_t) { return true; }  // ASCII needs no tables

inline void Change(char* s, std::uint32_t n, bool lower) {
    const auto size = static_cast<std::int32_t>(n);
    lower ? SpecialChar_tolower(s, size, n) : SpecialChar_toupper(s, size, n);
}

inline void Change(char16_t* s, std::uint32_t n, bool lower) {
    if (lower) {
        std::transform(s, s + n, s, SpecialChar_towlower);
    } else {
        std::transform(s, s + n, s, SpecialChar_towupper);
    }
}

}  // namespace casing

// The case of a character never changes its number of units, so the length stays.
template <class T>
void TOrvString<T>::ChangeCase(bool lower) {
    const auto known = lower ? Guts::kLower : Guts::kUpper;
    if (m_guts == nullptr || (m_guts->m_flags & known) != 0 || !casing::Available(T{})) return;
    if (!unshare() || m_guts->m_capacity == 0) return;
    casing::Change(m_guts->m_data, m_guts->m_length, lower);
    const bool all = GetSpecCharMgr() != nullptr;  // without it only ASCII letters were changed
    m_guts->m_flags = static_cast<std::uint8_t>(all ? Guts::kChanged | known : Guts::kChanged);
}

template <class T>
void TOrvString<T>::to_lower() {
    ChangeCase(true);
}

template <class T>
void TOrvString<T>::to_upper() {
    ChangeCase(false);
}

// Character by character, as a byte out of place must not end the work here.
template <class T>
void TOrvString<T>::cap_all_words() {
    if (empty() || !casing::Available(T{}) || !unshare()) return;
    T* const text = m_guts->m_data;
    bool first = true;
    for (std::uint32_t i = 0, units = 0; i < m_guts->m_length; i += units) {
        units = widths::CharUnits(text + i, m_guts->m_length - i);
        casing::Change(text + i, units, !first);
        first = text[i] == ' ';
    }
    m_guts->Touch();
}

template <class T>
TOrvString<T> TOrvString<T>::to_lower_ret() const {
    TOrvString result(*this);
    result.to_lower();
    return result;
}

template <class T>
TOrvString<T> TOrvString<T>::to_upper_ret() const {
    TOrvString result(*this);
    result.to_upper();
    return result;
}

template <class T>
TOrvString<T> TOrvString<T>::cap_all_words_ret() const {
    TOrvString result(*this);
    result.cap_all_words();
    return result;
}

}  // namespace dorvutil
