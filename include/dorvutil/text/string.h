#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <new>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/basic_string.h"
#include "dorvutil/text/print_args.h"

/// The strings of the library's interface. Each keeps, once asked for, a converted copy of itself in the other width
/// until its text changes; that copy is made inside const accessors, so two threads must not even read one string at a
/// time. References and pointers into the copy hold until the string changes or dies.
namespace dorvutil {

class ORVwstring;

/// Text in UTF-8.
class DORVUTIL_API ORVustring : public TOrvString<char> {
    using Base = TOrvString<char>;

public:
    ORVustring() noexcept = default;
    ORVustring(const char* s, std::int32_t n = -1) : Base(s, n) {}
    explicit ORVustring(char c) : Base(c) {}
    ORVustring(const ORVwstring& text);
    explicit ORVustring(char16_t c);
    ORVustring(const char16_t* s, std::int32_t n);
    ORVustring(const ORVustring& other) : Base(other) { other.DropStale(); }
    ORVustring(ORVustring&& other) noexcept : Base(static_cast<Base&&>(other)), m_other(other.m_other) {
        other.m_other = nullptr;
    }
    ORVustring(const Base& text);
    ORVustring(Base&& text);
    ~ORVustring() {
        if (m_other) DestroyOther();
    }

    ORVustring& operator=(const char* s);
    ORVustring& operator=(const ORVustring& other);
    ORVustring& operator=(ORVustring&& other) noexcept;

    /// The text in UTF-16; empty when memory ran out.
    const ORVwstring& wString() const;
    const ORVwstring& tString() const { return wString(); }
    /// Never null, except for an empty (not null) text when `emptyAsNull` is set.
    const char* c_str(bool emptyAsNull = false) const { return str(emptyAsNull); }
    const char16_t* wc_str(bool emptyAsNull = false) const;
    const char16_t* T_str(bool emptyAsNull = false) const { return wc_str(emptyAsNull); }
    bool ThreadReady();     ///< Also parts the copy in the other width from strings that share it.
    bool IsLatin1() const;  ///< Every UTF-16 unit below 256.
    bool IsValid(std::int32_t i) const { return i >= 0 && static_cast<std::uint32_t>(i) < length(); }
    void makeFileSlashOSCompatible();  ///< The first 100 '/' become '\\'.

    ORVustring substr(std::int32_t start, std::int32_t n = -1) const { return Base::substr(start, n); }
    ORVustring& substr_self(std::int32_t start, std::int32_t n = -1) { return Base::substr_self(start, n), *this; }
    ORVustring strip() const { return Changed(&Base::strip_self); }
    ORVustring& strip_self() { return Base::strip_self(), *this; }
    ORVustring common_starting_substring(const Base& other) const { return Base::common_starting_substring(other); }
    ORVustring& insert(std::int32_t pos, const char* s, std::int32_t n = -1) { return Base::insert(pos, s, n), *this; }
    ORVustring& insert(std::int32_t pos, const ORVustring& s, std::int32_t n = -1);
    ORVustring& operator+=(const Base& s) { return append(s), *this; }
    ORVustring& operator+=(const char* s) { return append(s), *this; }
    ORVustring& operator+=(char c) { return append(c), *this; }
    ORVustring& appendSlash() { return Base::appendSlash(), *this; }
    ORVustring appendSlash_ret() const { return Changed(&Base::appendSlash); }
    ORVustring to_lower_ret() const { return Changed(&Base::to_lower); }
    ORVustring to_upper_ret() const { return Changed(&Base::to_upper); }
    ORVustring cap_all_words_ret() const { return Changed(&Base::cap_all_words); }
    static ORVustring itoa(std::int32_t value, std::int32_t radix = 10) { return Base::ltoa(value, radix); }
    static ORVustring ltoa(std::int32_t value, std::int32_t radix = 10) { return Base::ltoa(value, radix); }
    static ORVustring ultoa(std::uint32_t value, std::int32_t radix = 10) { return Base::ultoa(value, radix); }
    static ORVustring ftoa(double value, std::int32_t precision = -1) { return Base::ftoa(value, precision); }

