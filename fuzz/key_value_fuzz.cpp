// Settings files: what was read, written and read again is the same; the forms that write agree.
#include "dorvutil/storage/key_value_file.h"

#include <cstddef>

#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

struct Settings {
    char m_name[16];
    std::uint32_t m_guard1;  // fields that no row names: they never change
    std::int32_t m_count;
    std::uint8_t m_small;
    std::uint8_t m_guard2;
    std::uint16_t m_short;
    char16_t m_wide[8];
    std::uint32_t m_guard3;
    char m_long[300];
    std::uint32_t m_guard4;
};

constexpr FileParseCode kTable[] = {
    {"[Cfg]", 0, 0, 5, kFpcBegin},
    {"Name", offsetof(Settings, m_name), 16, 4, kFpcText},
    {"Count", offsetof(Settings, m_count), 4, 5, kFpcInteger},
    {"Small", offsetof(Settings, m_small), 1, 5, kFpcInteger},
    {"Short", offsetof(Settings, m_short), 2, 5, kFpcInteger},
    {"Nothing", 0, 0, 7, kFpcNone},
    {"Long", offsetof(Settings, m_long), 300, 4, kFpcText},
    {"A", 0, 0, 1, kFpcNone},
    {"B", 0, 0, 1, kFpcNone},
    {"[End]", 0, 0, 5, kFpcEnd},
};
constexpr FileParseCodeW kWideTable[] = {
    {u"[Cfg]", 0, 0, 5, kFpcBegin},
    {u"Name", offsetof(Settings, m_name), 16, 4, kFpcText},
    {u"Count", offsetof(Settings, m_count), 4, 5, kFpcInteger},
    {u"Small", offsetof(Settings, m_small), 1, 5, kFpcInteger},
    {u"Short", offsetof(Settings, m_short), 2, 5, kFpcInteger},
    {u"Wide", offsetof(Settings, m_wide), 16, 4, kFpcWideText},
    {u"Second", 0, 0, 6, kFpcSecondBegin},
    {u"[End]", 0, 0, 5, kFpcEnd},
};

// The two widths of the interface under one name.
template <class C>
struct Format;

template <>
struct Format<char> {
    static bool Parse(COrvFileHandleBase* file, Settings& s) { return FPC_ParseFile(kTable, file, &s); }
    static bool Save(COrvFileHandleBase* file, Settings& s) { return FPC_SaveFile(kTable, file, &s, "main"); }
    static std::int32_t ToBuffer(Settings& s, Exact<char>& out) {
        return FPC_AddToBuffer(kTable, &s, "main", out.Data(), out.Length());
    }
    static void DecodeLine(const char* line, std::uint32_t) {
        Exact<char> value(512);
        std::int32_t number = 0;
        const FileParseCode* const row = FPC_DecodeStr(kTable, line, value.Data(), &number);
        FUZZ_CHECK(row == nullptr || (row >= kTable && row < std::end(kTable)));
        if (row && row->m_kind == kFpcInteger) FUZZ_CHECK(std::memchr(value.Data(), 0, 512) != nullptr);
    }
};

template <>
struct Format<char16_t> {
    static bool Parse(COrvFileHandleBase* file, Settings& s) { return FPC_ParseFileW(kWideTable, file, &s); }
    static bool Save(COrvFileHandleBase* file, Settings& s) { return FPC_SaveFileW(kWideTable, file, &s, u"main"); }
    static std::int32_t ToBuffer(Settings& s, Exact<char16_t>& out) {
        return FPC_AddToBufferW(kWideTable, &s, u"main", out.Data(), out.Length());
    }
    static void DecodeLine(const char16_t* line, std::uint32_t size) {
        Exact<char16_t> value(size);
        std::int32_t number = 0;
        const FileParseCodeW* const row = FPC_DecodeStrW(kWideTable, line, value.Data(), size, &number);
        FUZZ_CHECK(row == nullptr || (row >= kWideTable && row < std::end(kWideTable)));
    }
};

