#include "dorvutil/platform/network.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netpacket/packet.h>
#include <poll.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>

namespace dorvutil::platform {
namespace {

// The interfaces of this machine as the system lists them: one entry for each address.
class Interfaces {
public:
    Interfaces() {
        if (::getifaddrs(&m_first) != 0) m_first = nullptr;
    }
    ~Interfaces() {
        if (m_first) ::freeifaddrs(m_first);
    }
    Interfaces(const Interfaces&) = delete;
    Interfaces& operator=(const Interfaces&) = delete;
    const ifaddrs* First() const { return m_first; }

private:
    ifaddrs* m_first = nullptr;
};

bool IsOfFamily(const ifaddrs& entry, int family) { return entry.ifa_addr && entry.ifa_addr->sa_family == family; }

std::int64_t NowMs() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

// Waits until a connection under way has come about or failed; its error code.
int AwaitConnection(int socket, std::int64_t deadline) {
    pollfd entry{socket, POLLOUT, 0};
    for (;;) {
        const std::int64_t left = deadline - NowMs();
        const int ready = ::poll(&entry, 1, left > 0 ? static_cast<int>(left) : 0);
        if (ready < 0 && errno == EINTR) continue;
        if (ready < 0) return errno;
        if (ready == 0) return ETIMEDOUT;
        int error = 0;
        socklen_t size = sizeof(error);
        return ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? error : errno;
    }
}

int Connect(const addrinfo& address, std::int64_t deadline) {
    const int socket =
        ::socket(address.ai_family, address.ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, address.ai_protocol);
    if (socket < 0) return errno;
    int error = ::connect(socket, address.ai_addr, address.ai_addrlen) == 0 ? 0 : errno;
    if (error == EINPROGRESS || error == EINTR) error = AwaitConnection(socket, deadline);
    ::close(socket);
    return error;
}

// 1 is the caller's word for success.
std::uint32_t Code(int error) { return static_cast<std::uint32_t>(error == EPERM ? EACCES : error); }

}  // namespace

std::size_t QueryEthernetAddresses(EthernetAddress* out, std::size_t most) {
    const Interfaces interfaces;
    std::size_t count = 0;
    for (const ifaddrs* entry = interfaces.First(); entry && count < most; entry = entry->ifa_next) {
        if (!IsOfFamily(*entry, AF_PACKET)) continue;
        sockaddr_ll link;
        std::memcpy(&link, entry->ifa_addr, sizeof(link));
        if (link.sll_hatype != ARPHRD_ETHER || link.sll_halen != sizeof(out->bytes)) continue;
        std::memcpy(out[count++].bytes, link.sll_addr, sizeof(out->bytes));
    }
    return count;
}

bool QueryHostName(char* out, std::size_t size) {
    char name[HOST_NAME_MAX + 1] = {};
    if (::gethostname(name, sizeof(name) - 1) != 0 || std::strlen(name) >= size) return false;
    std::strcpy(out, name);
    return true;
}

bool QueryHostAddress(char (&out)[16]) {
    const Interfaces interfaces;
    bool found = false;
    for (const ifaddrs* entry = interfaces.First(); entry; entry = entry->ifa_next) {
        if (!IsOfFamily(*entry, AF_INET) || (entry->ifa_flags & IFF_UP) == 0) continue;
        const bool loopback = (entry->ifa_flags & IFF_LOOPBACK) != 0;
        if (found && loopback) continue;
        sockaddr_in address;
        std::memcpy(&address, entry->ifa_addr, sizeof(address));
        found = ::inet_ntop(AF_INET, &address.sin_addr, out, sizeof(out)) != nullptr || found;
        if (found && !loopback) break;
    }
    return found;
}

std::uint32_t ProbeConnection(const char* host, const char* port, std::uint32_t timeoutMs) {
    if (!host || !*host) return Code(EDESTADDRREQ);
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int lookUp = ::getaddrinfo(host, port, &wanted, &found);
    if (lookUp != 0) return Code(lookUp == EAI_SYSTEM && errno != 0 ? errno : EHOSTUNREACH);
    const std::int64_t deadline = NowMs() + timeoutMs;
    int error = EHOSTUNREACH;
    for (const addrinfo* address = found; address && error != 0; address = address->ai_next) {
        error = Connect(*address, deadline);
    }
    ::freeaddrinfo(found);
    return Code(error);
}

}  // namespace dorvutil::platform
