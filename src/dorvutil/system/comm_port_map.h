#pragma once

#include <cstddef>

#include "dorvutil/memory/vector.h"
#include "dorvutil/platform/serial_ports.h"

namespace dorvutil {

/// The number of a port by its entry in the system's map of serial devices; -1 when the entry does not tell one.
int CommPortNumber(const platform::SerialPort& entry);

/// Whether the entry is that of a serial port; the map has other devices like them too.
bool IsCommPort(const platform::SerialPort& entry);

/// Appends the numbers of the serial ports among `count` entries, in their order.
void AddCommPorts(const platform::SerialPort* entries, std::size_t count, TVector<int>& ports);

}  // namespace dorvutil
