#include "dorvutil/system/comm_ports.h"

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <utility>

#include "dorvutil/storage/path_parts.h"
#include "dorvutil/system/comm_port_map.h"

namespace dorvutil {
namespace {

constexpr int kUsualPorts[] = {8, 4, 5, 6, 7, 9, 10, 3, 2, 1};
constexpr int kBaudRates[] = {115200, 4800, 9600, 57600, 38400, 1200, 2400, 19200};

constexpr int kNoNumber = -1;
constexpr char kPortPrefix[] = "COM";

// A vector has no constant form, so that nothing but its documentation keeps the table from being written.
template <std::size_t n>
void ReferTo(TVector<int>& vector, const int (&table)[n]) {
    vector = TVector<int>(const_cast<int*>(table), n, false);
}

}  // namespace

bool IsCommPort(const platform::SerialPort& entry) { return std::strstr(entry.name, "Serial") != nullptr; }

// As scanf reads "COM%d": what follows the number does not matter.
int CommPortNumber(const platform::SerialPort& entry) {
    constexpr std::size_t kPrefixLength = sizeof(kPortPrefix) - 1;
    if (std::strncmp(entry.data, kPortPrefix, kPrefixLength) != 0) return kNoNumber;
    const char* const digits = entry.data + kPrefixLength;
    char* end = nullptr;
    const std::int64_t number = std::strtoll(digits, &end, 10);
    const bool fits = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    return end != digits && fits ? static_cast<int>(number) : kNoNumber;
}

void AddCommPorts(const platform::SerialPort* entries, std::size_t count, TVector<int>& ports) {
    for (std::size_t i = 0; i < count; ++i) {
        if (IsCommPort(entries[i])) ports.Add(CommPortNumber(entries[i]));
    }
}

void COrvCommPortsDiscoverer::GetCommPorts(TVector<int>& ports, TVector<int>& baudRates) const {
    DiscoverCommPorts(ports);
    DiscoverBaudRates(baudRates);
}

void COrvCommPortsDiscoverer::GetCommPortsAsStrings(ListMgr<ORVwstring>& ports, ListMgr<ORVwstring>& baudRates) const {
    TVector<int> numbers, rates;
    GetCommPorts(numbers, rates);
    for (const int number : std::as_const(numbers)) AddText(ports, ORVwstring::printf(u"COM%d", number));
    for (const int rate : std::as_const(rates)) AddText(baudRates, ORVwstring::itoa(rate));
}

int COrvCommPortsDiscoverer::CommPortByIndex(std::uint32_t i) const {
    TVector<int> ports;
    DiscoverCommPorts(ports);
    return std::as_const(ports)[i];
}

int COrvCommPortsDiscoverer::BaudRateByIndex(std::uint32_t i) const {
    return i < std::size(kBaudRates) ? kBaudRates[i] : 0;
}

void COrvCommPortsDiscoverer::DiscoverCommPorts(TVector<int>& ports) const {
    if (ports.Count() != 0) return;
    DiscoverCommPortsInRegistry(ports);
    if (ports.Count() == 0) ReferTo(ports, kUsualPorts);
}

void COrvCommPortsDiscoverer::DiscoverBaudRates(TVector<int>& baudRates) const { ReferTo(baudRates, kBaudRates); }

void COrvCommPortsDiscoverer::DiscoverCommPortsInRegistry(TVector<int>& ports) const {
    const platform::SerialPortList list = platform::ListSerialPorts(nullptr);
    if (!ports.OwnsMemory()) ports.Empty();  // it can grow then
    AddCommPorts(list.ports.get(), list.count, ports);
}

void COrvCommPortsDiscoverer::DiscoverXPSVCOMCommPorts(TVector<int>&) const {}

ORVustring GetCommPortDevice(int port) {
    const platform::SerialPortList list = platform::ListSerialPorts(nullptr);
    for (std::size_t i = 0; i < list.count; ++i) {
        const platform::SerialPort& entry = list.ports[i];
        if (IsCommPort(entry) && CommPortNumber(entry) == port) return entry.device;
    }
    return ORVustring();
}

}  // namespace dorvutil
