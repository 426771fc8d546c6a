#include "ports_command.h"

#include <iostream>
#include <memory>

#include "ports_report.h"

namespace roadlyn {

void AddPortsCommand(CLI::App& app, std::function<int()>& run) {
    const auto tsv = std::make_shared<bool>(false);
    CLI::App* const command =
        app.add_subcommand("ports", "The serial ports that a receiver may hang on, and baud rates");
    command->add_flag(
        "--tsv", *tsv,
        "Tab-separated lines: kind (port, usual_port when the machine has none, baud_rate), name, number, "
        "device");
    command->callback([tsv, &run] {
        run = [tsv] {
            WritePorts(std::cout, FindPorts(), *tsv);
            return std::cout.flush().good() ? 0 : 1;
        };
    });
}

}  // namespace roadlyn
