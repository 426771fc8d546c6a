#include "dorvutil/storage/key_value_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "dorvutil/storage/memory_handle.h"
#include "messaging/registry_down.h"

namespace dorvutil {
namespace {

struct Settings {
    char m_name[16];
    std::int32_t m_count;
    std::uint8_t m_small;
    char16_t m_wide[8];
};

constexpr FileParseCode kTable[] = {
    {"[Cfg]", 0, 0, 5, kFpcBegin},
    {"Name", offsetof(Settings, m_name), 16, 4, kFpcText},
    {"Count", offsetof(Settings, m_count), 4, 5, kFpcInteger},
    {"Small", offsetof(Settings, m_small), 1, 5, kFpcInteger},
    {"Nothing", 0, 0, 7, kFpcNone},
    {"[End]", 0, 0, 5, kFpcEnd},
};
constexpr FileParseCodeW kWideTable[] = {
    {u"[Cfg]", 0, 0, 5, kFpcBegin},
    {u"Name", offsetof(Settings, m_name), 16, 4, kFpcText},
    {u"Wide", offsetof(Settings, m_wide), 16, 4, kFpcWideText},
    {u"Count", offsetof(Settings, m_count), 4, 5, kFpcInteger},
    {u"Second", 0, 0, 6, kFpcSecondBegin},
    {u"[End]", 0, 0, 5, kFpcEnd},
};

std::u16string Wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

template <class C>
bool Parse(const std::basic_string<C>& text, Settings& settings) {
    COrvFileHandleMemory file(text.data(), static_cast<std::uint32_t>(text.size() * sizeof(C)), false, eAccessRead);
    file.Open();
    if constexpr (sizeof(C) == 1)
        return FPC_ParseFile(kTable, &file, &settings);
    else
        return FPC_ParseFileW(kWideTable, &file, &settings);
}

template <class C, class Save>
std::basic_string<C> Saved(Save save) {
    COrvFileHandleMemory file(eAccessWrite);
    file.Open();
    EXPECT_TRUE(save(&file));
    std::basic_string<C> text(file.ByteArray().Count() / sizeof(C), C{});
    if (!text.empty()) std::memcpy(text.data(), file.ByteArray().Data(), text.size() * sizeof(C));
    return text;
}

TEST(KeyValueFile, WritesLinesAndReadsThemBack) {
    Settings settings{"abc", 7, 200, u"w\xE4"}, back{};
    const std::string lines = Saved<char>([&](auto* f) { return FPC_SaveFile(kTable, f, &settings, "main"); });
    EXPECT_EQ(lines, "[Cfg]=main\r\nName=abc\r\nCount=7\r\nSmall=200\r\n\r\n[End]\r\n");
    EXPECT_TRUE(Parse(lines, back));
    EXPECT_STREQ(back.m_name, "abc");
    EXPECT_EQ(back.m_count + back.m_small, 207);
    settings.m_count = INT32_MIN;
    std::memcpy(settings.m_name, "z\xC3\xA4\r\ny\r\n", 9);
    const auto save = [&](auto* f) { return FPC_SaveFileW(kWideTable, f, &settings, nullptr); };
    const std::u16string wide = Saved<char16_t>(save);
    EXPECT_EQ(wide, u"[Cfg]=\r\nName=z\xE4||y||\r\nWide=w\xE4\r\nCount=-2147483648\r\nSecond=\r\n[End]\r\n");
    EXPECT_TRUE(Parse(wide, back));
    EXPECT_STREQ(back.m_name, "z\xC3\xA4\r\ny") << "line ends of a value are cut off";
    EXPECT_EQ(std::u16string(back.m_wide), u"w\xE4");
    EXPECT_EQ(back.m_count, INT32_MIN);
    EXPECT_FALSE(FPC_SaveFile(kTable, nullptr, nullptr, nullptr) ||
                 FPC_SaveFileW(kWideTable, nullptr, nullptr, nullptr));
    EXPECT_TRUE(FPC_SaveFile(kTable, nullptr, &settings, nullptr)) << "nowhere to write to";
    const testing_support::RegistryDown down;
    EXPECT_FALSE(Parse(lines, back)) << "no file manager";
    EXPECT_EQ(Saved<char16_t>(save), u"");
}

TEST(KeyValueFile, SectionsThatAreWholeAndOthers) {
    static const struct {
        const char *name, *text;
        bool result;
        const char* nameRead;
        std::int32_t count;
    } kCases[] = {
        {"bare line feeds", "[Cfg]\nName=x\nCount=3\n[End]\n", true, "x", 3},
        {"ends marked 0xFF", "[Cfg]=a\377Name=x\377Count=3\377[End]", true, "x", 3},
        {"no end", "[Cfg]=\r\nName=x\r\nCount=3\r\n", false, "x", 3},
        {"second begin", "[Cfg]=\nCount=3\n[Cfg]=\nCount=4\n[End]\n", false, "-", 3},
        {"end alone", "[End]\n[Cfg]=\nCount=3\n[End]\n", false, "-", -1},
        {"text outside", "Name=x\n[Cfg]=\n[End]\n", false, "-", -1},
        {"number outside", "Count=3\n[Cfg]=\n[End]\n", false, "-", -1},
        {"no value outside", "Nothing=\n[Cfg]=\nCount=3\n[End]\n", true, "-", 3},
        {"unknown and malformed lines", "junk\n=x\n\nname=x\n[Cfg]=\nNamex=1\n Name=2\n=\n[End]", true, "-", -1},
        {"no equals sign", "[Cfg]\nName\nCount\n[End]\n", true, "", 0},
        {"blanks around numbers", "[Cfg]\nCount= 12  \n[End]\n", true, "-", 12},
        {"number cut off", "[Cfg]\nCount=12x3\n[End]\n", true, "-", 12},
        {"number too large", "[Cfg]\nCount=99999999999\n[End]\n", true, "-", INT32_MAX},
        {"no number", "[Cfg]\nCount=\n[End]\n", true, "-", 0},
        {"value with equals signs", "[Cfg]\nName=a=b==\n[End]\n", true, "a=b==", -1},
        {"line breaks", "[Cfg]\nName=|a||b|||c\n[End]=7\n", true, "|a\r\nb\r\n|c", -1},
        {"last one wins", "[Cfg]\nCount=1\nCount=2\n[End]\nCount=3\n", true, "-", 2},
        {"nothing", "", false, "-", -1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Settings settings{"-", -1, 0, u""}, wide{"-", -1, 0, u""};
        EXPECT_EQ(Parse(std::string(c.text), settings), c.result);
        EXPECT_STREQ(settings.m_name, c.nameRead);
        EXPECT_EQ(settings.m_count, c.count);
        if (std::strchr(c.text, '\xFF') || std::strstr(c.text, "Nothing")) continue;
        EXPECT_EQ(Parse(Wide(c.text), wide), c.result);
        EXPECT_STREQ(wide.m_name, c.nameRead);
        EXPECT_EQ(wide.m_count, c.count);
    }
}

TEST(KeyValueFile, ValuesThatFillOrExceedTheirFields) {
    Settings settings{};
    settings.m_count = -1;
    const std::string longText(700, 'x');
    EXPECT_TRUE(Parse("[Cfg]\nName=" + longText + "\nSmall=258\n[End]\n", settings));
    EXPECT_EQ(std::string(settings.m_name, 16), longText.substr(0, 16));
    EXPECT_EQ(settings.m_count, -1) << "behind the text";
    EXPECT_EQ(settings.m_small, 2);
    const std::u16string umlauts(15, u'\xE4');
    EXPECT_TRUE(Parse(u"[Cfg]\nName=x" + umlauts + u"\nWide=" + Wide(longText) + u"\n[End]\n", settings));
    EXPECT_STREQ(settings.m_name, "x\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4") << "whole characters";
    EXPECT_EQ(std::u16string(settings.m_wide, 8), u"xxxxxxxx");
    std::memset(settings.m_name, '|', 16);
    char out[64];
    EXPECT_EQ(FPC_EncodeStr(&kTable[1], &settings, nullptr, out), 21) << "a field without terminator";
    char16_t wide[24] = {};
    EXPECT_EQ(FPC_EncodeStrW(&kWideTable[2], &settings, nullptr, wide, 8), 8);
    EXPECT_EQ(std::u16string(wide), u"Wide=xxx");
}

TEST(KeyValueFile, FindsAndDecodesSingleLines) {
    EXPECT_EQ(FPC_Find(kTable, "Count"), &kTable[2]);
    EXPECT_EQ(FPC_Find(kTable, "[End]"), &kTable[5]);
    for (const char* const key : {"count", "Coun", "Counts", "", "x"}) EXPECT_EQ(FPC_Find(kTable, key), nullptr) << key;
    EXPECT_EQ(FPC_Find(kTable, nullptr), nullptr);
    EXPECT_EQ(FPC_FindW(kWideTable, u"Second"), &kWideTable[4]);
    EXPECT_FALSE(kTable[0] == kTable[0]);
    char value[512] = "kept";
    std::int32_t number = -7;
    EXPECT_EQ(FPC_DecodeStr(kTable, "[End]=x", value, &number), &kTable[5]);
    EXPECT_EQ(FPC_DecodeStr(kTable, "Count=5", nullptr, &number), &kTable[2]);
    EXPECT_EQ(number, -7);
    EXPECT_STREQ(value, "kept");
    EXPECT_EQ(FPC_DecodeStr(kTable, "Count=-5 \r\n", value, &number), &kTable[2]);
    EXPECT_EQ(number, -5);
    EXPECT_STREQ(value, "-5 ");
    EXPECT_EQ(FPC_DecodeStr(kTable, ("Name=" + std::string(600, 'v')).c_str(), value, nullptr), &kTable[1]);
    EXPECT_EQ(std::strlen(value), 506u);
    EXPECT_EQ(FPC_DecodeStr(kTable, "Na\nme=1", value, nullptr), nullptr);
    char16_t wide[4] = {u'#', u'#', u'#', u'#'};
    EXPECT_EQ(FPC_DecodeStrW(kWideTable, u"Count=123", wide, 2, &number), &kWideTable[3]);
    EXPECT_EQ(std::u16string(wide, 4), u"12##");
    EXPECT_EQ(number, 12);
    EXPECT_EQ(FPC_DecodeStrW(kWideTable, u"Wide=||", wide, 4, &number), &kWideTable[2]);
    EXPECT_EQ(std::u16string(wide, 4), std::u16string(4, u'\0'));
}

TEST(KeyValueFile, BufferTakesTheLinesThatFit) {
    Settings settings{"abc", 7, 5, u"w"};
    const std::string all = "[Cfg]=main\r\nName=abc\r\nCount=7\r\nSmall=5\r\n\r\n[End]\r\n\r\n";
    char out[128];
    EXPECT_EQ(FPC_AddToBuffer(kTable, &settings, "main", out, 128), static_cast<std::int32_t>(all.size()));
    EXPECT_EQ(out, all);
    const auto size = static_cast<std::int32_t>(all.size());
    EXPECT_EQ(FPC_AddToBuffer(kTable, &settings, "main", out, size + 1), size);
    EXPECT_EQ(FPC_AddToBuffer(kTable, &settings, "main", out, size), size - 2) << "no room for the last one";
    for (std::int32_t room = -1; room <= size; ++room) {
        std::vector<char> exact(static_cast<std::size_t>(room > 0 ? room : 1), '#');
        EXPECT_LT(FPC_AddToBuffer(kTable, &settings, "main", exact.data(), room), room > 0 ? room : 1);
    }
    EXPECT_EQ(FPC_AddToBuffer(kTable, nullptr, "", out, 128) + FPC_AddToBuffer(kTable, &settings, "", nullptr, 9), 0);
    std::vector<char16_t> wide(2000);
    const std::u16string section(1000, u's');
    EXPECT_EQ(FPC_AddToBufferW(kWideTable, &settings, section.c_str(), wide.data(), 2000),
              2 * 513 + 10 + 8 + 9 + 7 + 2);
}

// More rows than are searched one by one; of rows with one key the first counts; lines longer than the usual block.
TEST(KeyValueFile, LargeTablesAndLongRows) {
    constexpr std::uint32_t kNumbers = 500;
    std::vector<std::string> keys;
    for (std::uint32_t i = 0; i < kNumbers; ++i) keys.push_back("key" + std::to_string(i));
    std::vector<FileParseCode> table{{"[", 0, 0, 1, kFpcBegin}};
    for (std::uint32_t i = 0; i < kNumbers; ++i)
        table.push_back({keys[i].c_str(), 4 * i, 4, static_cast<std::uint8_t>(keys[i].size()), kFpcInteger});
    table.push_back({"key7", 0, 4, 4, kFpcInteger});
    table.push_back({nullptr, 0, 4, 0, kFpcNone});
    table.push_back({"text", 4 * kNumbers, 5000, 4, kFpcText});
    table.push_back({"]", 0, 0, 1, kFpcEnd});
    std::vector<std::int32_t> values(kNumbers + 1250), back(kNumbers + 1250);
    for (std::uint32_t i = 0; i < kNumbers; ++i) values[i] = static_cast<std::int32_t>(i * 54'321) - 9'000'000;
    values[7] = values[0];
    std::memset(&values[kNumbers], 'x', 5000);
    const std::string text =
        Saved<char>([&](auto* f) { return FPC_SaveFile(table.data(), f, values.data(), nullptr); });
    COrvFileHandleMemory file(text.data(), static_cast<std::uint32_t>(text.size()), false, eAccessRead);
    file.Open();
    EXPECT_TRUE(FPC_ParseFile(table.data(), &file, back.data()));
    EXPECT_TRUE(std::equal(values.begin(), values.begin() + kNumbers, back.begin()));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&back[kNumbers])), std::string(506, 'x')) << "one line of it";
    std::string umlauts;
    for (int i = 0; i < 600; ++i) umlauts += i == 0 ? "x" : "\xC3\xA4";
    const FileParseCodeW row{u"k", 0, 1199, 1, kFpcText};
    char16_t wide[300];
    EXPECT_EQ(FPC_EncodeStrW(&row, umlauts.data(), nullptr, wide, 300), 2 + 255)
        << "at most that much of a narrow text";
    EXPECT_EQ(wide[256], u'\xE4') << "cut between characters";
}

}  // namespace
}  // namespace dorvutil