    /// Formatted text. Beside the conversions of the standard (integers are 32 bits, h 16) there are S (const
    /// char16_t*), a and A (pointers to ORVustring and ORVwstring) and n (int*, takes the length so far); text is
    /// UTF-8, s and S limits count bytes, a limit of 0 is none and a width above the limit raises it. A null a or A, a
    /// format that ends inside a conversion and a text beyond the limit end the result there. The locale plays no part.
    static ORVustring printf(const char* format, ...);
    static ORVustring printf(const char* format, OrvPrintArgs& args);
    static ORVustring vprintf(const char* format, std::va_list args);
    static bool printf(COrvFileHandleBase* file, const char* format, ...);  ///< True when all was written.
    bool printf(COrvFileHandleBase* file) const;  ///< Writes the characters; false for an empty text too.
    /// The characters up to a line feed (dropped) or the end of the file, without carriage returns (the first 100);
    /// what exceeds the longest text is read and dropped. Empty for a null file or without a file manager.
    static ORVustring ReadNextLine(COrvFileHandleBase* file);
    /// Up to `maxLength` characters as they are.
    static ORVustring ReadStringFromFile(COrvFileHandleBase* file, std::int32_t maxLength);

    /// From the pool of string objects, or the heap; null when memory ran out.
    static void* operator new(std::size_t size) noexcept;
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return operator new(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* object) noexcept;
    static void operator delete(void*, void*) noexcept {}

private:
    friend class ORVwstring;
    friend class ORVcustring;
    friend struct EmptyStrings;

    constexpr ORVustring(Guts* guts, std::nullptr_t) noexcept : Base(guts, nullptr) {}
    static ORVustring FromUnits(const char* units, std::uint32_t n);  // zero units included
    ORVustring& operator=(const ORVwstring& text);
    bool assign(const char16_t* s, std::int32_t n);
    using Base::assign;
    const ORVwstring& Refresh() const;
    template <class Change>
    ORVustring Changed(Change change) const {
        ORVustring copy(*this);
        return (copy.*change)(), copy;
    }
    void DestroyOther() const;
    void EmptyOther() const;
    // A block about to be shared must not leave a stale copy behind: the next holder may clear the changed mark.
    void DropStale() const {
        if (m_other && IsChanged()) EmptyOther();
    }

    mutable ORVwstring* m_other = nullptr;  // owned; valid while it is not empty and the block is unchanged
};

/// Text in UTF-16.
class DORVUTIL_API ORVwstring : public TOrvString<char16_t> {
    using Base = TOrvString<char16_t>;

public:
    ORVwstring() noexcept = default;
    ORVwstring(const char16_t* s, std::int32_t n = -1) : Base(s, n) {}
    explicit ORVwstring(char16_t c) : Base(c) {}
    ORVwstring(const ORVustring& text);
    explicit ORVwstring(char c);
    ORVwstring(const char* s, std::int32_t n);
    ORVwstring(const ORVwstring& other) : Base(other) { other.DropStale(); }
    ORVwstring(ORVwstring&& other) noexcept : Base(static_cast<Base&&>(other)), m_other(other.m_other) {
        other.m_other = nullptr;
    }
    ORVwstring(const Base& text);
    ORVwstring(Base&& text);
    ~ORVwstring() {
        if (m_other) DestroyOther();
    }

    ORVwstring& operator=(const char16_t* s);
    ORVwstring& operator=(const ORVwstring& other);
    ORVwstring& operator=(ORVwstring&& other) noexcept;

    /// The text in UTF-8; empty when memory ran out.
    const ORVustring& uString() const;
    /// Never null, except for an empty (not null) text when `emptyAsNull` is set.
    const char16_t* T_str(bool emptyAsNull = false) const { return str(emptyAsNull); }
    const char* c_str(bool emptyAsNull = false) const;
    bool ThreadReady();                ///< Also parts the copy in the other width from strings that share it.
    bool IsLatin1() const;             ///< Every UTF-16 unit below 256.
    void makeFileSlashOSCompatible();  ///< The first 100 '/' become '\\'.

