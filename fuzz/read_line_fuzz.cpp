// Line reading: the same lines from memory, through a read buffer and by the string class, and those of a split written
// here.
#include "dorvutil/storage/file_buffer.h"
#include "dorvutil/storage/text_file.h"
#include "dorvutil/text/string.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

constexpr std::size_t kDefaultBlock = 4096;  // characters that a handle reads ahead

template <class C>
using Lines = std::vector<std::basic_string<C>>;

// Ends up to where the handle gives no more lines; each up to its first zero, as a caller sees it.
template <class C>
Lines<C> ReadLines(COrvFileHandleBase& handle, std::uint32_t size, std::size_t most) {
    Lines<C> lines;
    Exact<C> buffer(size);
    while (handle.ReadLine(buffer.Data(), size)) {
        FUZZ_CHECK(lines.size() <= most);
        const auto line = UpToZero(buffer.View());
        FUZZ_CHECK(line.size() < size);
        lines.emplace_back(line);
    }
    FUZZ_CHECK(handle.ReadLine(buffer.Data(), size) == nullptr);
    return lines;
}

// The lines of a text without marks of the end, each of which fits in a block.
template <class C>
Lines<C> Split(std::basic_string_view<C> text, std::size_t size) {
    Lines<C> lines;
    while (!text.empty()) {
        const std::size_t end = text.find(C{'\n'});
        std::basic_string_view<C> line = text.substr(0, end);
        if (line.size() >= size)
            line = line.substr(0, size - 1);
        else if (end != text.npos && !line.empty() && line.back() == C{'\r'})
            line.remove_suffix(1);
        lines.emplace_back(UpToZero(line));
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
    return lines;
}

template <class C>
std::size_t LongestLine(std::basic_string_view<C> text) {
    std::size_t longest = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(C{'\n'}), text.size() - 1) + 1;
        longest = std::max(longest, end);
        text.remove_prefix(end);
    }
    return longest;
}

template <class C>
void Check(std::string_view bytes, std::uint32_t size, std::uint32_t block) {
    std::basic_string<C> text(bytes.size() / sizeof(C), C{});
    if (!text.empty()) std::memcpy(text.data(), bytes.data(), text.size() * sizeof(C));
    const std::size_t most = text.size() + 1;
    MemoryFile file(bytes);
    const Lines<C> lines = ReadLines<C>(file, size, most);
    COrvReadBuffer buffered(new MemoryFile(bytes), ORVustring(), eAccessRead, eBinary, 0, nullptr);
    FUZZ_CHECK(ReadLines<C>(buffered, size, most) == lines);
    const COrvFileOptions options{block, block};
    COrvReadBuffer small(new MemoryFile(bytes), ORVustring(), eAccessRead, eBinary, 0, &options);
    const Lines<C> smallLines = ReadLines<C>(small, size, most);
    if (text.find(static_cast<C>(-1)) != text.npos) return;
    const Lines<C> expected = Split<C>(text, size);
    const std::size_t longest = LongestLine<C>(text);
    if (longest < kDefaultBlock) FUZZ_CHECK(lines == expected);
    if (longest < block) FUZZ_CHECK(smallLines == expected);
    // After the reset the file can be read again.
    FUZZ_CHECK(file.Seek(0, eSeekSet) == 0);
    file.ResetReadLineBuffer();
    FUZZ_CHECK(ReadLines<C>(file, size, most) == lines);
}

// The string class reads character by character: the same lines, carriage returns removed.
void CheckStringClass(std::string_view bytes) {
    MemoryFile file(bytes);
    for (std::string_view rest = bytes; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        std::string line(rest.substr(0, end));
        if (std::count(line.begin(), line.end(), '\r') > 100) return;
        line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
        rest.remove_prefix(std::min(end + 1, rest.size()));
        const ORVustring read = ORVustring::ReadNextLine(&file);
        FUZZ_CHECK(UpToZero(std::string_view(read.c_str(), read.length())) == UpToZero(std::string_view(line)));
    }
    FUZZ_CHECK(ORVustring::ReadNextLine(&file).empty());
}

void CheckTextFile(std::string_view bytes, std::uint32_t size) {
    MemoryFile file(bytes);
    const eFileType type = StripFileStart(&file);
    FUZZ_CHECK((type == eFileTypeUTF8) == (bytes.substr(0, 3) == "\xEF\xBB\xBF"));
    FUZZ_CHECK((type == eFileTypeUTF16) == (bytes.substr(0, 2) == "\xFF\xFE"));
    Exact<char> buffer(size);
    for (std::size_t i = 0; ReadStringFromFile(&file, type, buffer.Data(), size); ++i) {
        FUZZ_CHECK(i <= bytes.size() && UpToZero(buffer.View()).size() < size);
    }
}

}  // namespace

// Two bytes of sizes, then the file.
void TestInput(Input& input) {
    const std::uint32_t line = 2u + input.Byte(), block = 1u + input.Byte();
    const std::string_view bytes = input.Rest();
    Check<char>(bytes, line, block);
    Check<char16_t>(bytes, line, block);
    CheckStringClass(bytes);
    CheckTextFile(bytes, line);
}

}  // namespace dorvutil::fuzz
