// The varnel tool end to end: exit status and what it prints, for good and
// bad input. Runs the built binary against the real resources.

#include <sys/stat.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "standalone/TemporaryDirectory.h"
#include "varnel/platform/Json.h"

namespace {

struct Outcome {
  int status;
  std::string output;  // stdout and stderr together
};

// `arguments` may end in "<<< TEXT": TEXT (without single quotes) becomes standard input.
// Standard error joins the output unless `stderrTo` sends it elsewhere.
Outcome varnel(const std::string& arguments, const std::string& stderrTo = "&1") {
  std::string args = arguments, input;
  if (const auto at = args.find(" <<< "); at != std::string::npos) {
    input = args.substr(at + 5);
    args.erase(at);
  }
  const std::string command = "printf '%s' " + (input.empty() ? std::string("''") : input) +
                              " | VARNEL_RESOURCE_DIR=" + VARNEL_TEST_RESOURCE_DIR + " " + VARNEL_CLI_PATH + " " +
                              args + " 2>" + stderrTo;
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return {-1, ""};
  Outcome run{0, ""};
  std::array<char, 4096> buffer{};
  while (std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe)) run.output.append(buffer.data(), n);
  const int raw = pclose(pipe);
  run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
  return run;
}

std::string sample(const std::string& name) { return std::string(VARNEL_TEST_RESOURCE_DIR) + "/samples/" + name; }

TEST(VarnelTool, AnswersGoodInputWithItsResult) {
  struct Row {
    std::string arguments;
    std::string expected;
  };
  const Row rows[] = {
      {"errors explain " + sample("booking-error.json") + " --service booking --park 2", "PAYMENT_DECLINED"},
      {"errors explain - --service evas --park 1 <<< '{\"errorCode\":\"503\"}'", "ServiceErrorNoRetry"},
      {"errors explain - --service booking --park 2 <<< '{}'", "no commerce error"},
      {"errors list --park 1", "NonCAResident"},
      {"cards type 4111111111111111", "KTVRCreditCardType_Visa"},
      {"renewals", "eligibleForRenewNow"},
      {"entitlements --mock", "VNLEntitlement"},
      {"answers parse --kind order " + sample("create-order.json"), "Pass Name: Sunset Premier Pass"},
      {"requirements --local com.orvane.EvasEnabled=false", "EvasOffState"},
      // With --json, the output is one JSON document.
      {"renewals --json", ""},
      {"entitlements --json", ""},
      {"errors list --json", ""},
      {"requirements --json", ""},
      {"errors explain - --service evas --park 2 --json <<< '{}'", ""},
  };
  for (const auto& row : rows) {
    const Outcome run = varnel(row.arguments);
    EXPECT_EQ(run.status, 0) << row.arguments << "\n" << run.output;
    EXPECT_NE(run.output.find(row.expected), std::string::npos) << row.arguments << "\n" << run.output;
    if (row.arguments.find("--json") != std::string::npos) {
      EXPECT_FALSE(varnel::Json::parse(run.output, nullptr, false).is_discarded()) << row.arguments << "\n" << run.output;
    }
  }
}

