// varnel-mock-commerce: the commerce service's stand-in for testers and tests.
// Prints "listening on http://127.0.0.1:PORT" (https:// with --tls-cert and
// --tls-key) once it accepts connections,
// logs one line per request on stderr, and stops on SIGINT or SIGTERM.

#include <CLI/CLI.hpp>
#include <signal.h>

#include <iostream>
#include <mutex>
#include <string>
#include <vector>

#include "varnel/host/ResourceBundle.h"
#include "varnel/mock/MockCommerceServer.h"

namespace {

std::string reasonOf(const varnel::Error& error) {
  if (error.domain == varnel::standalone::kGuestDataErrorDomain) return varnel::standalone::describeGuestDataError(error);
  return error.userInfo.is_object() ? error.userInfo.value("reason", error.domain) : error.domain;
}

int usage(const std::string& message) {
  std::cerr << "varnel-mock-commerce: " << message << "\nRun with --help for more information.\n";
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace varnel;
  int port = 0;
  std::string guestFile = (varnelResourceDirectory() / "guests" / "sample-guest.json").string();
  std::vector<std::string> faults;
  std::vector<std::string> routes;
  std::vector<std::string> routeFaults;
  std::string tlsCertificate;
  std::string tlsKey;
  bool quiet = false;

  CLI::App app{"varnel-mock-commerce: the commerce service's stand-in, serving one guest file's household on 127.0.0.1"};
  app.add_option("--port", port, "Port to listen on; 0 picks a free one")->check(CLI::Range(0, 65535));
  app.add_option("--guest", guestFile, "Guest data file of the household served")->capture_default_str();
  app.add_option("--fault", faults, "KEY=KIND[*N]: a scripted fault of an endpoint (repeatable)");
  app.add_option("--route", routes, "NAME=ENDPOINT,HEADER: the routing service's answer for NAME (repeatable)");
  app.add_option("--route-fault", routeFaults,
                 "VALUE=KIND[*N]: the fault of requests whose X-Orvane-Internal-Mock-AP header is VALUE (repeatable)");
  auto* certificateOption =
      app.add_option("--tls-cert", tlsCertificate, "PEM certificate (chain) of the server: serve HTTPS")->check(CLI::ExistingFile);
  auto* keyOption = app.add_option("--tls-key", tlsKey, "PEM private key of --tls-cert")->check(CLI::ExistingFile);
  certificateOption->needs(keyOption);
  keyOption->needs(certificateOption);
  app.add_flag("--quiet", quiet, "Log no request lines");
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    app.exit(e);
    return 2;
  }

  try {
    mock::MockCommerceOptions options;
    auto guest = standalone::readGuestDataFile(guestFile);
    if (!guest) return usage(reasonOf(guest.error()));
    options.guest = std::move(guest.value());
    if (!tlsCertificate.empty()) options.tls = mock::TlsFiles{tlsCertificate, tlsKey};
    for (const auto& text : faults) {
      auto fault = mock::EndpointFault::parse(text);
      if (!fault) return usage(reasonOf(fault.error()));
      options.faults.push_back(std::move(fault.value()));
    }
    for (const auto& text : routes) {
      auto route = mock::Route::parse(text);
      if (!route) return usage(reasonOf(route.error()));
      options.routes.push_back(std::move(route.value()));
    }
    for (const auto& text : routeFaults) {
      auto fault = mock::RouteFault::parse(text);
      if (!fault) return usage(reasonOf(fault.error()));
      options.routeFaults.push_back(std::move(fault.value()));
    }
    static std::mutex logMutex;
    if (!quiet) {
      options.requestLog = [](const std::string& line) {
        std::lock_guard lock(logMutex);
        std::cerr << line << '\n';
      };
    }

    // Blocked before the server's threads exist, so that only sigwait sees them.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    auto server = mock::MockCommerceServer::start(std::move(options), port);
    if (!server) {
      std::cerr << "varnel-mock-commerce: " << reasonOf(server.error()) << '\n';
      return server.error().code == static_cast<long>(mock::MockCommerceErrorCode::badOption) ? 2 : 1;
    }
    std::cout << "listening on " << server.value()->baseUrl() << std::endl;

    int received = 0;
    sigwait(&stopSignals, &received);
    server.value()->stop();
    return 0;
  } catch (const std::exception& e) {
    std::cerr << "varnel-mock-commerce: internal error: " << e.what() << '\n';
    return 1;
  }
}
