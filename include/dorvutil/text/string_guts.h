#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/frame/export.h"

/// The storage under the string classes: reference-counted blocks of characters, and headers over literals. T is char
/// (UTF-8) or char16_t (UTF-16); lengths and capacities are in units of T. The count is not atomic: a block belongs to
/// one thread at a time. The block of capacity 0 is the exception, it is shared by all threads and never written.
namespace dorvutil {

template <class T>
class TOrvString;

/// Empty base that tells the types of the storage family apart.
template <class T>
class OrvEmptyClass {};

/// Where a block lies, and so where it goes back to.
enum class GutsSource : std::uint8_t {
    kUnknown,  ///< Made by a plain new-expression: a pool, or the general heap, as the pool says.
    kHeap,
    kPool,
    kEmpty,    ///< The shared empty block: neither counted, written nor freed.
    kLiteral,  ///< The header of a ConstStringGuts: likewise, but it lives no longer than its owner.
};

/// One block: this header and, directly behind it, capacity + 1 characters, all zero from the length on. A block is
/// made by Create and its sisters, and ends with the last release().
template <class T>
class DORVUTIL_API StringGuts : private OrvEmptyClass<StringGuts<T>> {
public:
    static constexpr std::uint32_t kMaxCapacity = 65528;  ///< and so the longest text
    static constexpr std::uint32_t kNoCapacity = 0xFFFF'FFFFu;

    enum Flag : std::uint8_t {
        kChanged = 1,  ///< Modified since the other-width copy of its string was made.
        kLower = 2,    ///< Known to be in lower case.
        kUpper = 4,    ///< Known to be in upper case.
    };

    /// Sets up a block of `capacity`, a multiple of 8, in place: length 0, one reference, changed, all zero. The
    /// storage has room for the characters (operator new below).
    explicit StringGuts(std::uint16_t capacity) noexcept;
    /// The same with the first characters of `source`, as many as fit.
    StringGuts(const StringGuts& source, std::uint16_t capacity) noexcept;
    /// Copy the header alone, as it is.
    StringGuts(const StringGuts&) = default;
    StringGuts& operator=(const StringGuts&) = default;

    /// Takes one more reference: this block, or at 255 references a private copy (null when memory ran out).
    virtual StringGuts* share() const;
    /// Drops one reference; the last one frees the block.
    virtual void release();
    /// Makes writable: this block when it is not shared, else a copy of the same capacity in exchange for the caller's
    /// reference. Null, with nothing changed, when memory ran out.
    virtual StringGuts* takeback();

    /// A new block of `capacity` rounded up to 8, all zero; capacity 0 gives the shared empty block. Null when the
    /// capacity is over kMaxCapacity or memory ran out.
    [[nodiscard]] static StringGuts* Create(std::uint32_t capacity) noexcept;
    /// The same with the first characters of `source`, as many as fit.
    [[nodiscard]] static StringGuts* CreateCopy(const StringGuts& source, std::uint32_t capacity) noexcept;
    /// The same with `length` characters (at most `capacity`) that the caller writes at once: they are not cleared.
    [[nodiscard]] static StringGuts* CreateUnfilled(std::uint32_t capacity, std::uint32_t length) noexcept;
    /// The shared empty block of this width.
    static StringGuts* Empty() noexcept;

    /// A block that holds `n` characters in exchange for `guts` (may be null): itself when it is private and large
    /// enough, else a new one with the content, cut to `n`; then `guts` is released. Null with `guts` untouched when
    /// `n` is too large or memory ran out.
    static StringGuts* re_alloc(StringGuts* guts, std::uint32_t n);
    StringGuts* re_alloc(std::uint32_t n) { return re_alloc(this, n); }

    /// Clears every character from the length to the capacity and marks the block changed.
    void zerofill();

    /// Storage for a block of `capacity` from its pool (8 to 48) or the heap; the shared empty block for 0.
    static void* operator new(std::size_t size, std::int32_t capacity) noexcept;
    static void operator delete(void* block, std::int32_t capacity) noexcept;
    static void operator delete(void* block) noexcept;

    const T* Data() const { return m_data; }
    std::uint32_t Length() const { return m_length; }
    std::uint32_t Capacity() const { return m_capacity; }
    std::uint8_t Flags() const { return m_flags; }
    std::uint32_t References() const { return m_references; }
    GutsSource Source() const { return m_source; }
    bool Counted() const { return m_source <= GutsSource::kPool; }
    /// Whether the block may be written by its one holder.
    bool Private() const { return m_references < 2 && m_source <= GutsSource::kPool; }

    /// `n` rounded up to a multiple of 8, or kNoCapacity when no block is that large.
    static constexpr std::uint32_t CapacityFor(std::uint64_t n) {
        return n > kMaxCapacity ? kNoCapacity : (static_cast<std::uint32_t>(n) + 7u) & ~7u;
    }

protected:
    constexpr StringGuts(T* data, std::uint16_t length, std::uint16_t capacity, GutsSource source) noexcept
        : m_data(data), m_length(length), m_capacity(capacity), m_source(source) {}

private:
    friend class TOrvString<T>;

    T* InlineBuffer() { return reinterpret_cast<T*>(this + 1); }
    static void Free(StringGuts* block) noexcept;
    // Sets the length of a private block whose tail is clear, clearing what falls behind the text.
    void SetLength(std::uint32_t length) noexcept;
    void Touch() { m_flags = kChanged; }

    T* m_data;
    std::uint16_t m_length = 0;
    std::uint16_t m_capacity = 0;
    mutable std::uint8_t m_flags = kChanged;
    mutable std::uint8_t m_references = 1;
    GutsSource m_source = GutsSource::kUnknown;
};

/// A header over a zero-terminated literal, which it neither copies nor writes; the literal must outlive it. Texts over
/// StringGuts::kMaxCapacity are cut in what the header says of their length.
template <class T>
class DORVUTIL_API ConstStringGuts : public StringGuts<T>, private OrvEmptyClass<ConstStringGuts<T>> {
public:
    constexpr explicit ConstStringGuts(const T* literal) noexcept
        : StringGuts<T>(const_cast<T*>(literal), LengthOf(literal),
                        static_cast<std::uint16_t>((LengthOf(literal) + 7u) & ~7u), GutsSource::kLiteral) {}

    StringGuts<T>* share() const override;  ///< This block, uncounted.
    void release() override;                ///< Nothing.
    StringGuts<T>* takeback() override;     ///< Always a private copy; null when memory ran out.

private:
    friend class StringGuts<T>;
    friend class TOrvString<T>;

    struct EmptyTag {};
    static ConstStringGuts s_empty;  // never written

    constexpr ConstStringGuts(EmptyTag, const T* terminator) noexcept
        : StringGuts<T>(const_cast<T*>(terminator), 0, 0, GutsSource::kEmpty) {}
    static constexpr std::uint16_t LengthOf(const T* literal) noexcept {
        std::uint16_t n = 0;
        while (literal != nullptr && n < StringGuts<T>::kMaxCapacity && literal[n] != T{}) ++n;
        return n;
    }
};

template <>
DORVUTIL_API ConstStringGuts<char> ConstStringGuts<char>::s_empty;
template <>
DORVUTIL_API ConstStringGuts<char16_t> ConstStringGuts<char16_t>::s_empty;

extern template class StringGuts<char>;
extern template class StringGuts<char16_t>;
extern template class ConstStringGuts<char>;
extern template class ConstStringGuts<char16_t>;

}  // namespace dorvutil
