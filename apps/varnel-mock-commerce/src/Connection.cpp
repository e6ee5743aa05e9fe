#include "Connection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <system_error>

namespace varnel::mock {
namespace {

bool sameEnd(const sockaddr_storage& address, const std::string& text, int port) {
  char printed[INET6_ADDRSTRLEN] = {};
  if (address.ss_family == AF_INET) {
    const auto& v4 = reinterpret_cast<const sockaddr_in&>(address);
    inet_ntop(AF_INET, &v4.sin_addr, printed, sizeof printed);
    return ntohs(v4.sin_port) == port && text == printed;
  }
  if (address.ss_family == AF_INET6) {
    const auto& v6 = reinterpret_cast<const sockaddr_in6&>(address);
    inet_ntop(AF_INET6, &v6.sin6_addr, printed, sizeof printed);
    return ntohs(v6.sin6_port) == port && text == printed;
  }
  return false;
}

// The descriptor whose local and peer ends are the connection's; -1 if none.
int findSocket(const ConnectionAddresses& connection) {
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", error)) {
    std::string name = entry.path().filename().string();
    int descriptor = -1;
    auto [end, failure] = std::from_chars(name.data(), name.data() + name.size(), descriptor);
    if (failure != std::errc() || end != name.data() + name.size()) continue;
    sockaddr_storage local{};
    sockaddr_storage peer{};
    socklen_t localSize = sizeof local;
    socklen_t peerSize = sizeof peer;
    if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&local), &localSize) != 0) continue;
    if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &peerSize) != 0) continue;
    if (sameEnd(local, connection.localAddress, connection.localPort) &&
        sameEnd(peer, connection.remoteAddress, connection.remotePort)) {
      return descriptor;
    }
  }
  return -1;
}

}  // namespace

bool resetConnection(const ConnectionAddresses& connection) {
  int descriptor = findSocket(connection);
  if (descriptor < 0) return false;
  // Connecting a TCP socket to AF_UNSPEC aborts the connection with a reset
  // and leaves the descriptor open, so the server may still close it itself.
  sockaddr unspecified{};
  unspecified.sa_family = AF_UNSPEC;
  return connect(descriptor, &unspecified, sizeof unspecified) == 0;
}

bool closeConnection(const ConnectionAddresses& connection) {
  int descriptor = findSocket(connection);
  return descriptor >= 0 && shutdown(descriptor, SHUT_RDWR) == 0;
}

}  // namespace varnel::mock
