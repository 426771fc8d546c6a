#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace roadlyn {

struct OfferedPort {
    int number;
    std::string device;  ///< What opens it; empty: the machine has no such port.
};

/// What a settings screen would offer for a receiver.
struct PortOffer {
    std::vector<OfferedPort> ports;
    std::vector<int> baudRates;
    bool usualOnly = false;  ///< The machine has no port: these are the ones to try.
};

/// Asks the library.
PortOffer FindPorts();

void WritePorts(std::ostream& out, const PortOffer& offer, bool tsv);

}  // namespace roadlyn
