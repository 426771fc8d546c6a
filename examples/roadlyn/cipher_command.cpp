#include "cipher_command.h"

#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "file_cipher.h"

namespace roadlyn {
namespace {

constexpr int kBadInput = 2;

int Run(const CipherJob& job) {
    try {
        const std::size_t size = RunCipher(job);
        std::cout << job.target << ": " << size << " bytes" << std::endl;
    } catch (const std::exception& error) {
        std::cerr << "roadlyn: " << error.what() << '\n';
        return kBadInput;
    }
    return std::cout.good() ? 0 : 1;
}

void AddCommand(CLI::App& app, std::function<int()>& run, Direction direction, const char* name,
                const char* description) {
    const auto job = std::make_shared<CipherJob>();
    job->direction = direction;
    CLI::App* const command = app.add_subcommand(name, description);
    command->add_option("FILE", job->source, "The file to read")->required();
    command->add_option("OUT", job->target, "The file to write")->required();
    command
        ->add_option("--key-file", job->keyFile,
                     "Holds the key: 16, 24 or 32 bytes; a line end behind them does not count. Without it a key that "
                     "everyone has")
        ->option_text("FILE");
    command->add_flag("--force", job->overwrite, "Replace OUT when it exists");
    command->callback([job, &run] { run = [job] { return Run(*job); }; });
}

}  // namespace

void AddCipherCommands(CLI::App& app, std::function<int()>& run) {
    AddCommand(app, run, Direction::Encrypt, "encrypt",
               "Encrypts a file against casual reading. It is no protection against an attacker: for that take a "
               "program made for it.");
    AddCommand(app, run, Direction::Decrypt, "decrypt",
               "Undoes encrypt. The format has no checksum: seven wrong keys of eight are noticed, and damage only "
               "when it changes the length; 'roadlyn hash' finds the rest when it was used before.");
}

}  // namespace roadlyn
