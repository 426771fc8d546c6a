// Paths taken apart and put together again.
#include "dorvutil/storage/file_name.h"

#include "dorvutil/storage/path_text.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

std::string View(const ORVustring& text) { return {text.c_str(), text.length()}; }
ORVustring Text(const std::string& text) { return ORVustring(text.data(), static_cast<std::int32_t>(text.size())); }
bool HasSeparator(const std::string& text) { return text.find_first_of("\\/") != std::string::npos; }

void CheckName(const OrvFileName& name) {
    const std::string path = View(name.GetFullPath(false)), file = View(name.GetFileName(true));
    FUZZ_CHECK(path.empty() || path.back() == '\\' || path.back() == '/');
    FUZZ_CHECK(View(name.GetFullPath(true)) == path + file && name.IsDirectory() == file.empty());
    const std::string root = View(name.GetFileName(false)), extension = View(name.GetExtension());
    FUZZ_CHECK(extension.find('.') == std::string::npos);
    FUZZ_CHECK(file == root ? extension.empty() : file == root + "." + extension);
    OrvFileName copy;
    copy = name;
    FUZZ_CHECK(copy == name && copy.HashValue() == name.HashValue());
    FUZZ_CHECK(!HasSeparator(View(name.GetFolderName())) && !HasSeparator(View(name.GetParentDirectory(true))));
    ListMgr<ORVustring> parts;
    name.GetPath(parts, true);
    FUZZ_CHECK(parts.Count() != 0 && View(*parts.Last()) == file);
    for (std::uint32_t i = 0; i + 1 < parts.Count(); ++i) {
        FUZZ_CHECK(!parts[i]->empty() && !HasSeparator(View(*parts[i])));
    }
    // The folders joined give the same folders again.
    ListMgr<ORVustring> folders, again;
    name.GetPath(folders, false);
    const OrvFileName joined(folders, name.GetFileName(true));
    FUZZ_CHECK(joined.GetFileName(true) == name.GetFileName(true));
    joined.GetPath(again, false);
    FUZZ_CHECK(again.Count() == folders.Count());
    for (std::uint32_t i = 0; i < again.Count(); ++i) FUZZ_CHECK(*again[i] == *folders[i]);
}

void CheckSplit(const ORVustring& text) {
    const OrvFileName name(text);
    CheckName(name);
    FUZZ_CHECK(View(name.GetFullPath(true)).find('/') == std::string::npos);
    FUZZ_CHECK(!HasSeparator(View(name.GetFileName(true))));
    // Nothing is lost but a separator at the end.
    std::string normalized = View(text);
    std::replace(normalized.begin(), normalized.end(), '/', '\\');
    if (!normalized.empty() && normalized.back() != '\\') FUZZ_CHECK(View(name.GetFullPath(true)) == normalized);
    // What was split once splits the same way again, unless it stands for a folder alone.
    if (!name.IsDirectory()) FUZZ_CHECK(OrvFileName(name.GetFullPath(true)) == name);
    OrvFileName normal(name);
    normal.NormalizeSlashes();
    FUZZ_CHECK(normal == name);
}

void CheckPair(const ORVustring& path, const ORVustring& file) {
    OrvFileName name(path, file);
    CheckName(name);
    name.SetExtension(ORVustring("x1"));
    FUZZ_CHECK(View(name.GetExtension()) == "x1");
    CheckName(name);
    name.SetExtension(ORVustring());
    FUZZ_CHECK(View(name.GetFileName(true)).find('.') == std::string::npos ||
               View(file).find('.') != std::string::npos);
    name.AppendFolder(file);
    CheckName(name);
    FUZZ_CHECK(name.IsDirectory());
}

void CheckBuffers(const std::string& text, std::uint8_t choice) {
    Exact<char> slash(text.size() + 1 + (choice & 1u));
    std::copy(text.begin(), text.end(), slash.Data());
    FileAppendSlash(slash.Data(), slash.Length());
    const std::string_view slashed = UpToZero(slash.View());
    FUZZ_CHECK(slashed.size() <= text.size() + 1);
    Exact<char> cleaned = Exact<char>::Terminated(text);
    FileNameCleanup(cleaned.Data(), cleaned.Count());
    const std::string_view clean = UpToZero(cleaned.View());
    FUZZ_CHECK(clean.find_first_of("'\\/:*?\"<>|&.- ") == std::string_view::npos);
    Exact<char> stripped = Exact<char>::Terminated(text);
    const std::int32_t length = FileStripName(stripped.Data());
    FUZZ_CHECK(UpToZero(stripped.View()).size() == static_cast<std::size_t>(length));
    FUZZ_CHECK(FileStripName(stripped.Data()) == length);
    const std::u16string wide = Widened(text);
    Exact<char16_t> cut = Exact<char16_t>::Terminated(wide);
    TruncatePathToLastSlash(cut.Data(), static_cast<std::int32_t>(wide.size()));
    const std::u16string_view kept = UpToZero(cut.View());
    FUZZ_CHECK(kept.size() <= wide.size() && wide.compare(0, kept.size(), kept) == 0);
}

}  // namespace

// First line: a path. The rest: a file name.
void TestInput(Input& input) {
    const std::uint8_t choice = input.Byte();
    const std::string path(UpToZero(input.Until('\n'))), file(UpToZero(input.Rest(1024)));
    CheckSplit(Text(path));
    CheckPair(Text(path), Text(file));
    CheckBuffers(path, choice);
}

}  // namespace dorvutil::fuzz
