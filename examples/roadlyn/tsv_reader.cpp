#include "tsv_reader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <memory>
#include <system_error>

#include "input_error.h"
#include "text_fold.h"

namespace roadlyn {

TsvReader::TsvReader(const std::string& path, std::string_view text, std::span<const std::string_view> columns)
    : m_path(path), m_text(text), m_columns(columns) {
    if (m_text.empty()) throw InputError(m_path, 0, "the file is empty");
    if (m_text.starts_with("\xEF\xBB\xBF")) m_text.remove_prefix(3);
    Split(TakeLine());
    m_fieldCount = m_fields.size();
    for (const std::string_view column : columns) {
        const auto found = std::find(m_fields.begin(), m_fields.end(), column);
        if (found == m_fields.end()) Fail("the header line has no column '" + std::string(column) + "'");
        if (std::find(found + 1, m_fields.end(), column) != m_fields.end()) {
            Fail("column '" + std::string(column) + "' occurs twice in the header line");
        }
        m_position.push_back(static_cast<std::size_t>(found - m_fields.begin()));
    }
}

bool TsvReader::Next() {
    if (m_text.empty()) return false;
    Split(TakeLine());
    if (m_fields.size() != m_fieldCount) {
        Fail("wrong number of columns: " + std::to_string(m_fields.size()) + " where the header line has " +
             std::to_string(m_fieldCount));
    }
    return true;
}

std::string_view TsvReader::TakeLine() {
    ++m_line;
    const std::size_t end = m_text.find('\n');
    std::string_view line = m_text.substr(0, end);
    m_text.remove_prefix(end == std::string_view::npos ? m_text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    for (const char c : line) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte == 0) Fail("NUL byte");
        if ((byte < 0x20 && byte != '\t') || byte == 0x7F) Fail("control character");
    }
    if (FindInvalidUtf8(line) != std::string_view::npos) Fail("invalid UTF-8");
    return line;
}

void TsvReader::Split(std::string_view line) {
    m_fields.clear();
    for (std::size_t tab; (tab = line.find('\t')) != std::string_view::npos; line.remove_prefix(tab + 1)) {
        m_fields.push_back(line.substr(0, tab));
    }
    m_fields.push_back(line);
}

std::int32_t TsvReader::Number(std::size_t column, std::int32_t least, std::int32_t most) const {
    const std::string_view field = Field(column);
    std::int64_t value = 0;
    const char* const end = field.data() + field.size();
    const auto [stop, error] = std::from_chars(field.data(), end, value);
    if (error == std::errc::invalid_argument || stop != end) {
        Fail(std::string(m_columns[column]) + " '" + std::string(field) + "' is not a whole number");
    }
    if (error != std::errc{} || value < least || value > most) {
        Fail(std::string(m_columns[column]) + " " + std::string(field) + " is outside " + std::to_string(least) +
             " to " + std::to_string(most));
    }
    return static_cast<std::int32_t>(value);
}

void TsvReader::Fail(const std::string& reason) const { throw InputError(m_path, m_line, reason); }

std::string ReadWholeFile(const std::string& path) {
    const auto reason = [] { return std::generic_category().message(errno); };
    errno = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file) throw InputError(path, 0, reason());
    std::string text;
    std::array<char, 1 << 16> block;
    std::size_t got;
    while ((got = std::fread(block.data(), 1, block.size(), file.get())) > 0) text.append(block.data(), got);
    if (std::ferror(file.get())) throw InputError(path, 0, reason());
    return text;
}

}  // namespace roadlyn
