#pragma once
// HTTP/1.1 servers that answer pipelined requests in order. The HTTP library
// reads each request of a keep-alive connection through a buffer of its own,
// so the bytes of a next request that arrived together with one were lost
// and the connection hung until its keep-alive ran out. These servers keep
// one buffer per connection for the connection's whole life and hand the
// library's request handling one request at a time from it. Everything else
// (routing, handlers, limits, timeouts) is the library's. An answer with
// "Connection: close" ends its connection. The servers use the library's
// logger slot for this: set no logger on them.

#include <httplib.h>

#include <memory>

namespace varnel::mock {

/// A plain HTTP server.
std::unique_ptr<httplib::Server> makePipelinedServer();

/// An HTTPS server over the PEM certificate (chain) and key; check
/// is_valid() before use, as for the library's own.
std::unique_ptr<httplib::SSLServer> makePipelinedTlsServer(const char* certificate, const char* key);

}  // namespace varnel::mock
