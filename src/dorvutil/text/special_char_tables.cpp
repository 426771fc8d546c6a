#include "dorvutil/text/special_char_tables.h"

#include <iterator>
#include <string_view>

#include "dorvutil/frame/accessors.h"

namespace dorvutil {
namespace {

struct CasePairs {
    std::u16string_view upper;
    std::u16string_view lower;
};

// Where a letter occurs twice the first pair counts. The three pairs of C1 controls come from text in Windows code page
// 1252 that was taken for Latin-1.
constexpr CasePairs kCasePairs[] = {
    {u"\x8A\x8C\x8E", u"\x9A\x9C\x9E"},
    {u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖØÙÚÛÜÝÞŸ", u"àáâãäåæçèéêëìíîïðñòóôõöøùúûüýþÿ"},
    {u"ĂĀĄĆČĎĐĚĖĒĘĢĞİĪĮĶĹĻĽŁŃŅŇŐŒŌŔŖŘŚȘŞŠȚŢŤŰŪŲŮŹŽŻ", u"ăāąćčďđěėēęģğıīįķĺļľłńņňőœōŕŗřśșşšțţťűūųůźžż"},
    {u"ЁЂЃЄЅІЇЈЉЊЋЌЎЏ", u"ёђѓєѕіїјљњћќўџ"},
    {u"АБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯ", u"абвгдежзийклмнопрстуфхцчшщъыьэюя"},
    {u"ΑΆΒΓΔΕΈΖΗΉΘΙΊΪΚΛΜΝΞΟΌΠΡΣΣΤΥΎΫΦΧΨΩΏ", u"αάβγδεέζηήθιίϊκλμνξοόπρσςτυύϋφχψωώ"},
    {u"ABCDEFGHIJKLMNOPQRSTUVWXYZ", u"abcdefghijklmnopqrstuvwxyz"},
};

struct FoldGroup {
    const char* plain;
    std::u16string_view characters;
};

constexpr FoldGroup kFoldGroups[] = {
    {"A", u"ÀÁÂÃÄÅÆĂĀĄ"}, {"C", u"ÇĆČ"},
    {"D", u"ÐĎĐ"},        {"E", u"ÈÉÊË\x8CĚĖĒĘ"},
    {"G", u"ĞĢ"},         {"I", u"ÌÍÎÏİĪĮ"},
    {"K", u"Ķ"},          {"L", u"ĹĻĽŁ"},
    {"N", u"ÑŃŅŇ"},       {"O", u"ÒÓÔÕÖØŐŌ"},
    {"P", u"Þþ"},         {"R", u"ŔŘ"},
    {"S", u"ŚŞŠ\x8A"},    {"T", u"ŢŤ"},
    {"U", u"ÙÚÛÜŰŪŲŮ"},   {"Y", u"Ý\x9F"},
    {"Z", u"\x8EŹŽŻ"},    {"ss", u"ß"},
    {"a", u"àáâãäåæăāą"}, {"c", u"çćč"},
    {"d", u"ðďđ"},        {"e", u"èéêë\x9Cěėēę"},
    {"f", u"\x83"},       {"g", u"ğģ"},
    {"i", u"ìíîïıīį"},    {"k", u"ķ"},
    {"l", u"ĺļľł"},       {"n", u"ñńņň"},
    {"o", u"òóôõöøőō"},   {"r", u"ŕř"},
    {"s", u"śšş\x9A"},    {"t", u"ťţ"},
    {"u", u"ùúûüűūųů"},   {"y", u"ýÿ"},
    {"z", u"źžż\x9E"},    {"Α", u"Ά"},
    {"Ε", u"Έ"},          {"Η", u"Ή"},
    {"Ι", u"ΊΪ"},         {"Ο", u"Ό"},
    {"Υ", u"ΎΫ"},         {"Ω", u"Ώ"},
    {"α", u"ά"},          {"ε", u"έ"},
    {"η", u"ή"},          {"ι", u"ΐίϊ"},
    {"ο", u"ό"},          {"υ", u"ΰϋύ"},
    {"ω", u"ώ"},
};

constexpr CasePairs kLookAlikes = {u"AEEMRaeemr", u"АЕΕМРаеεмр"};  // Latin; Cyrillic or Greek

constexpr std::uint16_t FirstCodePoint(const char* text) {
    const auto first = static_cast<unsigned char>(text[0]);
    return static_cast<std::uint16_t>(first < 0x80 ? first : (first & 0x1F) << 6 | (text[1] & 0x3F));
}

constexpr void EnterCasePairs(SpecialCharTables& t) {
    for (const CasePairs& pairs : kCasePairs) {
        for (std::size_t i = 0; i < pairs.upper.size(); ++i) {
            const char16_t upper = pairs.upper[i];
            const char16_t lower = pairs.lower[i];
            if (t.lower[upper] == upper) t.lower[upper] = lower;
            if (t.upper[lower] == lower) t.upper[lower] = upper;
        }
    }
}

constexpr void EnterFolds(SpecialCharTables& t) {
    for (std::size_t i = 0; i < std::size(kFoldGroups); ++i) {
        for (const char16_t c : kFoldGroups[i].characters) {
            t.foldIndex[c] = static_cast<std::uint8_t>(i + 1);
            t.folded[c] = FirstCodePoint(kFoldGroups[i].plain);
        }
    }
}

constexpr SpecialCharTables MakeTables() {
    SpecialCharTables t{};
    for (std::uint16_t c = 0; c < kTableEnd; ++c) t.same[c] = t.upper[c] = t.lower[c] = t.folded[c] = c;
    EnterCasePairs(t);
    EnterFolds(t);
    for (std::uint16_t c = 0; c < kTableEnd; ++c) t.upperFolded[c] = t.folded[t.upper[c]];
    for (std::size_t i = 0; i < kLookAlikes.lower.size(); ++i) {
        t.lookAlike[kLookAlikes.lower[i]] = static_cast<char>(kLookAlikes.upper[i]);
    }
    return t;
}

// Case conversion works in place because of this.
constexpr bool CaseKeepsLength(const SpecialCharTables& t) {
    for (std::uint16_t c = 0; c < kTableEnd; ++c) {
        if ((t.upper[c] < 0x80) != (c < 0x80) || (t.lower[c] < 0x80) != (c < 0x80)) return false;
    }
    return true;
}

constexpr std::size_t CountFolds(const SpecialCharTables& t) {
    std::size_t count = 0;
    for (const std::uint8_t index : t.foldIndex) count += index != 0 ? 1 : 0;
    return count;
}

constexpr SpecialCharTables kTables = MakeTables();
static_assert(CaseKeepsLength(kTables));
static_assert(CountFolds(kTables) == 170);

}  // namespace

constinit const SpecialCharTables kSpecialCharTables = kTables;

const char* FoldTextOf(std::uint32_t foldIndex) { return kFoldGroups[foldIndex - 1].plain; }

const SpecialCharTables* SpecialCharTablesInUse() {
    const CSpecialCharMgr* const manager = GetSpecCharMgr();
    return manager == nullptr ? nullptr : manager->Tables();
}

CSpecialCharMgr::CSpecialCharMgr() : m_tables(&kSpecialCharTables) {}

CSpecialCharMgr::~CSpecialCharMgr() = default;

}  // namespace dorvutil
