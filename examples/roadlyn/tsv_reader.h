#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace roadlyn {

/// Goes through tab-separated UTF-8 text with a header line, without quoting; lines end in LF or CR LF. Whatever does
/// not fit throws InputError with the file's name and the line.
class TsvReader {
public:
    /// Reads the header line. `columns` names the columns that must be there, in any order; others are passed over.
    /// `path` is what errors name; it and `text` must outlive the reader.
    TsvReader(const std::string& path, std::string_view text, std::span<const std::string_view> columns);

    /// Goes to the next line; false at the end of the text. The line has as many fields as the header, is well-formed
    /// UTF-8 and free of control characters.
    bool Next();

    /// A field of the line; `column` is an index into the columns given.
    std::string_view Field(std::size_t column) const { return m_fields[m_position[column]]; }
    /// The field as a whole number in the range given.
    std::int32_t Number(std::size_t column, std::int32_t least, std::int32_t most) const;

    [[noreturn]] void Fail(const std::string& reason) const;

    std::size_t Line() const { return m_line; }
    std::size_t BytesLeft() const { return m_text.size(); }

private:
    std::string_view TakeLine();
    void Split(std::string_view line);

    const std::string& m_path;
    std::string_view m_text;  // what is still to be read
    std::span<const std::string_view> m_columns;
    std::size_t m_line = 0;
    std::vector<std::string_view> m_fields;
    std::size_t m_fieldCount = 0;
    std::vector<std::size_t> m_position;  // of each column among the fields
};

/// The whole content of a file. Throws InputError when it cannot be read.
std::string ReadWholeFile(const std::string& path);

}  // namespace roadlyn
