#include "nmea_command.h"

#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "input_error.h"
#include "input_file.h"
#include "nmea_check.h"
#include "tsv_reader.h"

namespace roadlyn {
namespace {

constexpr int kBadInput = 2;

struct NmeaOptions {
    std::string file;
    bool tsv = false;
};

void PrintText(const NmeaReport& report, const std::string& file) {
    for (const BadLine& line : report.bad) {
        std::cout << file << ':' << line.number << ": " << line.reason << ": ";
        if (!line.expected.empty()) std::cout << "expected " << line.expected << ", ";
        std::cout << "found '" << line.found << "'\n";
    }
    std::cout << file << ": " << report.sentences << " sentences, " << report.good << " good, " << report.bad.size()
              << " bad, " << report.withoutChecksum << " without checksum\n";
}

void PrintTsv(const NmeaReport& report) {
    std::cout << "line\treason\texpected\tfound\n";
    for (const BadLine& line : report.bad) {
        std::cout << line.number << '\t' << line.reason << '\t' << line.expected << '\t' << line.found << '\n';
    }
    const struct {
        const char* name;
        std::size_t count;
    } kCounts[] = {{"sentences", report.sentences},
                   {"good", report.good},
                   {"bad", report.bad.size()},
                   {"without checksum", report.withoutChecksum}};
    for (const auto& row : kCounts) std::cout << "all\t" << row.name << "\t\t" << row.count << '\n';
}

int Run(const NmeaOptions& options) {
    try {
        SizeOfInput(options.file);
        const NmeaReport report = CheckNmea(ReadWholeFile(options.file));
        if (report.sentences == 0) throw InputError(options.file, 0, "has no sentence");
        if (options.tsv)
            PrintTsv(report);
        else
            PrintText(report, options.file);
        return std::cout.flush().good() && report.bad.empty() ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << "roadlyn: " << error.what() << '\n';
        return kBadInput;
    }
}

}  // namespace

void AddNmeaCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<NmeaOptions>();
    CLI::App* const command = app.add_subcommand(
        "nmea",
        "Checks the checksum of every sentence of an NMEA 0183 log, as receivers write it: names the bad lines and "
        "counts all. The exit code is 1 when a line is bad.");
    command->add_option("FILE", options->file, "The log")->required();
    command->add_flag("--tsv", options->tsv,
                      "Tab-separated: a header, the bad lines, and rows named 'all' with the counts");
    command->callback([options, &run] { run = [options] { return Run(*options); }; });
}

}  // namespace roadlyn
