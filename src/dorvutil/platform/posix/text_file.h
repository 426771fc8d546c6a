#pragma once

#include <cctype>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

/// Reading the small text files in which the kernel describes itself.
namespace dorvutil::platform {

/// Gives the lines of a stream one after the other, of any length; ends the stream.
class LineReader {
public:
    explicit LineReader(std::FILE* stream) : m_stream(stream) {}
    explicit LineReader(const char* path) : m_stream(std::fopen(path, "re")) {}
    ~LineReader() {
        std::free(m_line);
        if (m_stream) std::fclose(m_stream);
    }
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// The next line without its line end, valid until the next call; null when there is none, or no file.
    const char* Next() {
        const auto length = m_stream ? ::getline(&m_line, &m_room, m_stream) : -1;
        if (length < 0) return nullptr;
        if (length > 0 && m_line[length - 1] == '\n') m_line[length - 1] = '\0';
        return m_line;
    }

private:
    std::FILE* m_stream;
    char* m_line = nullptr;
    std::size_t m_room = 0;
};

/// The unsigned number at the start of `text`, behind blanks, and (`end`) where it ends; false when there is none or it
/// has more than 64 bits.
inline bool ReadNumber(const char* text, std::uint64_t& number, const char** end = nullptr, int base = 10) {
    while (*text == ' ' || *text == '\t') ++text;
    if (!std::isxdigit(static_cast<unsigned char>(*text))) return false;
    char* stop = nullptr;
    errno = 0;
    const std::uint64_t read = std::strtoull(text, &stop, base);
    if (stop == text || errno != 0) return false;
    number = read;
    if (end) *end = stop;
    return true;
}

/// What follows `label` at the start of `line`; null when the line starts otherwise.
inline const char* Behind(const char* line, const char* label) {
    const std::size_t length = std::strlen(label);
    return std::strncmp(line, label, length) == 0 ? line + length : nullptr;
}

}  // namespace dorvutil::platform
