#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace roadlyn {

inline constexpr std::size_t kSettingTextSize = 400;  ///< Bytes with the terminator; a line of the file takes 511.

/// What a settings file says about "roadlyn search": as its options of the same names.
struct Settings {
    char places[kSettingTextSize] = "";  ///< Empty: the places that come with the program.
    char recent[kSettingTextSize] = "";  ///< Empty: where choices are kept otherwise.
    std::int32_t limit = 0;              ///< 0: as many as the output usually has.
    std::int32_t exact = 0;
    std::int32_t smart = 1;
    std::int32_t keys = 0;
    std::int32_t tsv = 0;
};

/// One setting. A text has no control characters and no "||", which would stand for a line break.
struct SettingRow {
    const char* key;
    std::uint32_t offset;  ///< In Settings.
    std::uint32_t size;    ///< Bytes there.
    bool isText;
    std::int32_t least;  ///< Of a number.
    std::int32_t most;
};
std::span<const SettingRow> SettingRows();

/// Reads the file: lines of key=value between "[roadlyn]=search" and "[end]"; settings that it does not name keep their
/// default. Throws InputError, with the line, for whatever is not of this form.
Settings ReadSettings(const std::string& path);

/// Makes the settings the content of the file, in one step. Throws InputError when it cannot be written; it is
/// unchanged then.
void WriteSettings(const std::string& path, const Settings& settings);

/// The row of that key; the value as the file has it; a new value. They throw InputError, naming `path`, for a key
/// that there is not and for a value that does not fit.
const SettingRow& FindSetting(const std::string& path, const std::string& key);
std::string SettingValue(const Settings& settings, const SettingRow& row);
void ChangeSetting(const std::string& path, Settings& settings, const std::string& key, const std::string& value);

}  // namespace roadlyn
