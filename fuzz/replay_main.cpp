// Feeds the files and folders named on the command line to a fuzz target: the corpus as a test, and one input again
// under a debugger.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz_support.h"

namespace {

int Replay(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return 0;
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    std::fprintf(stderr, "%s\n", path.c_str());
    // A block of its own size: the target reads not one byte beyond the input.
    const dorvutil::fuzz::Exact<char> input{std::string_view(content)};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.Data()), input.Size());
    return 1;
}

}  // namespace

int main(int count, char** arguments) {
    int replayed = 0;
    for (int i = 1; i < count; ++i) {
        if (!std::filesystem::is_directory(arguments[i])) {
            replayed += Replay(arguments[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(arguments[i])) {
            if (entry.is_regular_file()) replayed += Replay(entry.path());
        }
    }
    std::fprintf(stderr, "%d inputs\n", replayed);
    return replayed != 0 ? 0 : 1;
}
