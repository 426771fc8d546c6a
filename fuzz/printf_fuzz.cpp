// The formatted print: format strings of the input with arguments that fit whatever they ask for. The plain integers
// and floating-point numbers are compared with the standard library.
#include <cstdarg>

#include "dorvutil/text/string.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

constexpr std::string_view kConversions = "cdiuoxXfeEgGpsSaA%n";
constexpr std::size_t kMostConversions = 8;
constexpr std::size_t kLongest = 65528;

// What a conversion takes, given that at most two stars come with it.
struct Arguments {
    std::int32_t m_number = 0;
    double m_double = 0;
    ORVustring m_text;
    ORVwstring m_wide;
    int m_soFar = -1;
};

// One conversion with what stands before it: "text%-5.3d".
struct Piece {
    std::string m_format;
    char m_conversion = 0;
    int m_stars = 0;
};

bool IsConversion(char c) { return kConversions.find(c) != std::string_view::npos && c != '\0'; }

// Each star takes an argument only where a width or a precision stands; elsewhere it is a character like others.
int CountStars(std::string_view specification) {
    const std::size_t width = std::min(specification.find_first_not_of("+ #-0"), specification.size());
    specification.remove_prefix(width);
    int stars = 0;
    if (!specification.empty() && specification.front() == '*') {
        ++stars;
        specification.remove_prefix(1);
    } else {
        const std::size_t end = specification.find_first_not_of("0123456789");
        specification.remove_prefix(std::min(end, specification.size()));
    }
    return stars + (specification.size() >= 2 && specification[0] == '.' && specification[1] == '*' ? 1 : 0);
}

std::vector<Piece> Pieces(std::string_view format) {
    std::vector<Piece> pieces;
    while (!format.empty() && pieces.size() < kMostConversions) {
        const std::size_t start = format.find('%');
        std::size_t end = start == format.npos ? format.size() : start + 1;
        while (end < format.size() && !IsConversion(format[end])) ++end;
        Piece piece;
        if (end < format.size()) {
            piece.m_conversion = format[end];
            piece.m_stars = CountStars(format.substr(start + 1, end - start - 1));
            ++end;
        }
        piece.m_format = format.substr(0, end);
        format.remove_prefix(std::min(end, format.size()));
        pieces.push_back(std::move(piece));
    }
    return pieces;
}

template <class S, class C, class... Stars>
S PrintWith(const C* format, char conversion, Arguments& a, Stars... stars) {
    switch (conversion) {
        case 'f':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
            return S::printf(format, stars..., a.m_double);
        case 's':
            return S::printf(format, stars..., a.m_text.c_str(false));
        case 'S':
            return S::printf(format, stars..., a.m_wide.T_str(false));
        case 'a':
            return S::printf(format, stars..., &a.m_text);
        case 'A':
            return S::printf(format, stars..., &a.m_wide);
        case 'n':
            return S::printf(format, stars..., &a.m_soFar);
        case 'p':
            return S::printf(format, stars..., static_cast<void*>(&a));
        default:
            return S::printf(format, stars..., a.m_number);
    }
}

template <class S, class C>
S Print(const C* format, const Piece& piece, Arguments& a) {
    if (piece.m_stars == 0) return PrintWith<S>(format, piece.m_conversion, a);
    if (piece.m_stars == 1) return PrintWith<S>(format, piece.m_conversion, a, a.m_number % 300);
    return PrintWith<S>(format, piece.m_conversion, a, a.m_number % 300, a.m_number / 300 % 300);
}

std::string View(const ORVustring& text) { return {text.c_str(false), text.length()}; }

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<std::uint8_t>(c) < 0x80; });
}

// Whether the standard library means the same by it: no length modifier, nothing in between that is not a number.
bool IsStandard(const Piece& piece) {
    const std::size_t start = piece.m_format.find('%');
    if (start == std::string::npos || piece.m_stars != 0) return false;
    std::string_view rest = std::string_view(piece.m_format).substr(start + 1);
    rest.remove_suffix(1);
    const auto skip = [&](std::string_view set) {
        rest.remove_prefix(std::min(rest.find_first_not_of(set), rest.size()));
    };
    skip("+ #-0");
    const std::string_view width = rest.substr(0, std::min<std::size_t>(rest.size(), 5));
    skip("0123456789");
    const bool isLong = width.find_first_not_of("0123456789") == width.npos && width.size() >= 5;
    if (!rest.empty() && rest.front() == '.') {
        rest.remove_prefix(1);
        if (rest.size() > 3) return false;
        skip("0123456789");
    }
    return rest.empty() && !isLong;
}

// Differences that are meant: the precision of integers is zeros whatever the flags, "#g" of some C libraries.
void CheckDouble(const Piece& piece, const Arguments& a, const std::string& got) {
    if (piece.m_conversion == 0 || std::strchr("feE", piece.m_conversion) == nullptr || !IsStandard(piece)) return;
    const std::size_t start = piece.m_format.find('%');
    char expected[kLongest];
    const int length = std::snprintf(expected, sizeof expected, piece.m_format.c_str() + start, a.m_double);
    if (length < 0 || static_cast<std::size_t>(length) + start > kLongest / 2) return;
    FUZZ_CHECK(got == piece.m_format.substr(0, start) + std::string(expected, static_cast<std::size_t>(length)));
}

