#include "search_command.h"

#include <unistd.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "host_session.h"
#include "input_error.h"
#include "recent_file.h"
#include "search_report.h"
#include "search_screen.h"

namespace roadlyn {
namespace {

struct SearchOptions {
    std::string places;
    std::string recent = DefaultRecentPath();
    std::size_t limit = 0;
    bool exact = false;
    bool noSmart = false;
    bool keys = false;
    bool tsv = false;
    std::vector<std::string> texts;
};

// Beside the program as installed, else beside the source tree it was built from.
std::string DefaultPlacesPath() {
    namespace fs = std::filesystem;
    std::error_code ignored;
    const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
    const fs::path candidates[] = {program.parent_path() / ".." / ROADLYN_SHARE_DIR / "places.tsv",
                                   fs::path(ROADLYN_DATA_DIR) / "places.tsv"};
    for (const fs::path& candidate : candidates) {
        if (fs::exists(candidate, ignored)) return candidate.lexically_normal().string();
    }
    return candidates[0].lexically_normal().string();
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

int Search(const SearchOptions& options) {
    try {
        for (const std::string& text : options.texts) CheckTypedText(text, "TEXT", 0);
        SessionOptions session;
        session.placesPath = options.places.empty() ? DefaultPlacesPath() : options.places;
        session.recentPath = options.recent;
        session.smart = !options.noSmart;
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

}  // namespace

void AddSearchCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<SearchOptions>();
    CLI::App* const command = app.add_subcommand(
        "search",
        "Finds places while their name is typed. On a terminal and without TEXT: a full-screen search; Esc leaves it. "
        "Otherwise each TEXT (or each line of standard input) is typed key by key and the results are printed.");
    command->add_option("--places", options->places, "Places to search: tab-separated, with a header line")
        ->option_text("FILE");
    command->add_option("--recent", options->recent, "Where your choices are remembered")->option_text("FILE");
    command->add_option("--limit", options->limit, "Most results printed; 20 unless given, with --tsv 100")
        ->option_text("N")
        ->check(CLI::Range(1, 1'000'000));
    command->add_flag("--exact", options->exact, "Never take letters off a text that finds nothing");
    command->add_flag("--no-smart", options->noSmart, "Order by relevance alone, not by match quality first");
    command->add_flag("--keys", options->keys,
                      "Print a line for each key: text, results, milliseconds to the first and "
                      "the last announcement");
    command->add_flag(
        "--tsv", options->tsv,
        "Print tab-separated lines with a header line; an empty line between the lists of several texts. A "
        "country has no position, and the population of its places");
    command->add_option("TEXT", options->texts, "What to type");
    command->callback([options, &run] { run = [options] { return Search(*options); }; });
}

}  // namespace roadlyn
