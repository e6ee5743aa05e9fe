#pragma once
// The guest's side of the console: the sample guest signed in, its passes
// read from the guest file, and the stand-alone networking towards a commerce
// server: the one of --server, else a mock commerce server started in this
// process for as long as the console runs.
//
// With --server, renewals are journalled in the settings store's file (an
// interrupted checkout is finished on a later run, as `varnel renew` does);
// with the in-process server, whose orders die with the process, they are
// journalled in memory for as long as the console runs.

#include <filesystem>
#include <memory>
#include <string>

#include "varnel/standalone/network/StandaloneNetworking.h"

namespace varnel::mock {
class MockCommerceServer;
}

namespace varnel::console {

class GuestCommerce {
 public:
  /// Installs the guest and the networking; an empty `server` starts the mock
  /// server. Throws std::runtime_error (before anything is installed) for an
  /// unreadable guest file, a bad URL or a mock server that cannot start.
  GuestCommerce(const std::string& server, const std::filesystem::path& storePath);
  /// Uninstalls the networking and stops the mock server.
  ~GuestCommerce();
  GuestCommerce(const GuestCommerce&) = delete;
  GuestCommerce& operator=(const GuestCommerce&) = delete;

  /// "http://127.0.0.1:PORT (in-process mock)" or the --server URL.
  const std::string& serverDescription() const { return description_; }

 private:
  std::unique_ptr<mock::MockCommerceServer> embeddedServer_;
  standalone::StandaloneNetworking networking_;
  std::string description_;
};

}  // namespace varnel::console
