// The tokenizers against a split written here, and against each other.
#include "dorvutil/text/tokenize.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

constexpr std::size_t kMostTokens = 128;

ORVustring Text(const std::string& text) { return ORVustring(text.data(), static_cast<std::int32_t>(text.size())); }
ORVwstring Text(const std::u16string& text) { return ORVwstring(text.data(), static_cast<std::int32_t>(text.size())); }
std::string View(const ORVustring& text) { return {text.c_str(false), text.length()}; }
std::u16string View(const ORVwstring& text) { return {text.T_str(false), text.length()}; }

// At every place of the separator; the search goes on one unit behind it.
template <class S>
std::vector<S> Split(const S& text, const S& separator) {
    std::vector<S> tokens;
    for (std::size_t start = 0; !text.empty() && tokens.size() < kMostTokens;) {
        const std::size_t found = start < text.size() ? text.find(separator, start) : S::npos;
        tokens.push_back(text.substr(start, found == S::npos ? S::npos : found - start));
        if (found == S::npos) break;
        start = found + 1;
    }
    return tokens;
}

template <class Orv, class S>
void CheckLists(const S& text, const S& separator) {
    const std::vector<S> expected = Split(text, separator);
    ListMgr<Orv> tokens;
    TokenizeString(Text(text), Text(separator), tokens);
    TVector<std::int32_t> numbers;
    TokenizeStringToLongs(Text(text), Text(separator), numbers);
    FUZZ_CHECK(tokens.Count() == expected.size() && numbers.Count() == expected.size());
    for (std::uint32_t i = 0; i < tokens.Count(); ++i) {
        FUZZ_CHECK(View(*tokens[i]) == expected[i]);
        FUZZ_CHECK(numbers[i] == tokens[i]->to_long(10));
        // A separator inside a token could only begin where the search does not look again: at its own start.
        FUZZ_CHECK(separator.empty() || i + 1 == kMostTokens || expected[i].find(separator) == S::npos);
    }
}

// Pieces of the text between single characters, empty ones left out.
template <class S>
std::size_t CountPieces(const S& text, const S& separators) {
    std::size_t count = 0, start = 0;
    while ((start = text.find_first_not_of(separators, start)) != S::npos) {
        ++count;
        start = std::min(text.find_first_of(separators, start), text.size());
    }
    return count;
}

void CheckNumbers(const std::string& text, const std::string& separators, std::uint32_t max) {
    const std::size_t expected = std::min<std::size_t>(CountPieces(text, separators), max);
    Exact<std::int32_t> plain(max), object(max), wide(max);
    FUZZ_CHECK(TokenizeStringToLongs(text.c_str(), separators.c_str(), plain.Data(), max) == expected);
    FUZZ_CHECK(TokenizeStringToLongs(Text(text), separators.c_str(), object.Data(), max) == expected);
    const std::u16string wideText = Widened(text), wideSeparators = Widened(separators);
    FUZZ_CHECK(TokenizeStringToLongs(Text(wideText), wideSeparators.c_str(), wide.Data(), max) == expected);
    FUZZ_CHECK(object.View() == wide.View());
}

// In place: the pieces joined by the separator are the text.
void CheckInPlace(const std::string& text, char separator) {
    Exact<char> buffer = Exact<char>::Terminated(text);
    TVector<const char*> pieces;
    const std::uint32_t count = TokenizeString(buffer.Data(), separator, pieces);
    FUZZ_CHECK(count == pieces.Count() && (count == 0) == text.empty());
    std::string joined;
    for (std::uint32_t i = 0; i < count; ++i) {
        FUZZ_CHECK(std::strchr(pieces[i], separator) == pieces[i] + std::strlen(pieces[i]) || separator == 0 ||
                   std::strchr(pieces[i], separator) == nullptr);
        if (i != 0) joined += separator;
        joined += pieces[i];
    }
    FUZZ_CHECK(joined == text);
}

}  // namespace

// First line: separators. Second: how many numbers, one character. The rest: the text.
void TestInput(Input& input) {
    const std::string separator(UpToZero(input.Until('\n')));
    const std::uint32_t max = input.Byte() % 64u;
    const std::string text(UpToZero(input.Rest(2048)));
    CheckLists<ORVustring>(text, separator);
    CheckLists<ORVwstring>(Widened(text), Widened(separator));
    CheckNumbers(text, separator, max);
    CheckInPlace(text, separator.empty() ? '\0' : separator[0]);
}

}  // namespace dorvutil::fuzz
