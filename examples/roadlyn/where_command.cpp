#include "where_command.h"

#include <cstdint>
#include <cstdio>
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "coordinate_argument.h"
#include "country_map.h"
#include "country_names.h"
#include "data_path.h"
#include "place_file.h"
#include "run_command.h"

namespace roadlyn {
namespace {

struct WhereOptions {
    std::vector<std::string> positions;
    std::string countries;
    std::string places;
    bool all = false;
    bool tsv = false;
};

std::string Degrees(std::int32_t unitsE6) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6f", unitsE6 / 1e6);
    return text;
}

void Print(const Point& position, const CountryMap::Country* country, bool tsv) {
    const char separator = tsv ? '\t' : ' ';
    std::cout << Degrees(position.y) << separator << Degrees(position.x) << separator;
    if (tsv) {
        std::cout << (country ? country->name : "") << '\t';
        if (country && country->number != 0) std::cout << std::setfill('0') << std::setw(3) << country->number;
    } else {
        std::cout << (country ? country->name : "in no country");
    }
    std::cout << '\n';
}

void PrintHeader(bool tsv) {
    if (tsv) std::cout << "lat\tlon\tcountry\tiso_num\n";
}

void ShowArguments(const CountryMap& map, const WhereOptions& options) {
    // All of them are read before the first is answered.
    std::vector<Point> points;
    for (const std::string& text : options.positions) {
        points.push_back(ReadCoordinate("position", options.positions.size() == 1 ? 0 : points.size() + 1, text));
    }
    PrintHeader(options.tsv);
    for (const Point& point : points) Print(point, map.Find(point), options.tsv);
}

void ShowInput(const CountryMap& map, bool tsv) {
    PrintHeader(tsv);
    std::string line;
    for (std::size_t number = 1; std::getline(std::cin, line); ++number) {
        if (line.ends_with('\r')) line.pop_back();
        if (line.empty()) continue;
        const Point point = ReadCoordinate("standard input", number, line);
        Print(point, map.Find(point), tsv);
    }
}

// A place's country by its number, or by its name where the map has no number for it.
bool IsIn(const CountryMap::Country& country, std::string_view code) {
    const int number = CountryNumber(code);
    return number != 0 && country.number != 0 ? number == country.number : CountryName(code) == country.name;
}

void ShowAllPlaces(const CountryMap& map, const WhereOptions& options) {
    const PlaceTable places = ReadPlaceFile(options.places, [](unsigned) { return true; });
    if (options.tsv) std::cout << "name\tcountry\tlat\tlon\tmap_country\n";
    std::uint32_t agreeing = 0, another = 0, none = 0;
    for (std::uint32_t i = 0; i < places.Count(); ++i) {
        const Place& place = places.At(i);
        const CountryMap::Country* const found = map.Find({place.lonE6, place.latE6});
        const bool agrees = found && IsIn(*found, places.Country(place));
        ++(agrees ? agreeing : found ? another : none);
        if (agrees || !options.tsv) continue;
        std::cout << places.Name(place) << '\t' << places.Country(place) << '\t' << Degrees(place.latE6) << '\t'
                  << Degrees(place.lonE6) << '\t' << (found ? found->name : "") << '\n';
    }
    std::cout << "places " << places.Count() << ", agreeing " << agreeing << ", in another country " << another
              << ", in none " << none << '\n';
}

int Run(const WhereOptions& options) {
    return RunCommand([&options] {
        const CountryMap map(options.countries);
        if (options.all)
            ShowAllPlaces(map, options);
        else if (options.positions.empty())
            ShowInput(map, options.tsv);
        else
            ShowArguments(map, options);
    });
}

}  // namespace

void AddWhereCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<WhereOptions>();
    CLI::App* const command = app.add_subcommand(
        "where", "The country that contains a position; positions come from standard input, one a line, unless given");
    CLI::Option* const positions = command->add_option("POSITION", options->positions, "LAT,LON");
    positions->option_text("LAT,LON ...");
    command->add_option("--countries", options->countries, "Borders; the bundled ones unless given")
        ->option_text("FILE");
    command->add_option("--places", options->places, "Places for --all; the bundled ones unless given")
        ->option_text("FILE");
    command
        ->add_flag("--all", options->all,
                   "Holds the country of every place against the borders; --tsv lists those that do not agree")
        ->excludes(positions);
    command->add_flag("--tsv", options->tsv, "Tab-separated, with a header line");
    command->callback([options, &run] {
        if (options->countries.empty()) options->countries = DataPath("countries-50m.tsv");
        if (options->places.empty()) options->places = DataPath("places.tsv");
        run = [options] { return Run(*options); };
    });
}

}  // namespace roadlyn
