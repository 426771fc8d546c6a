#include "recent_file.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <limits>

#include "input_error.h"
#include "place_table.h"
#include "replace_file.h"
#include "tsv_reader.h"

namespace roadlyn {
namespace {

enum Column : std::size_t { kKind, kName, kCountry, kAdmin1, kLat, kLon, kPopulation };
constexpr std::array<std::string_view, 7> kColumns = {"kind",   "name",   "country",   "admin1",
                                                      "lat_e6", "lon_e6", "population"};
constexpr std::string_view kHeader = "kind\tname\tcountry\tadmin1\tlat_e6\tlon_e6\tpopulation\n";

Choice ChoiceOfLine(const TsvReader& reader) {
    Choice choice;
    const std::string_view kind = reader.Field(kKind);
    if (kind != "place" && kind != "country") reader.Fail("kind '" + std::string(kind) + "' is not place or country");
    choice.kind = kind == "place" ? kPlaceSource : kCountrySource;
    choice.name = reader.Field(kName);
    if (choice.name.empty()) reader.Fail("the name is empty");
    if (choice.name.size() > PlaceTable::kMaxNameLength) reader.Fail("the name is longer than 65535 bytes");
    choice.country = reader.Field(kCountry);
    choice.admin1 = reader.Field(kAdmin1);
    choice.latE6 = reader.Number(kLat, -kMaxLatE6, kMaxLatE6);
    choice.lonE6 = reader.Number(kLon, -kMaxLonE6, kMaxLonE6);
    choice.population = reader.Number(kPopulation, 0, std::numeric_limits<std::int32_t>::max());
    return choice;
}

std::vector<Choice> ParseRecentChoices(const std::string& path, std::string_view text) {
    std::vector<Choice> choices;
    TsvReader reader(path, text, kColumns);
    while (reader.Next()) choices.push_back(ChoiceOfLine(reader));
    return choices;
}

}  // namespace

std::vector<Choice> ReadRecentFile(const std::string& path) {
    std::error_code ignored;
    if (path.empty() || !std::filesystem::exists(path, ignored)) return {};
    return ParseRecentChoices(path, ReadWholeFile(path));
}

void RememberChoice(const std::string& path, const Choice& choice) {
    std::vector<Choice> choices = ReadRecentFile(path);
    std::erase_if(choices, [&](const Choice& other) { return other.IsSame(choice); });
    choices.insert(choices.begin(), choice);
    choices.resize(std::min(choices.size(), kMaxRecentChoices));
    std::string text(kHeader);
    for (const Choice& each : choices) text += FormatChoice(each) + "\n";
    ReplaceFile(path, text);
}

std::string FormatChoice(const Choice& choice) {
    return std::string(choice.kind == kCountrySource ? "country" : "place") + "\t" + choice.name + "\t" +
           choice.country + "\t" + choice.admin1 + "\t" + std::to_string(choice.latE6) + "\t" +
           std::to_string(choice.lonE6) + "\t" + std::to_string(choice.population);
}

Choice ParseChoice(const std::string& line) {
    const std::vector<Choice> choices = ParseRecentChoices("choice", std::string(kHeader) + line);
    if (choices.size() != 1) throw InputError("choice", 0, "not one line");
    return choices.front();
}

std::string DefaultRecentPath() {
    const auto variable = [](const char* name) {
        const char* const value = std::getenv(name);
        return std::string(value == nullptr ? "" : value);
    };
    const std::string state = variable("XDG_STATE_HOME");
    if (!state.empty()) return state + "/roadlyn/recent.tsv";
    const std::string home = variable("HOME");
    return home.empty() ? "" : home + "/.local/state/roadlyn/recent.tsv";
}

}  // namespace roadlyn
