#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string_guts.h"

namespace dorvutil {

class COrvFileHandleBase;

/// What both string classes share: a handle on a counted, copy-on-write block of characters of T (char, UTF-8, or
/// char16_t, UTF-16). A handle is null (no block), empty (a block of length 0) or holds up to 65528 characters, with a
/// terminator behind them. Copying counts a reference; the first change of a shared text makes a private copy.
///
/// Positions, lengths and limits are in units of T unless a function speaks of characters. Negative limits mean "all".
/// Operations that change the text return false and leave it as it was when the result would be too long or memory ran
/// out. Source texts may lie inside the string itself. "Ignoring case" is the comparison and case of special_chars.h
/// and compare.h. Not synchronised: strings that share a block belong to one thread (see ThreadReady).
template <class T>
class DORVUTIL_API TOrvString {
public:
    using Guts = StringGuts<T>;

    static constexpr T m_NULL = 0;
    static constexpr T m_FwdSlash = '/';
    static constexpr T m_BackSlash = '\\';
    static constexpr const T& m_FileSlash = m_BackSlash;
    static constexpr T kWhitespace[] = {' ', '\t', '\r', '\n', 0};
    static constexpr const T* m_pWhitespace = kWhitespace;

    TOrvString() noexcept = default;
    explicit TOrvString(const T* s, std::int32_t n = -1) { assign(s, n); }
    explicit TOrvString(T c) { assign(c); }
    TOrvString(const TOrvString& other) : m_guts(Share(other.m_guts)) {}
    TOrvString(TOrvString&& other) noexcept : m_guts(Steal(other)) {}
    ~TOrvString() { Release(m_guts); }

    TOrvString& operator=(const T* s) { return assign(s, -1), *this; }
    TOrvString& operator=(const TOrvString& other);  ///< Copies the text; the derived classes share it.

    bool resize(std::uint32_t n);  ///< Cuts, or adds zero characters.
    /// Makes the block private to this string, so that the string may go to another thread.
    bool ThreadReady() { return unshare(); }
    std::uint32_t length() const { return m_guts ? m_guts->m_length : 0; }
    bool empty() const { return length() == 0; }
    bool is_null() const { return empty(); }  ///< The same as empty().
    const T& operator[](std::int32_t i) const { return m_guts ? m_guts->m_data[i] : m_NULL; }

    /// Order of the texts by unsigned units up to the terminator, of at most `n` units; ignoring case of at most `n`
    /// characters (0 without the special-character manager). Null counts as empty.
    std::int32_t compare(const T* other, bool ignoreCase = false, std::int32_t n = -1) const;
    std::int32_t compare(const TOrvString& other, bool ignoreCase = false, std::int32_t n = -1) const {
        return compare(other.m_guts ? other.m_guts->m_data : nullptr, ignoreCase, n);
    }
    bool operator==(const TOrvString& other) const {
        return m_guts == other.m_guts || (length() == other.length() && SameUnits(other.Text(), length()));
    }
    bool operator==(const T* s) const {
        return s == nullptr ? empty() : LengthOf(s) == length() && SameUnits(s, length());
    }
    bool operator<(const TOrvString& other) const { return Order(Text(), other.Text()) < 0; }
    bool operator<(const T* s) const { return Order(Text(), s ? s : &m_NULL) < 0; }
    bool operator>(const TOrvString& other) const { return Order(Text(), other.Text()) > 0; }
    bool operator>(const T* s) const { return Order(Text(), s ? s : &m_NULL) > 0; }

    /// Positions, or -1. An empty `s` is found at `start` (find) and at the last unit (rfind).
    std::int32_t find(const T* s, std::uint32_t start = 0, bool ignoreCase = false) const {
        return s == nullptr || start >= length() ? -1
               : ignoreCase                      ? FindNoCase(s, start)
                                                 : FindUnits(s, LengthOf(s), start);
    }
    std::int32_t findi(const T* s, std::uint32_t start = 0) const { return find(s, start, true); }
    std::int32_t rfind(const T* s, bool ignoreCase = false) const;
    std::int32_t find_first_of(T c, std::uint32_t start = 0) const;  ///< Character 0 is found at the terminator.
    std::int32_t find_first_of(const T* set, std::uint32_t start = 0) const;
    std::int32_t find_last_of(const T* set) const;
    std::int32_t find_first_not_of(const T* set) const;
    std::int32_t find_last_not_of(const T* set) const;

