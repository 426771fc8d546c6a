#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dorvutil/storage/memory_handle.h"

/// What the fuzz targets share.

/// Ends the process, so that the fuzzer keeps the input, when something that always holds does not.
#define FUZZ_CHECK(condition) \
    ((condition) ? static_cast<void>(0) : ::dorvutil::fuzz::Fail(#condition, __FILE__, __LINE__))

/// What the fuzzer calls with each input; hands it to the target's TestInput. 0 always.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace dorvutil::fuzz {

[[noreturn]] inline void Fail(const char* condition, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, condition);
    std::abort();
}

/// The input, taken apart from the front; what is missing reads as zeros. Choices are bytes, so that digits and letters
/// in front of a text make a seed one can read.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : m_left(reinterpret_cast<const char*>(data), size) {}

    std::size_t Size() const { return m_left.size(); }

    std::uint8_t Byte() {
        if (m_left.empty()) return 0;
        const auto byte = static_cast<std::uint8_t>(m_left.front());
        m_left.remove_prefix(1);
        return byte;
    }

    /// Little-endian, of as many bytes as T has.
    template <class T>
    T Number() {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i) value |= std::uint64_t{Byte()} << 8 * i;
        return static_cast<T>(value);
    }

    /// Up to `end`, which is skipped, or all that is left.
    std::string_view Until(char end) {
        const std::size_t at = std::min(m_left.find(end), m_left.size());
        const std::string_view part = m_left.substr(0, at);
        m_left.remove_prefix(std::min(at + 1, m_left.size()));
        return part;
    }

    /// All that is left, at most `limit` bytes of it.
    std::string_view Rest(std::size_t limit = std::string_view::npos) {
        return std::exchange(m_left, {}).substr(0, limit);
    }

private:
    std::string_view m_left;
};

/// Checks what holds of every input. Defined by each target.
void TestInput(Input& input);

/// Characters in a block of their own of exactly their size, so that a step beyond either end is seen.
template <class C>
class Exact {
public:
    explicit Exact(std::size_t size) : m_size(size), m_data(new C[size]()) {}
    explicit Exact(std::basic_string_view<C> text) : Exact(text.size()) {
        std::copy(text.begin(), text.end(), m_data.get());
    }
    /// With a terminator.
    static Exact Terminated(std::basic_string_view<C> text) {
        const std::basic_string<C> copy(text);
        return Exact(std::basic_string_view<C>(copy.c_str(), copy.size() + 1));
    }

    C* Data() { return m_data.get(); }
    const C* Data() const { return m_data.get(); }
    std::size_t Size() const { return m_size; }
    std::uint32_t Count() const { return static_cast<std::uint32_t>(m_size); }
    std::int32_t Length() const { return static_cast<std::int32_t>(m_size); }
    std::basic_string_view<C> View() const { return {m_data.get(), m_size}; }

private:
    std::size_t m_size;
    std::unique_ptr<C[]> m_data;
};

/// The bytes as UTF-16 units, little-endian; an odd one at the end is dropped.
inline std::u16string Units(std::string_view bytes) {
    std::u16string units(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < units.size(); ++i) {
        units[i] = static_cast<char16_t>(static_cast<std::uint8_t>(bytes[2 * i]) |
                                         static_cast<std::uint8_t>(bytes[2 * i + 1]) << 8);
    }
    return units;
}

/// One unit for each byte: how a text that one can read becomes wide.
inline std::u16string Widened(std::string_view bytes) {
    std::u16string units;
    for (const char c : bytes) units.push_back(static_cast<std::uint8_t>(c));
    return units;
}

/// Up to the first zero.
template <class C>
std::basic_string_view<C> UpToZero(std::basic_string_view<C> text) {
    return text.substr(0, text.find(C{}));
}

inline int Sign(std::int64_t value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

/// An open handle over a copy of some bytes.
struct MemoryFile : COrvFileHandleMemory {
    MemoryFile() : COrvFileHandleMemory(eAccessReadWrite) { Open(); }
    explicit MemoryFile(std::string_view content)
        : COrvFileHandleMemory(content.data(), static_cast<std::uint32_t>(content.size()), true, eAccessReadWrite) {
        Open();
    }
    std::string Content() const { return {ByteArray().begin(), ByteArray().end()}; }
};

}  // namespace dorvutil::fuzz
