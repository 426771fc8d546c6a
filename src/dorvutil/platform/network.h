#pragma once

#include <cstddef>
#include <cstdint>

/// The machine in its network. Nothing but ProbeConnection talks to another machine. Any thread.
namespace dorvutil::platform {

struct EthernetAddress {
    std::uint8_t bytes[6];
};

/// Writes the addresses of the Ethernet interfaces, in the system's order, and returns how many (at most `most`).
std::size_t QueryEthernetAddresses(EthernetAddress* out, std::size_t most);

/// The machine's name; at most `size` bytes with the end mark are written. False when it cannot be had or is longer.
bool QueryHostName(char* out, std::size_t size);

/// The first IPv4 address of an interface in use, other than the loopback if there is one, as dotted text.
bool QueryHostAddress(char (&out)[16]);

/// Connects to `host` (a name or an address) and hangs up: 0 when that worked within `timeoutMs` (the look-up of a name
/// takes its own time), otherwise the system's error code, never 1. A null or empty host fails at once.
std::uint32_t ProbeConnection(const char* host, const char* port, std::uint32_t timeoutMs);

/// Writes the network form ("\\server\share\…") of a path on a network drive, with its end mark, into `size` units.
/// False, with nothing written, for any other path and when it does not fit.
bool QueryNetworkPath(const char16_t* path, char16_t* out, std::size_t size);

}  // namespace dorvutil::platform
