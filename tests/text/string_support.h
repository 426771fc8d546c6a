#pragma once

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "dorvutil/text/string.h"

/// What the string tests need to say everything once for both widths: ASCII in and out.
namespace dorvutil {

template <class S>
using UnitOf = std::remove_cvref_t<decltype(std::declval<const S&>()[0])>;

template <class T>
std::basic_string<T> Units(const std::string& ascii) {
    return std::basic_string<T>(ascii.begin(), ascii.end());
}

/// A string of class S; zero characters included.
template <class S>
S Make(const std::string& ascii) {
    S result(&S::m_NULL);
    result.append(Units<UnitOf<S>>(ascii).data(), static_cast<std::int32_t>(ascii.size()));
    return result;
}

/// The units of a string as bytes; '?' for those over 127.
template <class T>
std::string Plain(const TOrvString<T>& text) {
    std::string result;
    for (std::uint32_t i = 0; i < text.length(); ++i) {
        const T c = text[static_cast<std::int32_t>(i)];
        result += c >= 0 && c < 128 ? static_cast<char>(c) : '?';
    }
    EXPECT_EQ(text[static_cast<std::int32_t>(text.length())], T{}) << "not terminated: " << result;
    return result;
}

/// The characters in the string's own width.
template <class T>
const T* Raw(const TOrvString<T>& text) {
    return &text[0];
}
inline const char* Raw(const ORVustring& text, bool emptyAsNull) { return text.c_str(emptyAsNull); }
inline const char16_t* Raw(const ORVwstring& text, bool emptyAsNull) { return text.T_str(emptyAsNull); }

using BothWidths = testing::Types<ORVustring, ORVwstring>;

}  // namespace dorvutil
