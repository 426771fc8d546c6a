#include "settings_command.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "run_command.h"
#include "settings_file.h"

namespace roadlyn {
namespace {

struct SettingsOptions {
    std::string file;
    std::optional<std::string> key;
    std::optional<std::string> value;
};

void List(const std::string& path) {
    const Settings settings = ReadSettings(path);
    for (const SettingRow& row : SettingRows()) {
        const std::string value = SettingValue(settings, row);
        std::cout << row.key << '\t' << value << '\t' << (value == SettingValue({}, row) ? "default" : "set") << '\n';
    }
}

void Print(const std::string& path, const std::string& key) {
    const Settings settings = ReadSettings(path);
    std::cout << SettingValue(settings, FindSetting(path, key)) << '\n';
}

void Change(const std::string& path, const std::string& key, const std::string& value) {
    Settings settings = std::filesystem::exists(path) ? ReadSettings(path) : Settings();
    ChangeSetting(path, settings, key, value);
    WriteSettings(path, settings);
}

int Run(const SettingsOptions& options) {
    return RunCommand([&options] {
        if (options.value)
            Change(options.file, *options.key, *options.value);
        else if (options.key)
            Print(options.file, *options.key);
        else
            List(options.file);
    });
}

}  // namespace

void AddSettingsCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<SettingsOptions>();
    CLI::App* const command = app.add_subcommand(
        "settings",
        "A settings file for 'search --settings'. Prints all settings, each with its value and whether that is the "
        "default (tab-separated); with KEY its value; with KEY and VALUE it changes the file, or makes it.");
    command->add_option("FILE", options->file, "The settings file")->required();
    const auto add = [&](const char* name, std::optional<std::string>& word, const char* description) {
        command
            ->add_option_function<std::string>(
                name, [&word](const std::string& given) { word = given; }, description)
            ->option_text("TEXT");
    };
    add("KEY", options->key, "places, recent, limit, exact, smart, keys or tsv");
    add("VALUE", options->value, "Its new value; 0 and 1 for no and yes");
    command->callback([options, &run] { run = [options] { return Run(*options); }; });
}

}  // namespace roadlyn
