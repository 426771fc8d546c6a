// Comparisons, case, accents and sanitizing of names: orders that are orders, transformations that are done after one
// pass.
#include "dorvutil/text/compare.h"

#include "dorvutil/text/chars.h"
#include "dorvutil/text/encoding.h"
#include "dorvutil/text/sanitize.h"
#include "dorvutil/text/special_chars.h"
#include "dorvutil/text/utf8.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

using Text = Exact<char>;  // terminated

std::int32_t Length(const Text& text) { return text.Length() - 1; }

using Compare = std::int32_t (*)(const char*, const char*);
constexpr Compare kOrders[] = {SpecialChar_strcmp, SpecialChar_stricmp, SpecialChar_strcmp2, SpecialChar_stricmp2,
                               SpecialChar_stricmpSanitize};

// Each of them orders any texts.
void CheckOrders(const Text& a, const Text& b, const Text& c) {
    for (const Compare compare : kOrders) {
        const auto sign = [&](const Text& x, const Text& y) { return Sign(compare(x.Data(), y.Data())); };
        FUZZ_CHECK(sign(a, a) == 0 && sign(a, b) == -sign(b, a));
        if (sign(a, b) <= 0 && sign(b, c) <= 0) {
            FUZZ_CHECK(sign(a, c) <= 0 && (sign(a, c) < 0 || (sign(a, b) == 0 && sign(b, c) == 0)));
        }
    }
    const bool same = UpToZero(a.View()) == UpToZero(b.View());
    FUZZ_CHECK((SpecialChar_strcmp(a.Data(), b.Data()) == 0) == same);
    if (SpecialChar_stricmp(a.Data(), b.Data()) == 0) FUZZ_CHECK(SpecialChar_stricmp2(a.Data(), b.Data()) == 0);
    if (SpecialChar_strcmp2(a.Data(), b.Data()) == 0) FUZZ_CHECK(SpecialChar_stricmp2(a.Data(), b.Data()) == 0);
    for (const std::uint32_t n : {0u, 1u, 3u}) {
        FUZZ_CHECK(SpecialChar_strnicmp(a.Data(), b.Data(), n) == 0 || n != 0);
        if (SpecialChar_strnicmp(a.Data(), b.Data(), n) == 0) {
            FUZZ_CHECK(SpecialChar_strnicmp2(a.Data(), b.Data(), n) == 0);
        }
    }
}

// Texts without terminators, in blocks of their own size.
void CheckLengths(std::string_view aText, std::string_view bText) {
    const Exact<char> a(aText), b(bText);
    const auto both = [&](auto compare) {
        FUZZ_CHECK(compare(a, a) == 0);
        const std::int32_t ab = compare(a, b);
        FUZZ_CHECK(ab >= -1 && ab <= 1 && ab == -compare(b, a));
    };
    both([](const Exact<char>& x, const Exact<char>& y) {
        return StringCompare(x.Data(), x.Length(), y.Data(), y.Length());
    });
    both([](const Exact<char>& x, const Exact<char>& y) {
        return StringCompare2(x.Data(), x.Length(), y.Data(), y.Length());
    });
    both([](const Exact<char>& x, const Exact<char>& y) {
        return StringCompareSanitize(x.Data(), x.Length(), y.Data(), y.Length(), true, true);
    });
    FUZZ_CHECK(Sign(StringCompareSanitize(a.Data(), a.Length(), b.Data(), b.Length(), false, false)) ==
               StringCompare2(a.Data(), a.Length(), b.Data(), b.Length()));
    FUZZ_CHECK(StringCompareTypeAhead(a.Data(), a.Length(), a.Data(), a.Length(), 1 << 20, false) == 0);
}