    ORVwstring substr(std::int32_t start, std::int32_t n = -1) const { return Base::substr(start, n); }
    ORVwstring& substr_self(std::int32_t start, std::int32_t n = -1) { return Base::substr_self(start, n), *this; }
    ORVwstring strip() const { return Changed(&Base::strip_self); }
    ORVwstring& strip_self() { return Base::strip_self(), *this; }
    ORVwstring common_starting_substring(const Base& other) const { return Base::common_starting_substring(other); }
    ORVwstring& insert(std::int32_t pos, const char16_t* s, std::int32_t n = -1) {
        return Base::insert(pos, s, n), *this;
    }
    ORVwstring& insert(std::int32_t pos, const ORVwstring& s, std::int32_t n = -1);
    ORVwstring& operator+=(const Base& s) { return append(s), *this; }
    ORVwstring& operator+=(const char16_t* s) { return append(s), *this; }
    ORVwstring& operator+=(char16_t c) { return append(c), *this; }
    ORVwstring& appendSlash() { return Base::appendSlash(), *this; }
    ORVwstring appendSlash_ret() const { return Changed(&Base::appendSlash); }
    ORVwstring to_lower_ret() const { return Changed(&Base::to_lower); }
    ORVwstring to_upper_ret() const { return Changed(&Base::to_upper); }
    ORVwstring cap_all_words_ret() const { return Changed(&Base::cap_all_words); }
    static ORVwstring itoa(std::int32_t value, std::int32_t radix = 10) { return Base::ltoa(value, radix); }
    static ORVwstring ltoa(std::int32_t value, std::int32_t radix = 10) { return Base::ltoa(value, radix); }
    static ORVwstring ultoa(std::uint32_t value, std::int32_t radix = 10) { return Base::ultoa(value, radix); }
    static ORVwstring ftoa(double value, std::int32_t precision = -1) { return Base::ftoa(value, precision); }

    /// The functions of ORVustring over UTF-16; files hold little-endian units.
    static ORVwstring printf(const char16_t* format, ...);
    static ORVwstring printf(const char16_t* format, OrvPrintArgs& args);
    static ORVwstring vprintf(const char16_t* format, std::va_list args);
    static bool printf(COrvFileHandleBase* file, const char16_t* format, ...);
    bool printf(COrvFileHandleBase* file) const;
    static ORVwstring ReadNextLine(COrvFileHandleBase* file);
    static ORVwstring ReadStringFromFile(COrvFileHandleBase* file, std::int32_t maxLength);

    /// From the pool of string objects, or the heap; null when memory ran out.
    static void* operator new(std::size_t size) noexcept;
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return operator new(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* object) noexcept;
    static void operator delete(void*, void*) noexcept {}

private:
    friend class ORVustring;
    friend class ORVcwstring;
    friend struct EmptyStrings;

    constexpr ORVwstring(Guts* guts, std::nullptr_t) noexcept : Base(guts, nullptr) {}
    static ORVwstring FromUnits(const char16_t* units, std::uint32_t n);  // zero units included
    ORVwstring& operator=(const ORVustring& text);
    bool assign(const char* s, std::int32_t n);
    using Base::assign;
    const ORVustring& Refresh() const;
    template <class Change>
    ORVwstring Changed(Change change) const {
        ORVwstring copy(*this);
        return (copy.*change)(), copy;
    }
    void DestroyOther() const;
    void EmptyOther() const;
    // A block about to be shared must not leave a stale copy behind: the next holder may clear the changed mark.
    void DropStale() const {
        if (m_other && IsChanged()) EmptyOther();
    }

    mutable ORVustring* m_other = nullptr;  // owned; valid while it is not empty and the block is unchanged
};

inline const ORVwstring& ORVustring::wString() const {
    return m_other && !m_other->empty() && !IsChanged() ? *m_other : Refresh();
}
inline const char16_t* ORVustring::wc_str(bool emptyAsNull) const { return wString().T_str(emptyAsNull); }
inline const ORVustring& ORVwstring::uString() const {
    return m_other && !m_other->empty() && !IsChanged() ? *m_other : Refresh();
}
inline const char* ORVwstring::c_str(bool emptyAsNull) const { return uString().c_str(emptyAsNull); }

}  // namespace dorvutil

#include "dorvutil/text/string_list.h"
