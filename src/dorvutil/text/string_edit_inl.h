#pragma once

#include <algorithm>
#include <cstring>
#include <functional>

#include "dorvutil/text/basic_string.h"
#include "dorvutil/text/string_widths.h"

/// TOrvString: changes of the text.
namespace dorvutil {

template <class T>
bool TOrvString<T>::Aliases(const T* s) const {
    // std::less orders pointers to different objects too
    return m_guts && !std::less<const T*>()(s, m_guts->m_data) &&
           !std::less<const T*>()(m_guts->m_data + m_guts->m_capacity, s);
}

// Replaces the `removed` units at `pos`, which are there, by the `n` of `s`. A source inside this block is copied
// first, as the tail moves over it.
template <class T>
bool TOrvString<T>::Splice(std::uint32_t pos, std::uint32_t removed, const T* s, std::uint64_t n) {
    const std::uint32_t old = length();
    const std::uint32_t capacity = Guts::CapacityFor(old - removed + n);
    if (capacity == Guts::kNoCapacity) return false;
    const auto count = static_cast<std::uint32_t>(n);
    const std::uint32_t total = old - removed + count;
    const std::uint32_t tail = old - removed - pos;
    const bool inPlace = m_guts && m_guts->m_capacity >= capacity && m_guts->Private();
    if (inPlace && count != 0 && Aliases(s)) {
        TOrvString copy;
        return copy.assignUnits(s, n) && Splice(pos, removed, copy.m_guts->m_data, n);
    }
    Guts* const block = inPlace ? m_guts : Guts::CreateUnfilled(capacity, total);
    if (block == nullptr) return false;
    if (tail != 0) std::memmove(block->m_data + pos + count, m_guts->m_data + pos + removed, tail * sizeof(T));
    if (!inPlace && pos != 0) std::memcpy(block->m_data, m_guts->m_data, pos * sizeof(T));
    if (count != 0) std::memcpy(block->m_data + pos, s, count * sizeof(T));
    if (inPlace) {
        block->SetLength(total);
        block->Touch();
    } else {
        Release(m_guts);
        m_guts = block;
    }
    return true;
}

template <class T>
bool TOrvString<T>::replace(std::int32_t pos, T c) {
    if (m_guts == nullptr || pos < 0 || static_cast<std::uint32_t>(pos) > length()) return false;
    if (static_cast<std::uint32_t>(pos) == length()) return true;  // the terminator stays what it is
    return Splice(static_cast<std::uint32_t>(pos), 1, &c, 1);
}

template <class T>
bool TOrvString<T>::replace(std::int32_t pos, std::int32_t n, const T* s) {
    if (s == nullptr || pos < 0 || static_cast<std::uint32_t>(pos) > length()) return false;
    const std::uint32_t all = widths::Length(s);
    const auto at = static_cast<std::uint32_t>(pos);
    return Splice(at, length() - at, s, std::min(all, widths::Limit(n, all)));
}

template <class T>
bool TOrvString<T>::replacechar(const T* from, const T* to, std::uint32_t start, bool ignoreCase) {
    if (from == nullptr || to == nullptr || m_guts == nullptr || (*from == T{} && *to == T{})) return false;
    const std::int32_t found = find(from, start, ignoreCase);
    if (found < 0) return false;
    const auto pos = static_cast<std::uint32_t>(found);
    return Splice(pos, std::min(widths::Length(from), length() - pos), to, widths::Length(to));
}

// What is replaced is never searched again, so that every place can be found in the old text: once to count, once to
// build the new text. An empty `from` is found in front of the first unit again and again.
template <class T>
bool TOrvString<T>::replaceallchar(const T* from, const T* to, std::int32_t maxCount, bool ignoreCase) {
    if (from == nullptr || to == nullptr || m_guts == nullptr || (*from == T{} && *to == T{})) return false;
    const std::uint32_t fromLength = widths::Length(from);
    const std::uint32_t toLength = widths::Length(to);
    if (maxCount < 1 || fromLength > length()) return true;
    TOrvString text(*this);
    TOrvString pattern;
    if (ignoreCase) {
        pattern.assign(from, -1);
        text.to_lower();
        pattern.to_lower();
    }
    const T* const needle = ignoreCase ? pattern.Text() : from;
    const auto next = [&](std::uint32_t at) { return text.find(needle, at); };
    const std::int32_t first = next(0);
    if (first < 0) return true;

    std::uint64_t count = fromLength == 0 ? static_cast<std::uint64_t>(maxCount) : 1;
    if (fromLength != 0) {
        for (std::int32_t at = next(static_cast<std::uint32_t>(first) + fromLength);
             at >= 0 && count < static_cast<std::uint64_t>(maxCount); ++count) {
            at = next(static_cast<std::uint32_t>(at) + fromLength);
        }
    }
    const std::uint64_t total = length() - count * fromLength + count * toLength;
    if (total > Guts::kMaxCapacity) return false;
    Guts* const block = Guts::CreateUnfilled(static_cast<std::uint32_t>(total), static_cast<std::uint32_t>(total));
    if (block == nullptr) return false;
    T* out = block->m_data;
    std::uint32_t done = 0;
    for (auto pos = static_cast<std::uint32_t>(first);; pos = static_cast<std::uint32_t>(next(done))) {
        out = std::copy(m_guts->m_data + done, m_guts->m_data + pos, out);
        out = std::copy(to, to + toLength, out);
        done = pos + fromLength;
        if (--count == 0) break;
    }
    std::copy(m_guts->m_data + done, m_guts->m_data + length(), out);
    Release(m_guts);
    m_guts = block;
    return true;
}

template <class T>
TOrvString<T>& TOrvString<T>::insert(std::int32_t pos, const T* s, std::int32_t n) {
    if (pos < 0 || s == nullptr) return *this;
    const std::uint32_t count = n < 0 ? widths::Length(s) : static_cast<std::uint32_t>(n);
    const auto at = static_cast<std::uint32_t>(pos);
    const std::uint32_t old = length();
    if (at <= old) {
        Splice(at, 0, s, count);
        return *this;
    }
    TOrvString result;  // the gap and the text in one go, so that a failure leaves nothing behind
    if (std::uint64_t{at} + count > Guts::kMaxCapacity || !result.resize(at + count)) return *this;
    T* const data = result.m_guts->m_data;
    std::memcpy(data, Text(), old * sizeof(T));
    std::fill_n(data + old, at - old, T{' '});
    std::memcpy(data + at, s, count * sizeof(T));
    std::swap(m_guts, result.m_guts);
    return *this;
}

template <class T>
bool TOrvString<T>::deleteAt(std::int32_t i) {
    if (m_guts == nullptr || i < 0 || static_cast<std::uint32_t>(i) >= length() || length() < 2) return false;
    return Splice(static_cast<std::uint32_t>(i), 1, nullptr, 0);
}

template <class T>
TOrvString<T>& TOrvString<T>::appendSlash() {
    if (empty()) return *this;
    const T last = m_guts->m_data[m_guts->m_length - 1];
    if (last != m_FwdSlash && last != m_BackSlash) concat(&m_BackSlash, 1);
    return *this;
}

template <class T>
TOrvString<T> TOrvString<T>::appendSlash_ret() const {
    TOrvString result(*this);
    result.appendSlash();
    return result;
}

}  // namespace dorvutil