// Signs, a zero without digits and the flags '#' and '0' go their own way; otherwise integers are as the standard
// library has them.
void CheckInteger(const Piece& piece, const Arguments& a, const std::string& got) {
    if (piece.m_conversion == 0 || std::strchr("diuoxX", piece.m_conversion) == nullptr || !IsStandard(piece)) return;
    const std::size_t start = piece.m_format.find('%');
    const std::size_t flags = piece.m_format.find_first_not_of('-', start + 1);
    if (a.m_number <= 0 || std::strchr("+ #0", piece.m_format[flags]) != nullptr) return;
    char expected[kLongest];
    const int length = std::snprintf(expected, sizeof expected, piece.m_format.c_str() + start, a.m_number);
    if (length < 0 || static_cast<std::size_t>(length) + start > kLongest / 2) return;
    FUZZ_CHECK(got == piece.m_format.substr(0, start) + std::string(expected, static_cast<std::size_t>(length)));
}

void CheckPiece(const Piece& piece, Arguments& a) {
    a.m_soFar = -1;
    const ORVustring narrow = Print<ORVustring>(piece.m_format.c_str(), piece, a);
    FUZZ_CHECK(narrow.length() <= kLongest && narrow.c_str(false)[narrow.length()] == 0);
    const int soFar = a.m_soFar;
    FUZZ_CHECK(soFar >= -1 && (soFar < 0 || static_cast<std::uint32_t>(soFar) == narrow.length()));
    const std::size_t before = std::min(piece.m_format.find('%'), piece.m_format.size());
    FUZZ_CHECK(View(narrow).substr(0, before) == piece.m_format.substr(0, before));
    CheckDouble(piece, a, View(narrow));
    CheckInteger(piece, a, View(narrow));
    const std::u16string wideFormat = Widened(piece.m_format);
    a.m_soFar = -1;
    const ORVwstring wide = Print<ORVwstring>(wideFormat.c_str(), piece, a);
    FUZZ_CHECK(wide.length() <= kLongest && wide.T_str(false)[wide.length()] == 0);
    if (!IsAscii(piece.m_format) || std::strchr("sSaAc", piece.m_conversion) != nullptr) return;
    FUZZ_CHECK(std::u16string(wide.T_str(false), wide.length()) == Widened(View(narrow)) && a.m_soFar == soFar);
    // Into a file the same characters.
    MemoryFile file;
    if (piece.m_stars != 0 || piece.m_conversion != 'd') return;
    FUZZ_CHECK(ORVustring::printf(&file, piece.m_format.c_str(), a.m_number));
    FUZZ_CHECK(file.Content() == View(narrow));
}

// The pieces one by one and the whole with the arguments of all of them: the same text, as long as none is cut off.
ORVustring PrintAll(const char* format, ...) {
    std::va_list list;
    va_start(list, format);
    ORVustring text = ORVustring::vprintf(format, list);
    va_end(list);
    return text;
}

// Whether a width or precision may make the text too long, which ends all of it.
bool HasLongNumber(std::string_view format) {
    std::size_t digits = 0;
    for (const char c : format) {
        digits = c >= '0' && c <= '9' ? digits + 1 : 0;
        if (digits >= 5) return true;
    }
    return false;
}

void CheckIntegers(const std::vector<Piece>& pieces, std::int32_t number) {
    std::string format, expected;
    for (const Piece& piece : pieces) {
        if (piece.m_stars != 0 || std::strchr("diuoxXc%", piece.m_conversion) == nullptr) return;
        // '%' takes no argument: all arguments are the same, so that it does not matter.
        const ORVustring one = ORVustring::printf(piece.m_format.c_str(), number);
        format += piece.m_format;
        expected += View(one);
    }
    if (expected.size() > 2000 || HasLongNumber(format)) return;
    FUZZ_CHECK(View(PrintAll(format.c_str(), number, number, number, number, number, number, number, number)) ==
               expected);
}

}  // namespace

// Up to the line feed: the format. Then a number, a floating-point number and a text.
void TestInput(Input& input) {
    const std::string format(UpToZero(input.Until('\n').substr(0, 256)));
    Arguments arguments;
    arguments.m_number = input.Number<std::int32_t>();
    const auto bits = input.Number<std::uint64_t>();
    std::memcpy(&arguments.m_double, &bits, sizeof bits);
    const std::string text(UpToZero(input.Rest(512)));
    arguments.m_text = ORVustring(text.c_str());
    arguments.m_wide = ORVwstring(Units(text).c_str());
    const std::vector<Piece> pieces = Pieces(format);
    for (const Piece& piece : pieces) CheckPiece(piece, arguments);
    CheckIntegers(pieces, arguments.m_number);
}

}  // namespace dorvutil::fuzz
