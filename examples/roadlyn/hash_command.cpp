#include "hash_command.h"

#include <cstdint>
#include <exception>
#include <iostream>
#include <limits>
#include <memory>
#include <string>

#include "dorvutil/security.h"
#include "input_error.h"
#include "input_file.h"

namespace roadlyn {
namespace {

constexpr int kBadInput = 2;

struct HashOptions {
    std::string file;
    bool write = false;
    bool verify = false;
    bool text = false;

    std::int32_t Mode() const { return text ? dorvutil::kHashText : dorvutil::kHashBinary; }
};

void PrintDigest(const std::uint8_t* digest, const std::string& file) {
    char digits[2 * dorvutil::kSha1DigestBytes + 1] = "";
    dorvutil::HexToText(digest, dorvutil::kSha1DigestBytes, digits, sizeof digits);
    std::cout << digits << "  " << file << '\n';
}

// The whole file is one piece: it is never in memory at once.
void Print(const HashOptions& options) {
    std::uint8_t digest[dorvutil::kSha1DigestBytes];
    dorvutil::ORVustring path = LibraryPath(options.file);
    dorvutil::ListMgr<dorvutil::ORVustring> files(false);
    files.Add(&path);
    constexpr std::uint32_t kAll = std::numeric_limits<std::uint32_t>::max();
    if (!dorvutil::FileGetHashFromFilePieces(files, kAll, 1, digest, sizeof digest, nullptr, 0)) {
        throw InputError(options.file, 0, "cannot be read");
    }
    PrintDigest(digest, options.file);
}

void Write(const HashOptions& options) {
    std::uint8_t digest[dorvutil::kSha1DigestBytes];
    if (!dorvutil::FileWriteHash(LibraryPath(options.file), options.Mode(), digest, sizeof digest, nullptr, 0)) {
        throw InputError(options.file, 0, "cannot be read, or its hash cannot be appended");
    }
    PrintDigest(digest, options.file);
}

int Verify(const HashOptions& options) {
    const bool matches = dorvutil::FileVerifyHash(LibraryPath(options.file), options.Mode(), nullptr, 0);
    std::cout << options.file << (matches ? ": matches its hash" : ": does not match its hash, or has none") << '\n';
    return matches ? 0 : 1;
}

int Run(const HashOptions& options) {
    int exitCode = 0;
    try {
        NeedContent(options.file);
        if (options.verify)
            exitCode = Verify(options);
        else if (options.write)
            Write(options);
        else
            Print(options);
    } catch (const std::exception& error) {
        std::cerr << "roadlyn: " << error.what() << '\n';
        return kBadInput;
    }
    return std::cout.flush().good() ? exitCode : 1;
}

}  // namespace

void AddHashCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<HashOptions>();
    CLI::App* const command = app.add_subcommand(
        "hash",
        "The integrity hash of a file, against damage: prints that of all its bytes; with --write also appends it to "
        "the file; with --verify tells whether a file still matches the hash at its end (exit code 1 when not).");
    command->add_option("FILE", options->file, "The file")->required();
    CLI::Option* const write = command->add_flag("--write", options->write, "Append the hash");
    command->add_flag("--verify", options->verify, "Compare with the hash at the end")->excludes(write);
    command->add_flag("--text", options->text, "The hash at the end is 40 digits, not 20 bytes");
    command->callback([options, &run] { run = [options] { return Run(*options); }; });
}

}  // namespace roadlyn
