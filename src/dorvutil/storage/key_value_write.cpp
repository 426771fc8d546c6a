#include "dorvutil/storage/key_value_file.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/memory/heap.h"
#include "dorvutil/storage/file_handle.h"
#include "dorvutil/storage/key_value_kinds.h"
#include "dorvutil/text/encoding.h"

namespace dorvutil {
namespace {

// A row of a wide table is formatted in a buffer of this size, and holds at most this much of a narrow text.
constexpr std::uint32_t kWideRowSize = 512;
constexpr std::uint32_t kMaxNarrowText = 255;

// The parts of one line: the key and, behind an equals sign, the value.
template <class C>
struct Row {
    std::basic_string_view<C> m_key;
    std::basic_string_view<C> m_value;
    bool m_hasValue = false;

    std::size_t Length() const { return m_key.size() + m_value.size() + (m_hasValue ? 1 : 0); }
    // Writes at most `room` characters, no terminator; returns how many.
    std::size_t Write(C* out, std::size_t room) const {
        C* at = out;
        const auto put = [&](std::basic_string_view<C> text) {
            text = text.substr(0, room - static_cast<std::size_t>(at - out));
            at = std::copy(text.begin(), text.end(), at);
        };
        static constexpr C kEquals = '=';
        put(m_key);
        if (m_hasValue) put({&kEquals, 1});
        put(m_value);
        return static_cast<std::size_t>(at - out);
    }
};

// Room for values that are not text of the source in its own width.
constexpr std::uint32_t kScratchSize = 4 * kMaxNarrowText;  // units: no more than the bytes they come from
template <class C>
struct Scratch {
    C m_text[kScratchSize];
};

template <class C>
std::basic_string_view<C> FieldText(C* field, std::size_t limit) {
    const C* const end = std::char_traits<C>::find(field, limit, C{});
    const std::size_t length = end ? static_cast<std::size_t>(end - field) : limit;
    fpc::Replace(field, length, "\r\n", "||");
    return {field, length};
}

template <class C>
std::basic_string_view<C> NumberText(const unsigned char* field, std::uint32_t size, Scratch<C>& scratch) {
    std::uint32_t number = 0;
    for (std::uint32_t i = 0; i < size && i < sizeof(number); ++i) number |= std::uint32_t{field[i]} << 8 * i;
    char digits[16];
    char* const end = std::to_chars(digits, digits + sizeof(digits), static_cast<std::int32_t>(number)).ptr;
    std::copy(digits, end, scratch.m_text);
    return {scratch.m_text, static_cast<std::size_t>(end - digits)};
}

// A wide row holds at most 255 characters of a narrow text, and no more than the field has bytes.
std::basic_string_view<char16_t> WideText(std::string_view narrow, Scratch<char16_t>& scratch) {
    std::size_t bytes = std::min<std::size_t>(narrow.size(), kScratchSize);
    // Cut between characters: half of one would turn the text into Latin-1.
    for (int i = 0; i < 3 && bytes < narrow.size() && (narrow[bytes] & 0xC0) == 0x80; ++i) --bytes;
    const auto count = static_cast<std::uint32_t>(bytes);
    if (count == 0) return {};
    ORVConvertUTF8toUTF16(narrow.data(), count, scratch.m_text, kScratchSize);
    std::size_t units = std::min<std::size_t>(GetNumUnitsNeededForUTF16(narrow.data(), count), kMaxNarrowText);
    if (units == kMaxNarrowText && (scratch.m_text[units - 1] & 0xFC00) == 0xD800) --units;
    return {scratch.m_text, units};
}

template <class C>
std::basic_string_view<C> Value(const TFileParseCode<C>& row, void* source, const C* sectionName, Scratch<C>& scratch) {
    auto* const field = static_cast<unsigned char*>(source) + row.m_offset;
    if (row.m_kind == kFpcInteger) return NumberText(field, row.m_size, scratch);
    if constexpr (sizeof(C) == 1) {
        if (row.m_kind == kFpcText) return FieldText(reinterpret_cast<char*>(field), row.m_size);
    } else {
        if (row.m_kind == kFpcText) return WideText(FieldText(reinterpret_cast<char*>(field), row.m_size), scratch);
        if (row.m_kind == kFpcWideText)
            return FieldText(reinterpret_cast<char16_t*>(field), row.m_size / sizeof(char16_t));
    }
    return sectionName ? std::basic_string_view<C>(sectionName) : std::basic_string_view<C>();
}

template <class C>
Row<C> RowOf(const TFileParseCode<C>& row, void* source, const C* sectionName, Scratch<C>& scratch) {
    const bool named = row.m_kind == kFpcBegin || (sizeof(C) == 2 && row.m_kind == kFpcSecondBegin);
    const bool hasValue = named || row.m_kind == kFpcInteger || fpc::IsText<C>(row.m_kind);
    if (!hasValue && row.m_kind != kFpcEnd) return {};
    Row<C> result;
    if (row.m_key) result.m_key = row.m_key;
    result.m_hasValue = hasValue;
    if (hasValue) result.m_value = Value(row, source, sectionName, scratch);
    return result;
}

// A text block on the heap that grows; the numbers are characters.
template <class C>
class Block {
public:
    Block() = default;
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block() { Mem_Free(m_text); }