void CheckWide(const std::u16string& a, const std::u16string& b) {
    const Exact<char16_t> x{std::u16string_view(a)}, y{std::u16string_view(b)};
    const auto compare = [](const Exact<char16_t>& s, const Exact<char16_t>& t) {
        return StringCompareW(s.Data(), s.Length(), t.Data(), t.Length());
    };
    const auto compare2 = [](const Exact<char16_t>& s, const Exact<char16_t>& t) {
        return StringCompareW2(s.Data(), s.Length(), t.Data(), t.Length());
    };
    FUZZ_CHECK(compare(x, x) == 0 && compare(x, y) == -compare(y, x));
    FUZZ_CHECK(compare2(x, x) == 0 && compare2(x, y) == -compare2(y, x));
    FUZZ_CHECK(Sign(SpecialChar_wcsicmp(a.c_str(), b.c_str())) == -Sign(SpecialChar_wcsicmp(b.c_str(), a.c_str())));
    Exact<char16_t> clean(x.Size() + 1), again(x.Size() + 1);
    const std::int32_t n = SanitizeString(clean.Data(), clean.Length(), x.Data(), x.Length());
    FUZZ_CHECK(SanitizeString(again.Data(), again.Length(), clean.Data(), n) == n && clean.View() == again.View());
    for (const char16_t c : a) {
        FUZZ_CHECK(SpecialChar_towlower(SpecialChar_towlower(c)) == SpecialChar_towlower(c));
        FUZZ_CHECK(SpecialChar_towupper(SpecialChar_towupper(c)) == SpecialChar_towupper(c));
    }
}

// Well-formed text of one unit for each character: the same order in both widths.
void CheckWidths(const Text& a, const Text& b) {
    const auto wide = [](const Text& text) {
        const auto n = static_cast<std::uint32_t>(Length(text));
        std::u16string units(GetNumUnitsNeededForUTF16(text.Data(), n), u'\0');
        if (!units.empty()) {
            ORVConvertUTF8toUTF16(text.Data(), n, units.data(), static_cast<std::uint32_t>(units.size()));
        }
        const std::uint32_t back = GetNumBytesConvertedToUTF8(units.data(), static_cast<std::uint32_t>(units.size()));
        const bool plain =
            back == n && std::none_of(units.begin(), units.end(), [](char16_t c) { return (c & 0xF800) == 0xD800; });
        return plain ? units : std::u16string(1, u'\xFFFF');
    };
    const std::u16string x = wide(a), y = wide(b);
    if (x == u"\xFFFF" || y == u"\xFFFF") return;
    FUZZ_CHECK(Sign(SpecialChar_wcsicmp(x.c_str(), y.c_str())) == Sign(SpecialChar_stricmp(a.Data(), b.Data())));
}

