// `varnel renew` processes against one mock commerce server: renewals of one
// pass raced from one store and from several are charged once, and a renewal
// killed while its checkout is on the wire is finished by --resume with no
// second charge.

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <string_view>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "mockcommerce/MockCommerceTestSupport.h"
#include "varnel/mock/MockFault.h"
#include "varnel/mock/MockCommerceServer.h"

namespace varnel::testing {
namespace {

namespace fs = std::filesystem;

class RenewalRecoveryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    serveAfresh();
    directory = fs::temp_directory_path() / ("varnel-recovery-" + std::to_string(getpid()));
    fs::create_directories(directory);
  }
  void TearDown() override {
    server->stop();
    fs::remove_all(directory);
  }
  void serveAfresh() {
    if (server) server->stop();
    auto started = mock::MockCommerceServer::start(
        {.guest = mock::testing::sampleGuest(), .faults = {}, .routes = {}, .routeFaults = {}, .requestLog = {}});
    ASSERT_TRUE(started.ok());
    server = std::move(started.value());
  }

  /// Starts `varnel renew ARGUMENTS --server ...` with the store `store`;
  /// its output is discarded, its errors kept for errorsOf.
  pid_t spawn(const std::string& store, const std::vector<std::string>& arguments) {
    // posix_spawn: a child forked from this many-threaded test must not
    // allocate before exec (another thread may hold the allocator's lock).
    std::vector<std::string> words{VARNEL_CLI_PATH, "renew", "--server", server->baseUrl(),
                                   "--defaults", (directory / store).string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environment{std::string("VARNEL_RESOURCE_DIR=") + VARNEL_TEST_RESOURCE_DIR};
    for (char** variable = environ; *variable; ++variable) {
      if (!std::string_view(*variable).starts_with("VARNEL_RESOURCE_DIR=")) environment.emplace_back(*variable);
    }
    std::vector<char*> argv;
    for (auto& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    std::vector<char*> envp;
    for (auto& entry : environment) envp.push_back(entry.data());
    envp.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    const fs::path errors = directory / ("child-" + std::to_string(errorFiles.size()) + ".err");
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t child = -1;
    EXPECT_EQ(posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), envp.data()), 0);
    posix_spawn_file_actions_destroy(&actions);
    errorFiles[child] = errors;
    return child;
  }
  /// What `child` wrote to its standard error.
  std::string errorsOf(pid_t child) const {
    std::ifstream file(errorFiles.at(child));
    return std::string(std::istreambuf_iterator<char>(file), {});
  }
  static int exitStatus(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  int totalCharges() const {
    int total = 0;
    for (const auto& [order, charges] : server->charges()) total += charges;
    return total;
  }
  void slowCheckouts(const std::string& kind) {
    auto fault = mock::Fault::parse(kind);
    ASSERT_TRUE(fault.ok());
    ASSERT_FALSE(server->setFault({"create-order-purchase", fault.value()}));
  }

  std::unique_ptr<mock::MockCommerceServer> server;
  fs::path directory;
  std::map<pid_t, fs::path> errorFiles;
};

TEST_F(RenewalRecoveryTest, RacedRenewalsOfOnePassChargeOnceFromOneStoreOrFromMany) {
  for (const bool shared : {true, false}) {
    SCOPED_TRACE(shared ? "one store" : "a store each");
    serveAfresh();
    slowCheckouts("delay:300");
    std::vector<pid_t> renewals;
    for (int i = 0; i < 3; ++i) {
      renewals.push_back(spawn(shared ? "shared.sqlite3" : "own-" + std::to_string(i) + ".sqlite3",
                               {"--pass", "AP-100201", "--accept-terms"}));
    }
    int renewed = 0;
    for (pid_t child : renewals) {
      const int status = exitStatus(child);
      EXPECT_TRUE(status == 0 || status == 1) << status << ": " << errorsOf(child);
      renewed += status == 0;
    }
    EXPECT_EQ(renewed, 1);
    EXPECT_EQ(totalCharges(), 1);
  }
}

TEST_F(RenewalRecoveryTest, ARenewalKilledDuringItsCheckoutIsFinishedByResumeWithoutASecondCharge) {
  slowCheckouts("delay:1500*1");
  const pid_t renewal = spawn("store.sqlite3", {"--accept-terms"});
  // Kill it once its checkout is on the wire: the journal holds it by then.
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (server->journal().empty() || server->journal().back()["endpoint"] != "create-order-purchase") {
    ASSERT_LT(std::chrono::steady_clock::now(), giveUp) << "the checkout never left";
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  kill(renewal, SIGKILL);
  EXPECT_EQ(exitStatus(renewal), 128 + SIGKILL);
  while (totalCharges() == 0) {
    ASSERT_LT(std::chrono::steady_clock::now(), giveUp) << "the checkout was never charged";
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }

  EXPECT_EQ(exitStatus(spawn("store.sqlite3", {"--resume"})), 0);
  EXPECT_EQ(totalCharges(), 1);
  EXPECT_EQ(exitStatus(spawn("store.sqlite3", {"--resume"})), 0) << "nothing left to finish";
  EXPECT_EQ(totalCharges(), 1);
}

}  // namespace
}  // namespace varnel::testing