template <class C>
std::basic_string<C> Field(const C* field, std::size_t size) {
    return std::basic_string<C>(UpToZero(std::basic_string_view<C>(field, size)));
}

// Line ends at the end of a value are cut off when it is read.
template <class C>
std::basic_string<C> Trimmed(std::basic_string<C> text) {
    while (!text.empty() && (text.back() == '\r' || text.back() == '\n')) text.pop_back();
    return text;
}

void CheckSame(const Settings& a, const Settings& b) {
    FUZZ_CHECK(a.m_count == b.m_count && a.m_small == b.m_small && a.m_short == b.m_short);
    FUZZ_CHECK(Trimmed(Field(a.m_name, 16)) == Field(b.m_name, 16));
    FUZZ_CHECK(Trimmed(Field(a.m_long, 300)) == Field(b.m_long, 300));
    FUZZ_CHECK(Trimmed(Field(a.m_wide, 8)) == Field(b.m_wide, 8));
}

void CheckGuards(const Settings& s) { FUZZ_CHECK((s.m_guard1 | s.m_guard2 | s.m_guard3 | s.m_guard4) == 0); }

template <class C>
bool Parse(std::string_view content, Settings& settings) {
    MemoryFile file(content);
    const bool whole = Format<C>::Parse(&file, settings);
    CheckGuards(settings);
    return whole;
}

// `settings` is passed by value: writing changes the text fields.
template <class C>
std::string Saved(Settings settings) {
    MemoryFile file;
    FUZZ_CHECK(Format<C>::Save(&file, settings));
    CheckGuards(settings);
    return file.Content();
}

template <class C>
void CheckBuffer(Settings settings, const std::string& saved, std::uint32_t size) {
    Exact<C> out(size);
    const std::int32_t length = Format<C>::ToBuffer(settings, out);
    FUZZ_CHECK(length >= 0 && (size == 0 || static_cast<std::uint32_t>(length) < size));
    if (size == 0) return;
    FUZZ_CHECK(out.Data()[length] == 0);
    if (size < saved.size() + 4) return;
    FUZZ_CHECK(static_cast<std::size_t>(length) * sizeof(C) == saved.size() + 2 * sizeof(C));
    FUZZ_CHECK(std::memcmp(out.Data(), saved.data(), saved.size()) == 0);
}

template <class C>
void Check(std::string_view content, std::uint32_t size) {
    Settings first{}, second{}, third{};
    if (!Parse<C>(content, first)) return;
    const std::string saved = Saved<C>(first);
    FUZZ_CHECK(Parse<C>(saved, second));
    CheckSame(first, second);
    const std::string again = Saved<C>(second);
    FUZZ_CHECK(Parse<C>(again, third));
    CheckSame(second, third);
    FUZZ_CHECK(Saved<C>(third) == again);
    CheckBuffer<C>(first, saved, size);
    CheckBuffer<C>(first, saved, static_cast<std::uint32_t>(saved.size()) + 4);
}

// A structure of any bytes can be written; whether it reads back depends on the line ends in it.
template <class C>
void CheckForeign(std::string_view bytes) {
    Settings settings{}, back{};
    std::memcpy(&settings, bytes.data(), std::min(bytes.size(), sizeof settings));
    settings.m_guard1 = settings.m_guard3 = settings.m_guard4 = settings.m_guard2 = 0;
    Parse<C>(Saved<C>(settings), back);
}

}  // namespace

void TestInput(Input& input) {
    const std::uint32_t choice = input.Byte();
    const std::string text(input.Rest(8192));
    std::u16string wide = choice % 2 == 0 ? Widened(text) : Units(text);
    Check<char>(text, 8 * choice);
    Check<char16_t>({reinterpret_cast<const char*>(wide.data()), 2 * wide.size()}, 8 * choice);
    Format<char>::DecodeLine(text.c_str(), choice);
    Format<char16_t>::DecodeLine(wide.c_str(), 4 * choice);
    CheckForeign<char>(text);
    CheckForeign<char16_t>(text);
}

}  // namespace dorvutil::fuzz