void CheckCase(const Text& text) {
    for (const auto change : {SpecialChar_tolower, SpecialChar_toupper}) {
        Text once(text.View());
        FUZZ_CHECK(change(once.Data(), once.Length(), 0xFFFF'FFFFu) == once.Data());
        FUZZ_CHECK(UpToZero(once.View()).size() == UpToZero(text.View()).size());
        FUZZ_CHECK(SpecialChar_stricmp(once.Data(), text.Data()) == 0);
        Text twice(once.View());
        change(twice.Data(), twice.Length(), 0xFFFF'FFFFu);
        FUZZ_CHECK(twice.View() == once.View());
    }
}

void CheckSanitize(const Text& text, std::int32_t room) {
    Text clean(text.Size()), again(text.Size()), tight(static_cast<std::size_t>(room));
    const std::int32_t n = SanitizeString(clean.Data(), clean.Length(), text.Data(), Length(text));
    FUZZ_CHECK(n <= Length(text) && UpToZero(clean.View()).size() == static_cast<std::size_t>(n));
    FUZZ_CHECK(n == 0 || IsValidUTF8String(clean.Data(), n, false));
    FUZZ_CHECK(SanitizeString(again.Data(), again.Length(), clean.Data(), n) == n && again.View() == clean.View());
    const std::int32_t cut = SanitizeString(tight.Data(), room, text.Data(), Length(text));
    FUZZ_CHECK(room == 0 || cut < room);
    FUZZ_CHECK(clean.View().substr(0, static_cast<std::size_t>(cut)) ==
               tight.View().substr(0, static_cast<std::size_t>(cut)));
    Text inPlace(text.View());
    FUZZ_CHECK(SanitizeString(inPlace.Data(), inPlace.Length(), inPlace.Data(), Length(text)) == n);
    FUZZ_CHECK(UpToZero(inPlace.View()) == UpToZero(clean.View()));
    Text filtered(text.Size());
    const std::int32_t kept = FilterString(filtered.Data(), filtered.Length(), text.Data(), Length(text));
    FUZZ_CHECK(kept <= Length(text) && UpToZero(filtered.View()).size() == static_cast<std::size_t>(kept));
}

void CheckPlain(const Text& text, std::int32_t room) {
    Text plain(2 * text.Size()), again(4 * text.Size()), tight(static_cast<std::size_t>(room) + 1);
    FUZZ_CHECK(ChangeSpecialChars(plain.Data(), plain.Length(), text.Data(), Length(text)) == plain.Data());
    const std::string_view once = UpToZero(plain.View());
    ChangeSpecialChars(again.Data(), again.Length(), plain.Data(), static_cast<std::int32_t>(once.size()));
    // Of damaged text a lead byte at the end may look cut off the second time.
    if (IsValidUTF8String(text.Data(), Length(text), true)) FUZZ_CHECK(UpToZero(again.View()) == once);
    ChangeSpecialChars(tight.Data(), tight.Length(), text.Data(), Length(text));
    const std::string_view cut = UpToZero(tight.View());
    FUZZ_CHECK(cut.size() < tight.Size() && once.substr(0, cut.size()) == cut);
    SpecialChar_AnglicizeRouteNum(tight.Data(), tight.Length(), text.Data(), Length(text));
    FUZZ_CHECK(UpToZero(tight.View()).size() < tight.Size());
}

void CheckSearch(const Text& text, const Text& part) {
    const auto lower = [](std::string_view s) {
        std::string result(s);
        for (char& c : result) c = custom_isupper(c) ? static_cast<char>(c + 32) : c;
        return result;
    };
    const std::size_t at = lower(UpToZero(text.View())).find(lower(UpToZero(part.View())));
    const char* const found = custom_stristr(text.Data(), part.Data());
    FUZZ_CHECK(found == (at == std::string::npos ? nullptr : text.Data() + at));
    const Exact<char> open(text.View().substr(0, text.Size() - 1));
    const char* const place = custom_strnistr(open.Data(), part.Data(), open.Length());
    FUZZ_CHECK(place == nullptr || (place >= open.Data() && place <= open.Data() + open.Size()));
}

void CheckInput(const Text& input, const Text& name, std::int32_t pos, std::int32_t minChars) {
    for (const bool sanitize : {false, true}) {
        bool exact = true, boundary = true;
        const std::int32_t r =
            StringCompareInputMinAndExact(input.Data(), name.Data(), pos, minChars, sanitize, exact, boundary);
        FUZZ_CHECK(r == 0 || (!exact && !boundary));
        FUZZ_CHECK(!exact || boundary);
        FUZZ_CHECK(
            Sign(StringCompareTypeAhead(input.Data(), Length(input), name.Data(), Length(name), pos, sanitize)) <= 1);
    }
}

}  // namespace

// Two numbers, then three texts with line feeds between them.
void TestInput(Input& input) {
    const std::int32_t room = input.Byte() % 64, pos = input.Byte() - 8;
    const Text a = Text::Terminated(UpToZero(input.Until('\n')));
    const Text b = Text::Terminated(UpToZero(input.Until('\n')));
    const Text c = Text::Terminated(UpToZero(input.Rest(512)));
    CheckOrders(a, b, c);
    CheckLengths(a.View().substr(0, a.Size() - 1), b.View().substr(0, b.Size() - 1));
    CheckWide(Units(a.View()), Units(b.View()));
    CheckWidths(a, b);
    CheckCase(a);
    CheckSanitize(a, room);
    CheckPlain(a, room);
    CheckSearch(a, b);
    CheckInput(a, b, pos, room);
}

}  // namespace dorvutil::fuzz
