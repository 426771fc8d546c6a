#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/memory/vector.h"
#include "dorvutil/text/string.h"

namespace dorvutil {

/// What a settings screen offers for the receiver of positions: the serial ports of the machine, and rates for them.
/// Every call asks the system anew. Holds nothing: any thread.
class DORVUTIL_API COrvCommPortsDiscoverer {
public:
    /// Fills an empty `ports` with the numbers of the ports that are there, or, when there are none, with the usual
    /// ones in the order to try them: 8, 4, 5, 6, 7, 9, 10, 3, 2, 1. A `ports` with elements stays as it is. Sets
    /// `baudRates` to 115200, 4800, 9600, 57600, 38400, 1200, 2400, 19200.
    /// The usual ports and the rates are constant tables of the library that a vector then refers to without owning
    /// them: its elements may be read, not written, and it does not grow.
    void GetCommPorts(TVector<int>& ports, TVector<int>& baudRates) const;
    /// The same as texts behind what the lists have: ports as "COM8", rates as "115200". Of a list that does not own
    /// its items the caller destroys the texts.
    void GetCommPortsAsStrings(ListMgr<ORVwstring>& ports, ListMgr<ORVwstring>& baudRates) const;

    int CommPortByIndex(std::uint32_t i) const;  ///< 0 when there is no such port.
    int BaudRateByIndex(std::uint32_t i) const;  ///< 0 from 8 on.

private:
    void DiscoverCommPorts(TVector<int>& ports) const;
    void DiscoverBaudRates(TVector<int>& baudRates) const;
    void DiscoverCommPortsInRegistry(TVector<int>& ports) const;
    void DiscoverXPSVCOMCommPorts(TVector<int>& ports) const;
};

/// What a program opens to use a port: its device in the system's own form; empty when no such port is there, which
/// also tells the usual ports from those of the machine.
///
/// Windows numbers its ports itself. Elsewhere the number follows from the device's name and stays the same whatever
/// else is plugged in: /dev/ttySn is n + 1 (standard ports), ttyUSBn 1001 + n (adapters), ttyACMn 2001 + n (modems,
/// most receivers), ttyAMAn 3001 + n (ARM boards), rfcommn 4001 + n (Bluetooth), n up to 998. Any other serial device
/// has 1,000,000 + 1,000 * its major + its minor device number. Any thread.
DORVUTIL_API ORVustring GetCommPortDevice(int port);

}  // namespace dorvutil
