#include "photo_command.h"

#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "photo_report.h"

namespace roadlyn {
namespace {

constexpr int kBadInput = 2;

struct PhotoOptions {
    std::vector<std::string> files;
    bool tsv = false;
};

// A photo that cannot be read does not keep the others from being shown.
int ShowPhotos(const PhotoOptions& options) {
    int code = 0;
    if (options.tsv) WritePhotoHeader(std::cout);
    for (const std::string& file : options.files) {
        try {
            const PhotoFacts facts = ReadPhoto(file);
            WritePhoto(std::cout, file, facts, options.tsv);
        } catch (const std::exception& error) {
            std::cerr << "roadlyn: " << error.what() << '\n';
            code = kBadInput;
        }
    }
    return std::cout.flush().good() ? code : 1;
}

}  // namespace

void AddPhotoCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<PhotoOptions>();
    CLI::App* const command = app.add_subcommand(
        "photo", "Where photos were taken, with the command that tells the country, and their titles");
    command->add_option("FILE", options->files, "JPEG files")->required()->option_text("TEXT");
    command->add_flag("--tsv", options->tsv,
                      "One photo a line, tab-separated: file, lat_e6, lon_e6 (millionths of a degree, south and west "
                      "negative), lat_ref, lon_ref, title");
    command->callback([options, &run] { run = [options] { return ShowPhotos(*options); }; });
}

}  // namespace roadlyn