    /// Whether the first `n` units (all of `s` when negative) are those of `s`; false for an empty side and n = 0.
    bool starts_with(const T* s, bool ignoreCase = false, std::int32_t n = -1) const;
    bool starts_with(const TOrvString& s, bool ignoreCase = false, std::int32_t n = -1) const {
        return starts_with(s.m_guts ? s.m_guts->m_data : nullptr, ignoreCase, n);
    }
    bool ends_with(const TOrvString& other) const;  ///< Always ignores case; true for an empty `other`.

    /// `n` units from `start`, as many as there are; empty when `start` is outside the text.
    TOrvString substr(std::int32_t start, std::int32_t n = -1) const;
    /// From the start: cuts to `n` units. From elsewhere: keeps `n` units, or all when there are not so many.
    TOrvString& substr_self(std::int32_t start, std::int32_t n = -1);
    TOrvString strip() const;
    TOrvString& strip_self();  ///< Removes m_pWhitespace at both ends.
    /// The longest common prefix, in whole characters; null when either string is null.
    TOrvString common_starting_substring(const TOrvString& other) const;
    TOrvString& common_starting_substring_self(const TOrvString& other);

    bool replace(std::int32_t pos, T c);  ///< At the end of the text: true without effect.
    /// Keeps `pos` units and puts the first `n` of `s` behind them, in place of the rest.
    bool replace(std::int32_t pos, std::int32_t n, const T* s);
    /// Replaces the first `from` at or after `start`. True when one was replaced.
    bool replacechar(const T* from, const T* to, std::uint32_t start = 0, bool ignoreCase = false);
    /// Replaces the first `maxCount` places of `from`, none within a replacement. True also when there were none;
    /// false, with the text unchanged, for a null argument or string, for two empty texts and when it gets too long.
    bool replaceallchar(const T* from, const T* to, std::int32_t maxCount, bool ignoreCase = false);
    /// Inserts `n` units of `s`; beyond the end, spaces fill the gap.
    TOrvString& insert(std::int32_t pos, const T* s, std::int32_t n = -1);
    bool deleteAt(std::int32_t i);  ///< False for the only unit of a text.
    bool deleteLast() { return deleteAt(static_cast<std::int32_t>(length()) - 1); }
    bool append(T c) { return concat(&c, 1); }
    bool append(const T* s, std::int32_t n = -1) { return concat(s, n); }
    bool append(const TOrvString& s, std::int32_t n = -1);
    TOrvString& operator+=(const TOrvString& s) { return append(s), *this; }
    TOrvString& operator+=(const T* s) { return concat(s, -1), *this; }
    TOrvString& operator+=(T c) { return concat(&c, 1), *this; }
    TOrvString& appendSlash();  ///< '\\' behind a text that does not end in one or in '/'.
    TOrvString appendSlash_ret() const;

    void to_lower();
    void to_upper();
    void cap_all_words();  ///< First character and those behind a space upper, the others lower case.
    TOrvString to_lower_ret() const;
    TOrvString to_upper_ret() const;
    TOrvString cap_all_words_ret() const;

    bool IsAscii7() const;   ///< Every unit below 0x7F.
    bool IsNumeric() const;  ///< An optional sign and at least one decimal digit, nothing else.
    bool IsHex() const;      ///< Hexadecimal digits only, behind an optional "0x"; true for empty, false for null.
    std::int32_t num_lines() const;

    /// As strtol, strtoul (of a 32-bit long: results are clamped to its range) and atof in the C locale.
    std::int32_t to_long(std::int32_t radix = 10) const;
    std::uint32_t to_ulong(std::int32_t radix = 10) const;  ///< With radix 16 a "0x" in front is skipped first.
    double to_float() const;
    /// Lower-case digits, '-' in front of negative values in every radix from 2 to 36; others give an empty text.
    static TOrvString itoa(std::int32_t value, std::int32_t radix = 10) { return ltoa(value, radix); }
    static TOrvString ltoa(std::int32_t value, std::int32_t radix = 10);
    static TOrvString ultoa(std::uint32_t value, std::int32_t radix = 10);  ///< Radix 16: "0x" and eight digits.
    /// `precision` decimals, or six when negative, cut at 63 characters; the decimal mark is '.'.
    static TOrvString ftoa(double value, std::int32_t precision = -1);

    std::uint32_t HashValue() const;  ///< StrHashValue of the text (string_hash.h).

