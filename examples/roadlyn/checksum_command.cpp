#include "checksum_command.h"

#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "dorvutil/security.h"
#include "input_error.h"
#include "input_file.h"

namespace roadlyn {
namespace {

constexpr int kBadInput = 2;

struct ChecksumOptions {
    std::vector<std::string> files;
    std::vector<std::string> texts;
};

void PrintFile(const std::string& path) {
    SizeOfInput(path);
    char digits[sizeof "01234567"];
    std::snprintf(digits, sizeof digits, "%08x", dorvutil::FileChecksum(LibraryPath(path)));
    std::cout << digits << "  " << path << '\n';
}

void PrintTexts(const std::vector<std::string>& texts) {
    dorvutil::ORVustring digits;
    if (!dorvutil::GetSimpleOrvChecksum(digits, texts[0].c_str(), texts[1].c_str())) {
        throw InputError("--text", 0, "no memory");
    }
    std::cout << digits.c_str() << '\n';
}

int Run(const ChecksumOptions& options) {
    int exitCode = 0;
    try {
        if (!options.texts.empty()) PrintTexts(options.texts);
        if (options.texts.empty() && options.files.empty()) throw InputError("checksum", 0, "needs a FILE or --text");
    } catch (const std::exception& error) {
        std::cerr << "roadlyn: " << error.what() << '\n';
        return kBadInput;
    }
    for (const std::string& file : options.files) {
        try {
            PrintFile(file);
        } catch (const std::exception& error) {
            std::cerr << "roadlyn: " << error.what() << '\n';
            exitCode = kBadInput;  // the other files have theirs all the same
        }
    }
    return std::cout.flush().good() ? exitCode : 1;
}

}  // namespace

void AddChecksumCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<ChecksumOptions>();
    CLI::App* const command = app.add_subcommand(
        "checksum", "The sum of each file's words, as 8 hexadecimal digits; or the salted checksum of two texts.");
    CLI::Option* const files = command->add_option("FILE", options->files, "The files");
    command->add_option("--text", options->texts, "Two texts, of which 251 bytes count")
        ->expected(2)
        ->option_text("A B")
        ->excludes(files);
    command->callback([options, &run] { run = [options] { return Run(*options); }; });
}

}  // namespace roadlyn
