#include "dorvutil/text/name_casing.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "dorvutil/text/chars.h"
#include "dorvutil/text/name_casing_words.h"

namespace dorvutil {
namespace {

constexpr std::size_t kMaxWords = 10;
constexpr std::size_t kMaxWordBytes = 127;

// Military and postal abbreviations, compass points and Roman numerals.
constexpr std::string_view kAcronyms[] = {
    "AAA",     "AAP",   "AASF",   "ABC",     "ABMPS", "ACRREL", "ACRTC", "AFB",     "AFS",     "AGCC",   "AGS",
    "AMS",     "ANG",   "ANGB",   "AP",      "APT",   "ARB",    "ARNG",  "ARPC",    "ARS",     "AS",     "ASOC",
    "ASW",     "ASWTC", "AT&T",   "ATC",     "ATM",   "AWS",    "BMC",   "BRA",     "BRM",     "BWPKWY", "CG",
    "CGAS",    "CGB",   "CGRTC",  "CINC",    "CU",    "DCM",    "DDD",   "DDRE",    "DDRW",    "DESC",   "DFAS",
    "DGSC",    "DISC",  "DLASDC", "DLIFLC",  "DLSC",  "DMA",    "DPSC",  "DRMS",    "DSC",     "E",      "ETM",
    "EW",      "FA",    "FBI",    "FCTC",    "FHA",   "FISC",   "GMC",   "GPO",     "GSA",     "I",      "IAP",
    "II",      "III",   "IPS",    "IV",      "IX",    "LLC",    "MARS",  "MCAGCC",  "MCAS",    "MCB",    "MCCDC",
    "MCLB",    "MCRD",  "ML",     "N",       "NAB",   "NAS",    "NAWC",  "NAWCAD",  "NAWCTSD", "NAWCWD", "NCBC",
    "NCCOSC",  "NCSC",  "NETC",   "NETPMSA", "NFESC", "NG",     "NH",    "NICP",    "NM&O",    "NMCRC",  "NNMC",
    "NNPT",    "NPWC",  "NRL",    "NRRC",    "NSB",   "NSCS",   "NSPCC", "NSW",     "NSWC",    "NSWCCD", "NSWCCSS",
    "NSWCIHD", "NTC",   "NTTC",   "NUWC",    "NW",    "NWS",    "OIC",   "ORV",     "PA",      "PFO",    "PGS",
    "PNC",     "PO",    "RTC",    "S",       "SGA",   "SW",     "TACOM", "TRITOLL", "TWP",     "US",     "USAF",
    "USCG",    "USMC",  "USMCR",  "USPFO",   "USPS",  "V",      "VI",    "VII",     "W",       "X",      "XI",
    "XII",     "XIV",   "XIX",    "XV",      "XVI",   "XX",     "XXI",   "XXV",     "XXX",     "YMCA"};
static_assert(std::is_sorted(std::begin(kAcronyms), std::end(kAcronyms)));

constexpr std::string_view kProvinces[] = {"PQ", "ON", "AB", "BC", "MB", "SK", "NB", "NS", "NF", "PE", "YT", "NT"};

constexpr std::size_t kLongestAcronym = std::max_element(std::begin(kAcronyms), std::end(kAcronyms),
                                                         [](auto a, auto b) { return a.size() < b.size(); }) -> size();

constexpr char Upper(char c) { return custom_islower(c) ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr char Lower(char c) { return custom_isupper(c) ? static_cast<char>(c - 'A' + 'a') : c; }

bool IsAcronym(std::string_view word) {
    if (word.size() > kLongestAcronym) return false;
    char upper[8];
    static_assert(kLongestAcronym <= sizeof(upper));
    std::transform(word.begin(), word.end(), upper, Upper);
    return std::binary_search(std::begin(kAcronyms), std::end(kAcronyms), std::string_view(upper, word.size()));
}

bool IsProvince(std::string_view word) {
    return std::find(std::begin(kProvinces), std::end(kProvinces), word) != std::end(kProvinces);
}

bool IsOneOf(char c, std::string_view set) { return set.find(c) != std::string_view::npos; }

// A word being changed in place; every rule tells whether it applied.
class Word {
public:
    Word(char* bytes, std::size_t length) : m_bytes(bytes), m_length(length) {}

    void FixCasing() {
        if (IsProvince(Text())) return;
        if (LowerConjunction() || RaiseAcronym() || ElidedName() || ScottishName() || Bracketed() || Numbered()) return;
        Plain();
    }

private:
    std::string_view Text() const { return {m_bytes, m_length}; }
    char& At(std::size_t i) { return m_bytes[i]; }
    bool ThirdIsAlnum() const { return m_length > 2 && custom_isalnum(m_bytes[2]); }
    void UpperFrom(std::size_t i) { std::transform(m_bytes + i, m_bytes + m_length, m_bytes + i, Upper); }
    void LowerFrom(std::size_t i) { std::transform(m_bytes + i, m_bytes + m_length, m_bytes + i, Lower); }

    bool LowerConjunction() {
        const std::string_view text = Text();
        if (text != "OF" && text != "Of" && text != "AND" && text != "And") return false;
        LowerFrom(0);
        return true;
    }

    bool RaiseAcronym() {
        if (!IsAcronym(Text())) return false;
        UpperFrom(0);
        return true;
    }

    bool ElidedName() {
        if (!ThirdIsAlnum() || At(1) != '\'' || !IsOneOf(At(0), "ODLodl")) return false;
        At(0) = IsOneOf(At(0), "Dd") ? 'd' : Upper(At(0));
        At(2) = Upper(At(2));
        LowerFrom(3);
        return true;
    }

    bool ScottishName() {
        if (!ThirdIsAlnum() || At(0) != 'M' || !IsOneOf(At(1), "Cc")) return false;
        At(1) = 'c';
        At(2) = Upper(At(2));
        LowerFrom(3);
        return true;
    }

    // Words that start with a sign or a character outside ASCII.
    bool Bracketed() {
        if (custom_isalnum(At(0)) || IsOneOf(At(0), "'`") || !ThirdIsAlnum()) return false;
        const bool closed = At(0) == '(' && At(m_length - 1) == ')';
        if (closed && IsAcronym(Text().substr(1, m_length - 2))) {
            UpperFrom(0);
            return true;
        }
        At(1) = Upper(At(1));
        LowerFrom(2);
        return true;
    }

    bool Numbered() {
        if (!std::any_of(m_bytes, m_bytes + m_length, custom_isdigit)) return false;
        if (Text().ends_with("TH")) LowerFrom(m_length - 2);
        return true;
    }

    void Plain() {
        const bool marked = IsOneOf(At(0), "+@#");
        const std::string_view rest = Text().substr(1);
        if (marked && (IsProvince(rest) || IsAcronym(rest))) return;
        for (std::size_t i = marked ? 2 : 1; i < m_length; ++i) {
            if (!IsOneOf(At(i - 1), "/-(&")) At(i) = Lower(At(i));
        }
    }

    char* m_bytes;
    std::size_t m_length;
};

}  // namespace

std::size_t FixNameCasingBytes(const char* text, std::size_t length, char* out) {
    std::size_t in = 0;
    std::size_t written = 0;
    for (std::size_t words = 0; words < kMaxWords; ++words) {
        while (in < length && custom_isspace(text[in])) ++in;
        if (in == length) break;
        // The spaces between two words are those that stand in the input where the output has come to. It never
        // overtakes the input, so the next word ends them.
        while (words > 0 && text[written] == ' ') out[written++] = ' ';
        const std::size_t start = in;
        while (in < length && in - start < kMaxWordBytes && !custom_isspace(text[in])) ++in;
        std::memcpy(out + written, text + start, in - start);
        Word(out + written, in - start).FixCasing();
        written += in - start;
    }
    return written;
}

}  // namespace dorvutil
