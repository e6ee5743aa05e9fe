// The varnel-mock-commerce program as a child process: its first line, a free
// port that really serves (HTTP, or HTTPS with a certificate), a clean stop on
// SIGTERM, status 2 for bad options.

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <regex>

#include "MockCommerceTestSupport.h"
#include "standalone/TemporaryDirectory.h"
#include "support/TestCertificates.h"

namespace varnel::mock::testing {
namespace {

struct Child {
  pid_t pid = -1;
  FILE* output = nullptr;
};

Child launch(std::vector<std::string> arguments) {
  int pipeEnds[2];
  if (pipe(pipeEnds) != 0) return {};
  // Ready before fork: the child of a threaded process must not allocate.
  std::vector<char*> argv{const_cast<char*>(VARNEL_MOCK_COMMERCE_PATH)};
  for (auto& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  pid_t pid = fork();
  if (pid == 0) {
    dup2(pipeEnds[1], STDOUT_FILENO);
    int null = open("/dev/null", O_WRONLY);
    dup2(null, STDERR_FILENO);
    close(pipeEnds[0]);
    execv(argv[0], argv.data());
    _exit(127);
  }
  close(pipeEnds[1]);
  return Child{pid, fdopen(pipeEnds[0], "r")};
}

int exitStatus(pid_t pid) {
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(MockCommerceProgram, PrintsItsAddressServesAndStopsOnSigterm) {
  varnel::testing::TemporaryDirectory directory;
  varnel::testing::TestCertificates authority(directory.path);
  const auto certificate = authority.issue("mock-commerce");
  for (const bool https : {false, true}) {
    SCOPED_TRACE(https ? "https" : "http");
    std::vector<std::string> arguments{"--port", "0", "--quiet"};
    if (https) {
      arguments.insert(arguments.end(), {"--tls-cert", certificate.certificate.string(), "--tls-key", certificate.key.string()});
    }
    Child child = launch(arguments);
    ASSERT_GT(child.pid, 0);
    char line[256] = {};
    ASSERT_NE(std::fgets(line, sizeof line, child.output), nullptr);
    std::smatch match;
    std::string first(line);
    const std::string scheme = https ? "https" : "http";
    ASSERT_TRUE(std::regex_match(first, match, std::regex("listening on " + scheme + "://127\\.0\\.0\\.1:([0-9]+)\n")))
        << first;
    int port = std::stoi(match[1]);
    EXPECT_GT(port, 0);

    std::unique_ptr<httplib::ClientImpl> client;
    if (https) {
      auto secure = std::make_unique<httplib::SSLClient>("127.0.0.1", port);
      secure->set_ca_cert_path(authority.caFile().c_str());
      secure->enable_server_certificate_verification(true);
      client = std::move(secure);
    } else {
      client = std::make_unique<httplib::ClientImpl>("127.0.0.1", port);
    }
    auto answer = client->Get((std::string("/profile/guests/") + kGuestKuid + "/payment-accounts").c_str(),
                              {{"Authorization", std::string("Bearer ") + kToken}});
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200);

    kill(child.pid, SIGTERM);
    EXPECT_EQ(exitStatus(child.pid), 0);
    std::fclose(child.output);
  }
}

TEST(MockCommerceProgram, BadOptionsExitWithStatusTwo) {
  const std::vector<std::vector<std::string>> rows = {
      {"--no-such-option"},
      {"--port", "70000"},
      {"--fault", "create-orders=explode"},
      {"--fault", "nowhere=reset"},
      {"--route", "no-comma"},
      {"--guest", "/no/such/guest.json"},
      {"--tls-cert", "/no/such/cert.pem", "--tls-key", "/no/such/key.pem"},
      {"--tls-cert", VARNEL_TEST_RESOURCE_DIR "/guests/sample-guest.json"},
      {"--tls-cert", VARNEL_TEST_RESOURCE_DIR "/guests/sample-guest.json", "--tls-key",
       VARNEL_TEST_RESOURCE_DIR "/guests/sample-guest.json"},
  };
  for (const auto& arguments : rows) {
    Child child = launch(arguments);
    ASSERT_GT(child.pid, 0);
    EXPECT_EQ(exitStatus(child.pid), 2) << arguments[0];
    std::fclose(child.output);
  }
}

}  // namespace
}  // namespace varnel::mock::testing

namespace varnel::mock::testing {
namespace {

TEST(MockCommerceStart, RefusesABusyPortAndAGuestWithoutToken) {
  MockCommerceOptions options;
  options.guest = sampleGuest();
  auto first = MockCommerceServer::start(options);
  ASSERT_TRUE(first.ok());
  auto busy = MockCommerceServer::start(options, first.value()->port());
  ASSERT_FALSE(busy.ok());
  EXPECT_EQ(busy.error().code, static_cast<long>(MockCommerceErrorCode::cannotListen));

  options.guest.accessToken.reset();
  auto tokenless = MockCommerceServer::start(options);
  ASSERT_FALSE(tokenless.ok());
  EXPECT_EQ(tokenless.error().code, static_cast<long>(MockCommerceErrorCode::badOption));

  first.value()->stop();
  first.value()->stop();  // stopping twice is harmless
}

}  // namespace
}  // namespace varnel::mock::testing