TEST(VarnelTool, RefusesBadInputWithStatusTwoBeforeTouchingTheStore) {
  const varnel::testing::TemporaryDirectory scratch;
  const auto garbage = scratch.write("garbage.json", "\x01{ not json").string();
  const auto deepGuest = scratch.write("deep.json", "{\"entitlements\": [], \"theaterTickets\": " +
                                                         std::string(100'000, '[') + std::string(100'000, ']') + "}");
  const auto twiceGuest = scratch.write("twice.json", R"({"entitlements": [], "entitlements": []})").string();
  const auto fifo = (scratch.path / "fifo").string();
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const auto huge = scratch.write("huge.json", "{}");
  std::filesystem::resize_file(huge, 10'000'000'000);  // sparse
  const std::string deepJson = "'" + std::string(200, '[') + std::string(200, ']') + "'";
  const auto store = scratch.path / "store.sqlite3";
  setenv("VARNEL_DEFAULTS", store.c_str(), 1);

  struct Row {
    std::string arguments;
    std::string expected;  // a fragment of the message
  };
  const Row rows[] = {
      {"errors explain /nonexistent/body.json --service booking --park 2", "No such file"},
      {"errors explain " + garbage + " --service booking --park 2", "not valid JSON"},
      {"errors explain /dev/zero --service booking --park 2", "not a regular file"},
      {"errors explain " + fifo + " --service booking --park 2", "not a regular file"},
      {"answers parse --kind order " + huge.string(), "larger than 16 MiB"},
      {"answers parse --kind order - <<< '[1, 2]'", "not an object"},
      {"errors explain '' --service booking --park 2", "empty value"},
      {"errors explain - --service nowhere --park 2 <<< '{}'", "--service"},
      {"errors explain - --service booking --park east <<< '{}'", "accepted values: 1 (west), 2 (east), 7"},
      {"errors list --park 9", "accepted values: 1 (west), 2 (east), 7"},
      {"renewals --guest " + garbage, "not valid JSON"},
      {"renewals --guest " + deepGuest.string(), "nested deeper than 128 levels"},
      {"renewals --guest " + twiceGuest, "the key \"entitlements\" appears twice"},
      {"entitlements --guest ''", "empty value"},
      {"settings --defaults " + garbage + " list", "not a user-defaults store"},
      {"settings --defaults '' list", "empty value"},
      {"settings set '' true", "empty value"},
      {"settings set key " + deepJson + " --type json", "nested deeper than 128 levels"},
      {"settings preset nonsense", "unknown configuration"},
      {"requirements --local nonsense", "KEY=true|false"},
      {"requirements --remote /nonexistent.json", "cannot read the remote configuration"},
      {"cards type ''", "empty value"},
      {"renew --pass ''", "--pass: an empty value"},
      {"renew --card '' --accept-terms", "--card: an empty value"},
      {"order create --pass ''", "--pass: an empty value"},
      {"order create --pass AP-NOPE", "the guest has no pass \"AP-NOPE\""},
      {"renew --pass AP-NOPE --accept-terms", "the guest has no pass \"AP-NOPE\""},
      {"renew --pass 'AP 1' --accept-terms", "is not an identifier"},
      {"accounts --defaults ''", "--defaults: an empty value"},
      {"accounts --guest /dev/zero", "not a regular file"},
      {"renew --cvv 12a --accept-terms", "3 or 4 digits"},
      {"renew --cvv 12345 --accept-terms", "3 or 4 digits"},
      {"renew --server ftp://127.0.0.1:1 --accept-terms", "not http or https"},
      {"renew --server 127.0.0.1:8080", "not a commerce server URL"},
      {"renew --server http://127.0.0.1:99999", "not a commerce server URL"},
      {"renew --server 'http://127.0.0.1:1/?a=b'", "query or fragment"},
      {"accounts --server http://" + std::string(300, 'x') + ":0", "xxxxxxxx...\" is not"},
      {"renew --park 9", "accepted values: 1 (west), 2 (east)"},
      {"accounts --park 7", "accepted values: 1 (west), 2 (east)\n"},
      {"no-such-command", "subcommand"},
  };
  for (const auto& row : rows) {
    const Outcome run = varnel(row.arguments);
    EXPECT_EQ(run.status, 2) << row.arguments << "\n" << run.output;
    EXPECT_NE(run.output.find(row.expected), std::string::npos) << row.arguments << "\n" << run.output;
    EXPECT_FALSE(std::filesystem::exists(store)) << row.arguments << ": a usage error wrote the store";
  }
  EXPECT_EQ(varnel("renew --cvv 98x1").output.find("98x1"), std::string::npos) << "a security code is never echoed";
  // A scheme in capitals is a URL all the same: the command gets as far as the (absent) server.
  EXPECT_EQ(varnel("accounts --server HTTP://127.0.0.1:1").status, 1);
  unsetenv("VARNEL_DEFAULTS");
}

// The commerce commands against a mock commerce service started in process,
// with a scratch settings store.
class CommerceCommands : public ::testing::Test {
 protected:
  void SetUp() override {
    store = std::filesystem::temp_directory_path() /
            ("varnel-cli-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()) + ".sqlite3");
    std::filesystem::remove(store);
  }
  void TearDown() override { std::filesystem::remove(store); }

  Outcome run(const std::string& arguments, const std::string& stderrTo = "&1") const {
    return varnel(arguments + " --defaults " + store.string(), stderrTo);
  }

  std::filesystem::path store;
};

TEST_F(CommerceCommands, RenewAndOrderCreateTellHowTheyEnded) {
  struct Row {
    std::string arguments;
    int status;
    // Texts of the output; with --json, the members of the one object on stdout.
    std::vector<std::string> expected;
  };
  const Row rows[] = {
      {"renew --accept-terms", 0, {"Renewed.", "Confirmation number: ", "Amount charged:"}},
      {"renew --plan monthly --accept-terms --sign-contract --cvv 123", 0,
       {"Monthly-payment contract:", "Confirmation number: "}},
      {"renew --card CARD-REF-0003 --accept-terms", 1,
       {"stopped at step \"checkout\": PAYMENT_DECLINED", "Your card could not be processed"}},
      {"renew --plan monthly --accept-terms", 1, {"stopped at step \"contract\": ContractNotSigned"}},
      {"renew", 1, {"stopped at step \"checks\": NoTermsAndConditions"}},
      {"renew --pass AP-100205 --accept-terms", 2, {"AP-100205"}},
      {"renew --pass TK-300101 --accept-terms", 2, {"TK-300101"}},
      {"renew --card CARD-REF-0999 --accept-terms", 2, {"CARD-REF-0999"}},
      {"renew --accept-terms --json", 0, {"order", "confirmation"}},
      {"renew --card CARD-REF-0003 --accept-terms --json", 1, {"step", "error"}},
      {"renew --json", 1, {"step", "error"}},
      {"order create --pass AP-100201", 0, {"709"}},
      {"order create --pass AP-100201 --plan monthly", 0, {"49.75"}},
      {"order create --pass AP-999999", 2, {"AP-999999"}},
      {"order create", 2, {"--pass"}},
      {"order create --pass AP-100201 --json", 0, {"orderId"}},
  };
  for (const auto& row : rows) {
    const bool json = row.arguments.ends_with("--json");
    const Outcome outcome = run(row.arguments, json ? "/dev/null" : "&1");
    EXPECT_EQ(outcome.status, row.status) << row.arguments << "\n" << outcome.output;
    const auto document = varnel::Json::parse(outcome.output, nullptr, false);
    if (json) {
      ASSERT_TRUE(document.is_object()) << row.arguments << "\n" << outcome.output;
    }
    for (const auto& text : row.expected) {
      EXPECT_TRUE(json ? document.contains(text) : outcome.output.find(text) != std::string::npos)
          << row.arguments << ": no \"" << text << "\"\n" << outcome.output;
    }
  }
  const auto declined = varnel::Json::parse(run("renew --card CARD-REF-0003 --accept-terms --json", "/dev/null").output,
                                            nullptr, false);
  EXPECT_EQ(declined.value("step", ""), "checkout");
  // A confirmation number follows its label.
  const Outcome renewed = run("renew --accept-terms");
  const auto at = renewed.output.find("Confirmation number: ");
  ASSERT_NE(at, std::string::npos);
  EXPECT_NE(renewed.output.at(at + 21), '\n') << renewed.output;
}

TEST_F(CommerceCommands, CardNumbersAreShownMaskedOnly) {
  std::ifstream file(std::string(VARNEL_TEST_RESOURCE_DIR) + "/guests/sample-guest.json");
  const auto guest = varnel::Json::parse(file, nullptr, false);
  ASSERT_TRUE(guest.contains("paymentAccounts"));
  for (const char* arguments : {"accounts", "accounts --json", "renew --accept-terms --cvv 4242",
                                "renew --card CARD-REF-0003 --accept-terms --json"}) {
    const Outcome shown = run(arguments);
    EXPECT_EQ(shown.output.find("4242"), std::string::npos) << arguments << ": the security code is shown";
    for (const auto& account : guest["paymentAccounts"]) {
      const std::string number = account["card"]["cardNumber"];
      EXPECT_EQ(shown.output.find(number), std::string::npos) << arguments << ": " << number << " shown in full";
    }
  }
  const Outcome listed = run("accounts");
  EXPECT_EQ(listed.status, 0) << listed.output;
  for (const char* reference : {"CARD-REF-0001", "CARD-REF-0002", "CARD-REF-0003"}) {
    EXPECT_NE(listed.output.find(reference), std::string::npos) << listed.output;
  }
  EXPECT_NE(listed.output.find("1111"), std::string::npos) << "the last digits help the guest choose\n"
                                                           << listed.output;
}

TEST_F(CommerceCommands, AStoreThatCannotBeUsedIsNamedAndAnUnreadableValueCanBeRemoved) {
  ASSERT_EQ(run("settings set kept true").status, 0);
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(store.c_str(), &other), SQLITE_OK);
  const std::string poison = "INSERT INTO defaults (key, value) VALUES ('deep', '" + std::string(100'000, '[') +
                             std::string(100'000, ']') + "')";
  ASSERT_EQ(sqlite3_exec(other, poison.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
  struct Row {
    std::string arguments;
    int status;
    std::string expected;
  };
  const std::string unreadable = "\"deep\" in " + store.string() + " cannot be read (nested deeper than 128 levels); " +
                                 "`varnel settings unset deep` removes it";
  const Row rows[] = {
      {"settings list", 0, unreadable},
      {"settings get deep", 2, unreadable},
      {"accounts", 0, "CARD-REF-0001"},
      {"settings unset deep", 0, ""},
      {"settings list", 0, "kept"},
  };
  for (const auto& row : rows) {
    const Outcome outcome = run(row.arguments);
    EXPECT_EQ(outcome.status, row.status) << row.arguments << "\n" << outcome.output;
    EXPECT_NE(outcome.output.find(row.expected), std::string::npos) << row.arguments << "\n" << outcome.output;
  }
  EXPECT_EQ(run("settings list").output.find("deep"), std::string::npos) << "unset removed it";

  // Another process holds the store: the commands wait a few seconds, then stop before anything is sent.
  ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  for (const char* arguments : {"renew --accept-terms", "settings set kept false"}) {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 2) << arguments << "\n" << outcome.output;
    EXPECT_NE(outcome.output.find(store.string() + " is locked by another process"), std::string::npos)
        << arguments << "\n" << outcome.output;
    EXPECT_EQ(outcome.output.find("Renewed."), std::string::npos) << outcome.output;
  }
  sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
  sqlite3_close(other);
}

}  // namespace
