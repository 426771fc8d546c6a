#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

/// The serial ports of the machine. Any thread.
namespace dorvutil::platform {

/// An entry of the system's map of serial devices.
struct SerialPort {
    char name[96];    ///< Of the entry: with "Serial" in it when it is a serial port and not merely a device like one.
    char data[16];    ///< What it says: "COM" with the port's number, where it has one.
    char device[96];  ///< What opens it, in the system's own form.
};

struct SerialPortList {
    std::unique_ptr<SerialPort[]> ports;
    std::size_t count = 0;
};

/// The entries in the system's order; empty when there are none, or memory ran out. POSIX: `root` is the folder of the
/// kernel's terminals (null: its own, /sys/class/tty). Listed are those with a device behind them, ordered by number;
/// places for ports that no hardware answers from are left out. The numbers are those GetCommPortDevice documents.
SerialPortList ListSerialPorts(const char* root);

/// What a null root means from now on (tests only; null restores the truth). The text must outlive its use.
void UseSerialPortRoot(const char* root);

}  // namespace dorvutil::platform
