#pragma once

#include <cstdarg>
#include <cstdint>

#include "dorvutil/memory/heap.h"
#include "dorvutil/text/string_guts.h"

/// The formatted-print engine behind every printf of the string classes.
namespace dorvutil::print {

/// Collects a text of at most the longest length, on the stack until it outgrows that. Results of ordinary size so cost
/// one allocation, the string's own.
template <class T>
class Sink {
public:
    Sink() = default;
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    ~Sink() { Mem_Free(m_heap); }

    /// Room for `n` more units, which then count as written; null when the text would get too long or memory ran out.
    T* Extend(std::uint64_t n);
    bool Append(const T* units, std::uint32_t n);
    bool Fill(std::uint64_t n, char c);
    void Cut(std::uint32_t length) { m_length = length; }

    const T* Data() const { return m_heap ? m_heap : m_stack; }
    std::uint32_t Length() const { return m_length; }

private:
    static constexpr std::uint32_t kStackUnits = 512;

    T m_stack[kStackUnits];
    T* m_heap = nullptr;  // owned
    std::uint32_t m_capacity = kStackUnits;
    std::uint32_t m_length = 0;
};

/// Formats into `out`. The first conversion that fails, and a format that ends inside one, end the result.
void Format(Sink<char>& out, const char* format, std::va_list* args);
void Format(Sink<char16_t>& out, const char16_t* format, std::va_list* args);

extern template class Sink<char>;
extern template class Sink<char16_t>;

}  // namespace dorvutil::print
