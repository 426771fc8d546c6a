#include "settings_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "input_error.h"
#include "roadlyn/test_folder.h"
#include "tsv_reader.h"

namespace roadlyn {
namespace {

namespace fs = std::filesystem;

class SettingsFile : public FolderTest {
protected:
    std::string Path() const { return At("settings"); }
    std::string ValueOf(const std::string& key) const {
        return SettingValue(ReadSettings(Path()), FindSetting(Path(), key));
    }
};

TEST_F(SettingsFile, ValuesComeBackAndTheRestIsDefault) {
    Settings settings;
    ChangeSetting(Path(), settings, "places", "/a b/Münster=x.tsv");
    ChangeSetting(Path(), settings, "limit", "1000000");
    WriteSettings(Path(), settings);
    EXPECT_EQ(ValueOf("places"), "/a b/Münster=x.tsv");
    EXPECT_EQ(ValueOf("limit"), "1000000");
    EXPECT_EQ(ValueOf("smart"), "1");
    Write("settings", "[roadlyn]=search\n\nexact=1\r\n[end]");
    EXPECT_EQ(ValueOf("exact"), "1");
    EXPECT_EQ(ValueOf("places"), "");
    const std::string longest(kSettingTextSize - 1, 'x');
    ChangeSetting(Path(), settings, "recent", longest);
    WriteSettings(Path(), settings);
    EXPECT_EQ(ValueOf("recent"), longest);
}

TEST_F(SettingsFile, FaultsNameLineAndReason) {
    const struct {
        std::string text;
        const char* error;
    } kCases[] = {
        {"", ": ends without [end]"},
        {"limit=1\n", ":1: not the first line of a settings file, [roadlyn]=search"},
        {"[roadlyn]=find\n", ":1: not the first line of a settings file, [roadlyn]=search"},
        {"[roadlyn]=search\nlimit=1\n", ":2: ends without [end]"},
        {"[roadlyn]=search\nlimit=1\n[end]\nkeys=1\n", ":4: text behind [end]"},
        {"[roadlyn]=search\n[roadlyn]=search\n[end]\n", ":2: unknown key '[roadlyn]'"},
        {"[roadlyn]=search\nkeys=1\nkeys=0\n[end]\n", ":3: second 'keys'"},
        {"[roadlyn]=search\nlimits=1\n[end]\n", ":2: unknown key 'limits'"},
        {"[roadlyn]=search\nlimit\n[end]\n", ":2: not a line of key=value"},
        {"[roadlyn]=search\nlimit=\n[end]\n", ":2: limit '' is not a whole number"},
        {"[roadlyn]=search\nlimit=1x\n[end]\n", ":2: limit '1x' is not a whole number"},
        {"[roadlyn]=search\nlimit= 1\n[end]\n", ":2: limit ' 1' is not a whole number"},
        {"[roadlyn]=search\nlimit=-1\n[end]\n", ":2: limit '-1' is outside 0 to 1000000"},
        {"[roadlyn]=search\nlimit=99999999999999999999\n[end]\n",
         ":2: limit '99999999999999999999' is outside 0 to 1000000"},
        {"[roadlyn]=search\nsmart=2\n[end]\n", ":2: smart '2' is outside 0 to 1"},
        {"[roadlyn]=search\nplaces=a||b\n[end]\n", ":2: places 'a||b' has '||' in it"},
        {"[roadlyn]=search\nplaces=a\tb\n[end]\n", ":2: control character"},
        {"[roadlyn]=search\nplaces=\xFF\n[end]\n", ":2: invalid UTF-8"},
        {"[roadlyn]=search\nplaces=" + std::string(kSettingTextSize, 'x') + "\n[end]\n",
         ":2: places is longer than 399 bytes"},
        {"[roadlyn]=search\nplaces=" + std::string(600, 'x') + "\n[end]\n", ":2: longer than 511 bytes"},
        {std::string(1 << 21, '\n'), ": too long for a settings file"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.error);
        Write("settings", c.text);
        try {
            ReadSettings(Path());
            ADD_FAILURE() << "read";
        } catch (const InputError& error) {
            EXPECT_EQ(error.what(), Path() + c.error);
        }
    }
}

TEST_F(SettingsFile, BadChangesLeaveTheSettingsAlone) {
    const struct {
        const char* key;
        const char* value;
        const char* error;
    } kCases[] = {
        {"limits", "1", ": unknown key 'limits'"},
        {"[end]", "1", ": unknown key '[end]'"},
        {"limit", "1000001", ": limit '1000001' is outside 0 to 1000000"},
        {"keys", "yes", ": keys 'yes' is not a whole number"},
        {"places", "a\nlimit=5", ": control character"},
    };
    for (const auto& c : kCases) {
        Settings settings;
        try {
            ChangeSetting(Path(), settings, c.key, c.value);
            ADD_FAILURE() << c.key;
        } catch (const InputError& error) {
            EXPECT_EQ(error.what(), Path() + c.error);
        }
        EXPECT_EQ(settings.limit, 0);
    }
}

TEST_F(SettingsFile, FailedWriteLeavesTheOldFileAlone) {
    WriteSettings(Path(), {});
    const std::string before = ReadWholeFile(Path());
    Settings changed;
    changed.limit = 5;
    {
        const FileSizeLimit tiny(10);
        EXPECT_THROW(WriteSettings(Path(), changed), InputError);
    }
    EXPECT_EQ(ReadWholeFile(Path()), before);
    EXPECT_EQ(CountEntries(m_folder), 1);
}

TEST_F(SettingsFile, ReplacementKeepsLinkAndPermissions) {
    WriteSettings(Path(), {});
    ASSERT_EQ(::chmod(Path().c_str(), 0644), 0);
    const std::string link = At("link");
    fs::create_symlink("settings", link);
    Settings changed;
    changed.limit = 5;
    WriteSettings(link, changed);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(ValueOf("limit"), "5");
    EXPECT_EQ(fs::status(Path()).permissions(), fs::perms(0644));
}

}  // namespace
}  // namespace roadlyn
