#include "dorvutil/storage/key_value_file.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <string_view>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/storage/file_handle.h"
#include "dorvutil/storage/key_value_kinds.h"
#include "dorvutil/text/encoding.h"
#include "dorvutil/text/number_text.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kLineSize = 512;  // characters of a line, and of a value, with the terminator

// Looks at no more of the row's key than there is, and does not measure it first.
template <class C>
bool HasKey(const TFileParseCode<C>& row, std::basic_string_view<C> key) {
    if (!row.m_key) return false;
    std::size_t i = 0;
    while (i < key.size() && row.m_key[i] == key[i]) ++i;  // a key holds no terminator
    return i == key.size() && row.m_key[i] == 0;
}

template <class C>
const TFileParseCode<C>* FindRow(const TFileParseCode<C>* table, std::basic_string_view<C> key) {
    if (!table || key.empty()) return nullptr;
    for (const TFileParseCode<C>* row = table;; ++row) {
        if (HasKey(*row, key)) return row;
        if (row->m_kind == kFpcEnd) return nullptr;
    }
}

// The rows of a table by key. Small tables, and those there is no memory for, are searched row by row.
template <class C>
class RowIndex {
public:
    explicit RowIndex(const TFileParseCode<C>* table) : m_table(table) {
        std::uint32_t count = 1;
        while (table && table[count - 1].m_kind != kFpcEnd) ++count;
        if (count <= kSearched) return;
        std::uint32_t size = 4 * kSearched;
        while (size < 2 * count) size *= 2;
        m_slots.reset(new (std::nothrow) Slot[size]());
        m_mask = size - 1;
        for (std::uint32_t row = 0; m_slots && row < count; ++row) Add(row);
    }

    const TFileParseCode<C>* Find(std::basic_string_view<C> key) const {
        if (!m_slots) return FindRow(m_table, key);
        const std::uint32_t row = key.empty() ? 0 : SlotOf(key, Hash(key)).m_row;
        return row != 0 ? m_table + row - 1 : nullptr;
    }

private:
    static constexpr std::uint32_t kSearched = 8;

    struct Slot {
        std::uint32_t m_row;  // from 1, 0 free
        std::uint32_t m_hash;
    };

    // Takes eight bytes at a time; the tables are the host's own, so nobody picks keys to collide.
    static std::uint32_t Hash(std::basic_string_view<C> key) {
        constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;  // 2^64 divided by the golden ratio
        const auto* at = reinterpret_cast<const unsigned char*>(key.data());
        std::uint64_t hash = key.size();
        for (std::size_t left = key.size() * sizeof(C); left != 0;) {
            std::uint64_t word = 0;
            const std::size_t taken = std::min(left, sizeof(word));
            std::memcpy(&word, at, taken);
            hash = (hash ^ word) * kFactor;
            hash ^= hash >> 32;
            at += taken;
            left -= taken;
        }
        return static_cast<std::uint32_t>(hash);
    }
    // The slot with the key, or the free one where it belongs.
    Slot& SlotOf(std::basic_string_view<C> key, std::uint32_t hash) const {
        std::uint32_t at = hash & m_mask;
        while (m_slots[at].m_row != 0 && !(m_slots[at].m_hash == hash && HasKey(m_table[m_slots[at].m_row - 1], key)))
            at = (at + 1) & m_mask;
        return m_slots[at];
    }
    // Of rows with one key the first stays.
    void Add(std::uint32_t row) {
        if (!m_table[row].m_key) return;
        const std::basic_string_view<C> key = m_table[row].m_key;
        const std::uint32_t hash = Hash(key);
        Slot& slot = SlotOf(key, hash);
        if (slot.m_row == 0) slot = {row + 1, hash};
    }

    const TFileParseCode<C>* m_table;
    std::unique_ptr<Slot[]> m_slots;
    std::uint32_t m_mask = 0;
};

template <class C>
std::basic_string_view<C> KeyOf(std::basic_string_view<C> line) {
    for (const char end : {'=', '\n', '\r'}) line = line.substr(0, line.find(static_cast<C>(end)));
    return line;
}

// Writes the value of `line` to `value`, which has room for it and a terminator; returns its length.
template <class C>
std::size_t DecodeValue(const TFileParseCode<C>& row, std::basic_string_view<C> line, std::size_t limit, C* value) {
    std::size_t length = 0;
    if (line.size() > row.m_keyLength) length = std::min(line.size() - row.m_keyLength - 1, limit);
    if (length != 0) std::copy_n(line.data() + row.m_keyLength + 1, length, value);
    if (fpc::IsText<C>(row.m_kind)) fpc::Replace(value, length, "||", "\r\n");
    while (length != 0 && (value[length - 1] == '\r' || value[length - 1] == '\n')) --length;
    value[length] = 0;
    return length;
}

