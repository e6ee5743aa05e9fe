#pragma once
// Ending a request's connection without an answer. The HTTP server does not
// hand its handlers the socket, so the socket is found among the process's
// descriptors by the connection's two addresses, and cut where it lies: the
// server's later write of the answer then fails and nothing reaches the
// client. The server's threads must block SIGPIPE (that write raises it).

#include <string>

namespace varnel::mock {

struct ConnectionAddresses {
  std::string localAddress;
  int localPort = -1;
  std::string remoteAddress;
  int remotePort = -1;
};

/// Resets the connection (the client sees "connection reset by peer").
/// False when its socket was not found.
bool resetConnection(const ConnectionAddresses& connection);

/// Closes the connection before any byte of an answer (the client sees an
/// empty reply). False when its socket was not found.
bool closeConnection(const ConnectionAddresses& connection);

}  // namespace varnel::mock
