#pragma once

#include <iconv.h>

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>

/// Texts, buffers and an independent converter for the tests of the encodings.
namespace dorvutil::test {

/// A copy in a heap block of just its size, so that a sanitizer sees a read behind it.
template <class T>
std::unique_ptr<T[]> ExactCopy(std::basic_string_view<T> text) {
    auto block = std::make_unique<T[]>(text.size());
    text.copy(block.get(), text.size());
    return block;
}

/// The C library's converter. `ok` is false for input it rejects.
class Iconv {
public:
    Iconv(const char* to, const char* from) : m_converter(iconv_open(to, from)) {}
    ~Iconv() { iconv_close(m_converter); }
    std::string Convert(std::string_view bytes, bool& ok) {
        std::string in(bytes), out(bytes.size() * 4 + 16, '\0');
        char *from = in.data(), *to = out.data();
        std::size_t fromLeft = in.size(), toLeft = out.size();
        iconv(m_converter, nullptr, nullptr, nullptr, nullptr);
        ok = iconv(m_converter, &from, &fromLeft, &to, &toLeft) != static_cast<std::size_t>(-1);
        out.resize(out.size() - toLeft);
        return out;
    }

private:
    iconv_t m_converter;
};

inline std::u16string UnitsOf(const std::string& bytes) {
    std::u16string text(bytes.size() / 2, u'\0');
    bytes.copy(reinterpret_cast<char*>(text.data()), bytes.size());
    return text;
}

/// Random numbers of 32 bits, on every system the same.
class Random {
public:
    explicit Random(std::uint32_t seed) : m_engine(seed) {}
    std::uint32_t operator()() { return static_cast<std::uint32_t>(m_engine()); }

private:
    std::mt19937 m_engine;
};

/// Random well-formed UTF-8 of about `size` bytes; each text leans to one to four bytes a character.
inline std::string RandomText(Random& random, std::size_t size) {
    static constexpr std::uint32_t kEnds[] = {0x80, 0x800, 0x10000, 0x110000};
    const std::uint32_t widest = random() % 4;
    std::string text;
    while (text.size() < size) {
        const std::uint32_t kind = random() % 3 == 0 ? random() % (widest + 1) : widest;
        const std::uint32_t from = kind == 0 ? 1 : kEnds[kind - 1];
        std::uint32_t c = from + random() % (kEnds[kind] - from);
        if (c >= 0xD800 && c < 0xE000) c -= 0x1000;
        if (c < 0x80) {
            text += static_cast<char>(c);
            continue;
        }
        const std::uint32_t tails = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        text += static_cast<char>((0xF00 >> tails & 0xFF) | c >> (6 * tails));
        for (std::uint32_t i = tails; i-- > 0;) text += static_cast<char>(0x80 | (c >> (6 * i) & 0x3F));
    }
    return text;
}

/// Damages a text in up to three places.
inline void Mutate(Random& random, std::string& text) {
    static constexpr char kBytes[] = "\x80\xBF\xC0\xC1\xC2\xE0\xED\xA0\x9F\xF0\x90\x8F\xF4\xF5\xFF";
    for (std::uint32_t i = random() % 3; text.size() > 0; --i) {
        text[random() % text.size()] = kBytes[random() % (sizeof kBytes - 1)];
        if (i == 0) break;
    }
}

}  // namespace dorvutil::test