template <class C>
std::basic_string_view<C> LineIn(const C* line) {
    std::size_t length = 0;
    if constexpr (sizeof(C) == 1) {
        length = ::strnlen(line, kLineSize - 1);
    } else {
        while (length < kLineSize - 1 && line[length] != 0) ++length;
    }
    return {line, length};
}

template <class C>
TFileParseCode<C>* Decode(const TFileParseCode<C>* table, const C* text, C* value, std::size_t valueSize, bool fill,
                          std::int32_t* number) {
    if (!text) return nullptr;
    const std::basic_string_view<C> line = LineIn(text);
    const TFileParseCode<C>* const row = FindRow(table, KeyOf(line));
    if (row && row->m_kind != kFpcEnd && value) {
        C decoded[kLineSize];
        const std::size_t length = DecodeValue(*row, line, valueSize, decoded);
        std::copy_n(decoded, length, value);
        if (fill)
            std::fill(value + length, value + valueSize, C{});
        else
            value[length] = 0;
        if (row->m_kind == kFpcInteger && number) *number = ToSigned32(ParseInteger(decoded, 10));
    }
    return const_cast<TFileParseCode<C>*>(row);
}

// Copies `size` bytes of a value in a buffer of kLineSize characters whose rest is zero.
template <class C>
void StoreText(const C* value, std::size_t length, std::uint32_t size, unsigned char* field) {
    const std::size_t room = std::min<std::size_t>(size, kLineSize * sizeof(C));
    const std::size_t bytes = std::min(length * sizeof(C), room);
    if (bytes != 0) std::memcpy(field, value, bytes);
    if (room > bytes) std::memset(field + bytes, 0, room - bytes);
}

template <class C>
void Store(const TFileParseCode<C>& row, const C* value, std::size_t length, unsigned char* target) {
    unsigned char* const field = target + row.m_offset;
    if (row.m_kind == kFpcInteger) {
        const auto number = static_cast<std::uint32_t>(ToSigned32(ParseInteger(value, 10)));
        for (std::uint32_t i = 0; i < row.m_size && i < sizeof(number); ++i)
            field[i] = static_cast<unsigned char>(number >> 8 * i);
        return;
    }
    if constexpr (sizeof(C) == 2) {
        if (row.m_kind == kFpcText) {
            const auto units = static_cast<std::uint32_t>(length);
            ORVConvertUTF16toUTF8(value, units, reinterpret_cast<char*>(field), row.m_size);
            return;
        }
    }
    StoreText(value, length, row.m_size, field);
}

template <class C>
bool ParseFile(const TFileParseCode<C>* table, COrvFileHandleBase* file, void* target) {
    if (!target || !table || !file || !GetFileMgr()) return false;
    const RowIndex<C> rows(table);
    bool open = false;
    C buffer[kLineSize], value[kLineSize];
    while (file->ReadLine(buffer, kLineSize)) {
        const std::basic_string_view<C> line = LineIn(buffer);
        const TFileParseCode<C>* const row = rows.Find(KeyOf(line));
        if (!row) continue;
        if (row->m_kind == kFpcEnd) return open;
        if (row->m_kind == kFpcBegin) {
            if (open) return false;
            open = true;
        } else if (row->m_kind == kFpcInteger || fpc::IsText<C>(row->m_kind)) {
            if (!open) return false;
            const std::size_t length = DecodeValue(*row, line, kLineSize - 1, value);
            Store(*row, value, length, static_cast<unsigned char*>(target));
        }
    }
    return false;
}

}  // namespace

FileParseCode* FPC_Find(const FileParseCode* table, const char* key) {
    return const_cast<FileParseCode*>(key ? FindRow<char>(table, key) : nullptr);
}

FileParseCodeW* FPC_FindW(const FileParseCodeW* table, const char16_t* key) {
    return const_cast<FileParseCodeW*>(key ? FindRow<char16_t>(table, key) : nullptr);
}

FileParseCode* FPC_DecodeStr(const FileParseCode* table, const char* line, char* value, std::int32_t* number) {
    return Decode(table, line, value, kLineSize - 1, false, number);
}

FileParseCodeW* FPC_DecodeStrW(const FileParseCodeW* table, const char16_t* line, char16_t* value,
                               std::uint32_t valueSize, std::int32_t* number) {
    return Decode(table, line, value, valueSize, true, number);
}

bool FPC_ParseFile(const FileParseCode* table, COrvFileHandleBase* file, void* target) {
    return ParseFile(table, file, target);
}

bool FPC_ParseFileW(const FileParseCodeW* table, COrvFileHandleBase* file, void* target) {
    return ParseFile(table, file, target);
}

}  // namespace dorvutil
