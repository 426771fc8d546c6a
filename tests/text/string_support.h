#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <type_traits>
#include <utility>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/text/string.h"

/// What the string tests need to say everything once for both widths: ASCII in and out.
namespace dorvutil {

template <class S>
using UnitOf = std::remove_cvref_t<decltype(std::declval<const S&>()[0])>;

inline int Sign(int value) { return (value > 0) - (value < 0); }

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

template <class S>
class StringTest : public testing::Test {
public:
    static std::basic_string<UnitOf<S>> Units(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

    /// The text, zero characters included; a null string for a null pointer.
    static S M(const std::string& ascii) {
        S result(&S::m_NULL);
        result.append(Units(ascii).data(), static_cast<std::int32_t>(ascii.size()));
        return result;
    }
    static S M(const char* ascii) { return ascii == nullptr ? S() : M(std::string(ascii)); }

    /// A pointer to the text, good for the whole test.
    const UnitOf<S>* U(const std::string& ascii) { return m_texts.emplace_back(ascii.begin(), ascii.end()).c_str(); }
    const UnitOf<S>* U(const char* ascii) { return ascii == nullptr ? nullptr : U(std::string(ascii)); }

protected:
    void SetUp() override { GetStringAllocator(); }

private:
    std::deque<std::basic_string<UnitOf<S>>> m_texts;
};

using BothWidths = testing::Types<ORVustring, ORVwstring>;

}  // namespace dorvutil
