#pragma once
// A connection kept ready while the guest decides. Between the moment the
// guest starts choosing (the card) and the decision to pay, minutes can pass
// reading the terms or the contract; by then a server has closed the idle
// connection, and the checkout would first have to open another (a TCP and,
// over HTTPS, a TLS handshake: one or two round trips more on a phone, after
// the guest paid). A host whose networking can keep a connection ready
// registers a ConnectionWarmer; the renewal road holds one from the card step
// until its checkout is on the wire. With none registered nothing is kept,
// and nothing else changes.

#include <memory>
#include <string>

namespace varnel {

class ConnectionWarmer {
 public:
  /// Keeps the connection ready while it lives; destroying it lets the
  /// connection go idle like any other.
  class Hold {
   public:
    virtual ~Hold() = default;
  };

  virtual ~ConnectionWarmer() = default;

  /// Opens a connection to the origin (scheme, host and port) of `url` now,
  /// unless one is open, and keeps one open while the hold lives. Only no-op
  /// reads travel for it, never a write. Never null.
  virtual std::unique_ptr<Hold> keepWarm(const std::string& url) = 0;
};

}  // namespace varnel