    /// Writes the length (16 bits) and the characters, all little-endian. False when the file takes less, is null, or
    /// there is no file manager.
    bool FlattenMe(COrvFileHandleBase* file) const;
    /// Reads what FlattenMe wrote; a length of 0 leaves the text as it was. A file that ends early leaves the
    /// characters it had and false; a length over the limit, no memory, a null file: false, text unchanged.
    bool UnflattenMe(COrvFileHandleBase* file);

protected:
    static constexpr Guts* EmptyBlock() { return &ConstStringGuts<T>::s_empty; }
    constexpr TOrvString(Guts* guts, std::nullptr_t) noexcept : m_guts(guts) {}  // takes over the reference
    void init() noexcept { m_guts = nullptr; }
    bool assign(const T* s, std::int32_t n);
    bool assign(T c);
    bool concat(const T* s, std::int32_t n);
    bool assignUnits(const T* s, std::uint64_t n);  // zero units included
    void share(const Guts* guts);                   // takes a reference on another string's block
    bool unshare();
    bool re_alloc(std::uint32_t n);  // private, room for n; the text stays (cut to n)
    const T* str(bool emptyAsNull) const {
        if (m_guts == nullptr) return &m_NULL;
        return emptyAsNull && m_guts->m_length == 0 ? nullptr : m_guts->m_data;
    }
    const T* Text() const { return m_guts ? m_guts->m_data : &m_NULL; }

    // Writing in place: a block with room for n characters, of which the caller then writes all; done by SetText.
    T* Writable(std::uint32_t n) { return re_alloc(n) ? m_guts->m_data : nullptr; }
    void SetText(std::uint32_t length);  // new length, tail cleared, changed, case unknown
    // Changed since the other-width copy was made. The mark lies in the block, for all its holders.
    bool IsChanged() const { return !m_guts || (m_guts->m_flags & Guts::kChanged) != 0; }
    void ClearChanged() const {
        if (m_guts && m_guts->m_source != GutsSource::kEmpty) {
            m_guts->m_flags = static_cast<std::uint8_t>(m_guts->m_flags & ~Guts::kChanged);
        }
    }
    void Clear();  // empty, not null

    // The block of a copy: counted, or a copy of its own for a literal, whose header may die before the copy.
    static Guts* Share(const Guts* guts) {
        if (guts == nullptr || guts->m_source == GutsSource::kEmpty) return const_cast<Guts*>(guts);
        if (!guts->Counted() || guts->m_references == 255) return ShareByCopy(*guts);
        ++guts->m_references;
        return const_cast<Guts*>(guts);
    }
    // The same for a string of this class. Its block may be one of a derived string whose other-width copy is out of
    // date, and the new holder might clear the mark that says so: then the text is copied.
    static Guts* ShareUnwatched(const TOrvString& other);
    static Guts* StealUnwatched(TOrvString& other);
    static Guts* Steal(TOrvString& other) {
        if (other.m_guts && other.m_guts->m_source == GutsSource::kLiteral) return ShareByCopy(*other.m_guts);
        Guts* const guts = other.m_guts;
        other.m_guts = nullptr;
        return guts;
    }
    static void Release(Guts* guts) {
        if (guts && guts->Counted() && --guts->m_references == 0) Guts::Free(guts);
    }

    Guts* m_guts = nullptr;

private:
    static std::size_t LengthOf(const T* s) { return std::char_traits<T>::length(s); }
    bool SameUnits(const T* s, std::uint32_t n) const { return std::memcmp(Text(), s, n * sizeof(T)) == 0; }
    // As compare, of two texts that are not null.
    static std::int32_t Order(const T* a, const T* b) {
        if constexpr (sizeof(T) == 1) {
            return std::strcmp(a, b);
        } else {
            while (*a == *b && *a != 0) ++a, ++b;
            return *a < *b ? -1 : *a > *b;
        }
    }
    std::int32_t FindUnits(const T* s, std::size_t n, std::uint32_t start) const;  // start < length
    std::int32_t FindNoCase(const T* s, std::uint32_t start) const;
    static Guts* ShareByCopy(const Guts& guts);
    bool Aliases(const T* s) const;
    bool Splice(std::uint32_t pos, std::uint32_t removed, const T* s, std::uint64_t n);
    void Keep(std::uint32_t start, std::uint32_t n);
    void ChangeCase(bool lower);
};

extern template class TOrvString<char>;
extern template class TOrvString<char16_t>;

}  // namespace dorvutil
