// The version of a program file: any file has one of four numbers or none, whatever the room for it.
#include "dorvutil/system/system_info.h"
#include "fuzz_support.h"
#include "scratch_file.h"

namespace dorvutil::fuzz {
namespace {

constexpr std::size_t kLongest = 23;  // "65535.65535.65535.65535"

void CheckText(std::u16string_view text) {
    FUZZ_CHECK(text.size() >= 7 && text.size() <= kLongest);
    for (int part = 0; part < 4; ++part) {
        const std::size_t end = std::min(text.find(u'.'), text.size());
        std::uint32_t number = 0;
        for (const char16_t c : text.substr(0, end)) {
            FUZZ_CHECK(c >= u'0' && c <= u'9');
            number = 10 * number + (c - u'0');
        }
        FUZZ_CHECK(end != 0 && number <= 0xFFFF && (end == text.size()) == (part == 3));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

}  // namespace

// The room for the text, then the file.
void TestInput(Input& input) {
    static const ScratchFile scratch("file_version");
    const ORVwstring path(scratch.Path());
    const std::size_t room = 1u + input.Byte() % 32u;
    scratch.Write(input.Rest());
    Exact<char16_t> text(kLongest + 1), limited(room);
    const bool found = System_GetFileVersion(path.T_str(), text.Data(), text.Length());
    const std::u16string_view version = UpToZero(text.View());
    FUZZ_CHECK(found != version.empty());
    if (found) CheckText(version);
    System_GetFileVersion(path.T_str(), limited.Data(), limited.Length());
    const std::u16string_view cut = UpToZero(limited.View());
    FUZZ_CHECK(cut.size() < room && version.substr(0, cut.size()) == cut);
}

}  // namespace dorvutil::fuzz
