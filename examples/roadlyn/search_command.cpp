#include "search_command.h"

#include <unistd.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "data_path.h"
#include "host_session.h"
#include "input_error.h"
#include "recent_file.h"
#include "search_report.h"
#include "search_screen.h"
#include "settings_file.h"

namespace roadlyn {
namespace {

struct SearchOptions {
    std::string places;
    std::string recent;
    std::size_t limit = 0;
    bool exact = false;
    bool smart = true;
    bool keys = false;
    bool tsv = false;
    std::vector<std::string> texts;
};

// The command line: what is not given there comes from the settings file, or is as usual.
struct SearchWords {
    std::string settingsPath;
    std::optional<std::string> places;
    std::optional<std::string> recent;
    std::optional<std::size_t> limit;
    std::optional<bool> exact;
    std::optional<bool> smart;
    std::optional<bool> keys;
    std::optional<bool> tsv;
    std::vector<std::string> texts;
};

SearchOptions OptionsOf(const SearchWords& words) {
    const Settings settings = words.settingsPath.empty() ? Settings() : ReadSettings(words.settingsPath);
    SearchOptions options;
    options.places = words.places.value_or(settings.places);
    options.recent = words.recent.value_or(*settings.recent != '\0' ? settings.recent : DefaultRecentPath());
    options.limit = words.limit.value_or(static_cast<std::size_t>(settings.limit));
    options.exact = words.exact.value_or(settings.exact != 0);
    options.smart = words.smart.value_or(settings.smart != 0);
    options.keys = words.keys.value_or(settings.keys != 0);
    options.tsv = words.tsv.value_or(settings.tsv != 0);
    options.texts = words.texts;
    return options;
}

bool OnTerminal(const SearchOptions& options) {
    return options.texts.empty() && !options.keys && !options.tsv && ::isatty(STDIN_FILENO) == 1 &&
           ::isatty(STDOUT_FILENO) == 1;
}

void ReportTexts(HostSession& session, const SearchOptions& options) {
    ReportOptions report{{}, options.keys, options.tsv};
    if (options.limit != 0) report.limit = options.limit;
    SearchReport search(session, report, std::cout);
    for (const std::string& text : options.texts) search.Search(text);
    if (!options.texts.empty()) return;
    std::string text;
    for (std::size_t line = 1; std::getline(std::cin, text); ++line) {
        if (text.ends_with('\r')) text.pop_back();
        CheckTypedText(text, "standard input", line);
        search.Search(text);
        std::cout.flush();  // whoever types the lines waits for the answer
    }
}

int Search(const SearchWords& words) {
    try {
        const SearchOptions options = OptionsOf(words);
        for (const std::string& text : options.texts) CheckTypedText(text, "TEXT", 0);
        SessionOptions session;
        session.placesPath = options.places.empty() ? DataPath("places.tsv") : options.places;
        session.recentPath = options.recent;
        session.smart = options.smart;
        session.exact = options.exact;
        if (OnTerminal(options)) {
            RunSearchScreen(session);
            return 0;
        }
        HostSession loaded(session);
        loaded.WaitUntilLoaded();
        ReportTexts(loaded, options);
    } catch (const std::exception& error) {
        std::cout.flush();
        std::cerr << "roadlyn: " << error.what() << '\n';
        return 2;
    }
    std::cout.flush();
    if (std::cout.good()) return 0;
    std::cerr << "roadlyn: standard output cannot be written\n";
    return 1;
}

template <class T>
CLI::Option* AddValue(CLI::App& command, const char* name, std::optional<T>& value, const char* description) {
    return command.add_option_function<T>(
        name, [&value](const T& given) { value = given; }, description);
}

void AddSwitch(CLI::App& command, const char* names, std::optional<bool>& value, const char* description) {
    command.add_flag_function(
        names, [&value](std::int64_t given) { value = given > 0; }, description);
}

}  // namespace

void AddSearchCommand(CLI::App& app, std::function<int()>& run) {
    const auto words = std::make_shared<SearchWords>();
    CLI::App* const command = app.add_subcommand(
        "search",
        "Finds places while their name is typed. On a terminal and without TEXT: a full-screen search; Esc leaves it. "
        "Otherwise each TEXT (or each line of standard input) is typed key by key and the results are printed.");
    command->add_option("--settings", words->settingsPath, "Options not given here; see 'roadlyn settings'")
        ->option_text("FILE");
    AddValue(*command, "--places", words->places, "Places to search: tab-separated, with a header line")
        ->option_text("FILE");
    AddValue(*command, "--recent", words->recent, "Where your choices are remembered")->option_text("FILE");
    AddValue(*command, "--limit", words->limit, "Most results printed; 20 unless given, with --tsv 100")
        ->option_text("N")
        ->check(CLI::Range(1, 1'000'000));
    AddSwitch(*command, "--exact,!--no-exact", words->exact, "Never take letters off a text that finds nothing");
    AddSwitch(*command, "--smart,!--no-smart", words->smart,
              "Order by match quality before relevance, as usual; or by relevance alone");
    AddSwitch(*command, "--keys,!--no-keys", words->keys,
              "Print a line for each key: text, results, milliseconds to the first and the last announcement");
    AddSwitch(*command, "--tsv,!--no-tsv", words->tsv,
              "Print tab-separated lines with a header line; an empty line between the lists of several texts. A "
              "country has no position, and the population of its places");
    command->add_option("TEXT", words->texts, "What to type");
    command->callback([words, &run] { run = [words] { return Search(*words); }; });
}

}  // namespace roadlyn
