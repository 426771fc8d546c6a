#include "ports_report.h"

#include <algorithm>
#include <ostream>

#include "dorvutil/system/comm_ports.h"

namespace roadlyn {
namespace {

void WriteTable(std::ostream& out, const PortOffer& offer) {
    out << "kind\tname\tnumber\tdevice\n";
    const char* const kind = offer.usualOnly ? "usual_port" : "port";
    for (const OfferedPort& port : offer.ports) {
        out << kind << "\tCOM" << port.number << '\t' << port.number << '\t' << port.device << '\n';
    }
    for (const int rate : offer.baudRates) out << "baud_rate\t" << rate << '\t' << rate << "\t\n";
}

}  // namespace

PortOffer FindPorts() {
    dorvutil::TVector<int> ports, rates;
    dorvutil::COrvCommPortsDiscoverer().GetCommPorts(ports, rates);
    PortOffer offer;
    for (const int number : ports) offer.ports.push_back({number, dorvutil::GetCommPortDevice(number).c_str()});
    offer.baudRates.assign(rates.begin(), rates.end());
    offer.usualOnly = std::ranges::all_of(offer.ports, [](const OfferedPort& port) { return port.device.empty(); });
    return offer;
}

void WritePorts(std::ostream& out, const PortOffer& offer, bool tsv) {
    if (tsv) {
        WriteTable(out, offer);
        return;
    }
    out << (offer.usualOnly ? "This machine has no serial port; the usual ones, in the order to try them:\n"
                            : "Serial ports of this machine:\n");
    for (const OfferedPort& port : offer.ports) {
        out << "  COM" << port.number << "  number " << port.number;
        if (!port.device.empty()) out << "  device " << port.device;
        out << '\n';
    }
    out << "Baud rates:";
    for (const int rate : offer.baudRates) out << ' ' << rate;
    out << '\n';
}

}  // namespace roadlyn