    bool AddLine(const Row<C>& row) {
        const std::size_t needed = m_length + row.Length() + 2;
        if (needed > m_capacity && !Grow(needed)) return false;
        m_length += row.Write(m_text + m_length, row.Length());
        m_text[m_length++] = '\r';
        m_text[m_length++] = '\n';
        return true;
    }
    const C* Text() const { return m_text; }
    std::size_t Length() const { return m_length; }

private:
    static constexpr std::size_t kFirst = 4096 / sizeof(C);

    bool Grow(std::size_t needed) {
        const std::size_t capacity = std::max({kFirst, 2 * m_capacity, needed});
        if (capacity > UINT32_MAX / sizeof(C)) return false;  // more than one Write takes
        void* const grown = Mem_Realloc(m_text, static_cast<std::uint32_t>(capacity * sizeof(C)));
        if (!grown) return false;
        m_text = static_cast<C*>(grown);
        m_capacity = capacity;
        return true;
    }

    C* m_text = nullptr;
    std::size_t m_capacity = 0;
    std::size_t m_length = 0;
};

template <class C>
bool SaveFile(const TFileParseCode<C>* table, COrvFileHandleBase* file, void* source, const C* sectionName) {
    if (!source || !table) return false;
    if (!file || !GetFileMgr()) return true;
    Block<C> block;
    Scratch<C> scratch;
    for (const TFileParseCode<C>* row = table;; ++row) {
        if (!block.AddLine(RowOf(*row, source, sectionName, scratch))) return true;
        if (row->m_kind == kFpcEnd) break;
    }
    file->Write(block.Text(), static_cast<std::uint32_t>(block.Length() * sizeof(C)), 1);
    return true;
}

template <class C>
std::int32_t AddToBuffer(const TFileParseCode<C>* table, void* source, const C* sectionName, C* out,
                         std::int32_t outSize, std::size_t maxRow) {
    if (!table || !source || !out || outSize <= 0) return 0;
    const auto size = static_cast<std::size_t>(outSize);
    std::size_t length = 0;
    const auto addLine = [&](const Row<C>& row) {
        const std::size_t rowLength = std::min(row.Length(), maxRow);
        if (length + rowLength + 2 >= size) return;
        length += row.Write(out + length, rowLength);
        out[length++] = '\r';
        out[length++] = '\n';
    };
    Scratch<C> scratch;
    for (const TFileParseCode<C>* row = table;; ++row) {
        addLine(RowOf(*row, source, sectionName, scratch));
        if (row->m_kind == kFpcEnd) break;
    }
    addLine({});
    out[length] = 0;
    return static_cast<std::int32_t>(length);
}

}  // namespace

std::int32_t FPC_EncodeStr(const FileParseCode* row, void* source, const char* sectionName, char* out) {
    if (!row || !source || !out) return 0;
    Scratch<char> scratch;
    const Row<char> line = RowOf(*row, source, sectionName, scratch);
    const std::size_t length = line.Write(out, line.Length());
    out[length] = '\0';
    return static_cast<std::int32_t>(length);
}

std::int32_t FPC_EncodeStrW(const FileParseCodeW* row, void* source, const char16_t* sectionName, char16_t* out,
                            std::uint32_t outSize) {
    if (!row || !source || !out) return 0;
    Scratch<char16_t> scratch;
    const std::size_t length = RowOf(*row, source, sectionName, scratch).Write(out, outSize);
    if (length < outSize) out[length] = 0;
    return static_cast<std::int32_t>(length);
}

bool FPC_SaveFile(const FileParseCode* table, COrvFileHandleBase* file, void* source, const char* sectionName) {
    return SaveFile(table, file, source, sectionName);
}

bool FPC_SaveFileW(const FileParseCodeW* table, COrvFileHandleBase* file, void* source, const char16_t* sectionName) {
    return SaveFile(table, file, source, sectionName);
}

std::int32_t FPC_AddToBuffer(const FileParseCode* table, void* source, const char* sectionName, char* out,
                             std::int32_t outSize) {
    return AddToBuffer(table, source, sectionName, out, outSize, INT32_MAX);
}

std::int32_t FPC_AddToBufferW(const FileParseCodeW* table, void* source, const char16_t* sectionName, char16_t* out,
                              std::int32_t outSize) {
    return AddToBuffer<char16_t>(table, source, sectionName, out, outSize, kWideRowSize - 1);
}

}  // namespace dorvutil
