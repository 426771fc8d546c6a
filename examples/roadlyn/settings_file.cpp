#include "settings_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <set>
#include <string_view>

#include "dorvutil/storage/file_api.h"
#include "dorvutil/storage/key_value_file.h"
#include "dorvutil/storage/memory_handle.h"
#include "input_error.h"
#include "replace_file.h"
#include "text_fold.h"
#include "tsv_reader.h"

namespace roadlyn {
namespace {

using dorvutil::FileParseCode;

constexpr char kBegin[] = "[roadlyn]";
constexpr char kEnd[] = "[end]";
constexpr char kSection[] = "search";
constexpr std::size_t kMostLine = 511;          // bytes that the library reads of a line
constexpr std::size_t kMostFile = 1024 * 1024;  // bytes

#define ROADLYN_TEXT(name) \
    { #name, offsetof(Settings, name), sizeof(Settings::name), true, 0, 0 }
#define ROADLYN_NUMBER(name, least, most) \
    { #name, offsetof(Settings, name), sizeof(Settings::name), false, least, most }

constexpr SettingRow kRows[] = {
    ROADLYN_TEXT(places),        ROADLYN_TEXT(recent),        ROADLYN_NUMBER(limit, 0, 1'000'000),
    ROADLYN_NUMBER(exact, 0, 1), ROADLYN_NUMBER(smart, 0, 1), ROADLYN_NUMBER(keys, 0, 1),
    ROADLYN_NUMBER(tsv, 0, 1),
};

#undef ROADLYN_TEXT
#undef ROADLYN_NUMBER

constexpr FileParseCode ParseCode(const char* key, std::uint32_t offset, std::uint32_t size, std::int8_t kind) {
    return {key, offset, size, static_cast<std::uint8_t>(std::string_view(key).size()), kind};
}

constexpr auto MakeTable() {
    std::array<FileParseCode, std::size(kRows) + 2> table;
    table.front() = ParseCode(kBegin, 0, 0, dorvutil::kFpcBegin);
    for (std::size_t i = 0; i < std::size(kRows); ++i) {
        const SettingRow& row = kRows[i];
        const std::int8_t kind = row.isText ? dorvutil::kFpcText : dorvutil::kFpcInteger;
        table[i + 1] = ParseCode(row.key, row.offset, row.size, kind);
    }
    table.back() = ParseCode(kEnd, 0, 0, dorvutil::kFpcEnd);
    return table;
}
constexpr auto kTable = MakeTable();

const SettingRow* RowOf(std::string_view key) {
    const auto row =
        std::find_if(std::begin(kRows), std::end(kRows), [&](const auto& each) { return key == each.key; });
    return row == std::end(kRows) ? nullptr : &*row;
}

// What is wrong with a text that is to stand in one line; empty: nothing.
std::string FaultOfText(std::string_view text) {
    const auto isControl = [](char c) { return (c >= 0 && c < 0x20) || c == 0x7F; };
    if (text.size() > kMostLine) return "longer than " + std::to_string(kMostLine) + " bytes";
    if (std::any_of(text.begin(), text.end(), isControl)) return "control character";
    if (FindInvalidUtf8(text) != std::string::npos) return "invalid UTF-8";
    return "";
}

std::string FaultOfValue(const SettingRow& row, std::string_view value) {
    const std::string name = std::string(row.key) + " '" + std::string(value) + "' ";
    if (row.isText) {
        if (value.size() >= row.size)
            return std::string(row.key) + " is longer than " + std::to_string(row.size - 1) + " bytes";
        return value.find("||") == std::string_view::npos ? "" : name + "has '||' in it";
    }
    std::int64_t number = 0;
    const auto [stop, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error == std::errc::invalid_argument || stop != value.data() + value.size())
        return name + "is not a whole number";
    if (error == std::errc{} && number >= row.least && number <= row.most) return "";
    return name + "is outside " + std::to_string(row.least) + " to " + std::to_string(row.most);
}

std::string FaultOfSetting(std::string_view key, std::string_view value) {
    const SettingRow* const row = RowOf(key);
    return row == nullptr ? "unknown key '" + std::string(key) + "'" : FaultOfValue(*row, value);
}

// The library takes what it knows and passes over the rest; a user wants to hear of the rest.
class Checker {
public:
    // What is wrong with the next line; empty: nothing.
    std::string Fault(std::string_view line) {
        if (const std::string fault = FaultOfText(line); !fault.empty()) return fault;
        if (line.empty()) return "";
        if (m_ended) return std::string("text behind ") + kEnd;
        if (!m_begun) return Begin(line);
        if (line == kEnd) {
            m_ended = true;
            return "";
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) return "not a line of key=value";
        const std::string_view key = line.substr(0, equals);
        if (!m_keys.insert(std::string(key)).second) return "second '" + std::string(key) + "'";
        return FaultOfSetting(key, line.substr(equals + 1));
    }
    bool Ended() const { return m_ended; }

private:
    std::string Begin(std::string_view line) {
        const std::string wanted = std::string(kBegin) + "=" + kSection;
        m_begun = line == wanted;
        return m_begun ? "" : "not the first line of a settings file, " + wanted;
    }

    bool m_begun = false;
    bool m_ended = false;
    std::set<std::string> m_keys;
};

void CheckFile(const std::string& path, std::string_view text) {
    if (text.size() > kMostFile) throw InputError(path, 0, "too long for a settings file");
    Checker checker;
    std::size_t number = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        ++number;
        if (const std::string fault = checker.Fault(line); !fault.empty()) throw InputError(path, number, fault);
    }
    if (!checker.Ended()) throw InputError(path, number, std::string("ends without ") + kEnd);
}

void Parse(const std::string& path, const std::string& text, Settings& settings) {
    dorvutil::COrvFileHandleBase* file =
        dorvutil::FileOpenMemory(text.data(), static_cast<std::uint32_t>(text.size()), dorvutil::eAccessRead);
    const bool parsed = dorvutil::FPC_ParseFile(kTable.data(), file, &settings);
    dorvutil::FileClose(file);
    if (!parsed) throw InputError(path, 0, "cannot be read: out of memory");
}

}  // namespace

std::span<const SettingRow> SettingRows() { return kRows; }

Settings ReadSettings(const std::string& path) {
    const std::string text = ReadWholeFile(path);
    CheckFile(path, text);
    Settings settings;
    Parse(path, text, settings);
    return settings;
}

void WriteSettings(const std::string& path, const Settings& settings) {
    dorvutil::COrvFileHandleMemory file(dorvutil::eAccessWrite);
    Settings copy = settings;  // the library changes line breaks in it
    if (file.Open() != 0 || !dorvutil::FPC_SaveFile(kTable.data(), &file, &copy, kSection) || file.Length() <= 0) {
        throw InputError(path, 0, "cannot be written: out of memory");
    }
    ReplaceFile(path, {file.ByteArray().Data(), file.ByteArray().Count()});
}

const SettingRow& FindSetting(const std::string& path, const std::string& key) {
    const SettingRow* const row = RowOf(key);
    if (row == nullptr) throw InputError(path, 0, "unknown key '" + key + "'");
    return *row;
}

std::string SettingValue(const Settings& settings, const SettingRow& row) {
    char line[kMostLine + 3];
    Settings copy = settings;
    const FileParseCode* const code = dorvutil::FPC_Find(kTable.data(), row.key);
    const std::int32_t length = dorvutil::FPC_EncodeStr(code, &copy, nullptr, line);
    const std::string_view text(line, static_cast<std::size_t>(length));
    return std::string(text.substr(std::string_view(row.key).size() + 1));
}

void ChangeSetting(const std::string& path, Settings& settings, const std::string& key, const std::string& value) {
    std::string fault = FaultOfText(value);
    if (fault.empty()) fault = FaultOfSetting(key, value);
    if (!fault.empty()) throw InputError(path, 0, fault);
    Parse(path, std::string(kBegin) + "\n" + key + "=" + value + "\n" + kEnd + "\n", settings);
}

}  // namespace roadlyn
