// The varnel tool end to end: exit status and what it prints, for good and
// bad input. Runs the built binary against the real resources.

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "varnel/platform/Json.h"

namespace {

struct Outcome {
  int status;
  std::string output;  // stdout and stderr together
};

// `arguments` may end in "<<< TEXT": TEXT (without single quotes) becomes standard input.
Outcome varnel(const std::string& arguments) {
  std::string args = arguments, input;
  if (const auto at = args.find(" <<< "); at != std::string::npos) {
    input = args.substr(at + 5);
    args.erase(at);
  }
  const std::string command = "printf '%s' " + (input.empty() ? std::string("''") : input) +
                              " | VARNEL_RESOURCE_DIR=" + VARNEL_TEST_RESOURCE_DIR + " " + VARNEL_CLI_PATH + " " +
                              args + " 2>&1";
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
  };
  for (const auto& row : rows) {
    const Outcome run = varnel(row.arguments);
    EXPECT_EQ(run.status, 0) << row.arguments << "\n" << run.output;
    EXPECT_NE(run.output.find(row.expected), std::string::npos) << row.arguments << "\n" << run.output;
  }
}

TEST(VarnelTool, JsonOutputIsOneDocument) {
  for (const char* arguments : {"renewals --json", "entitlements --json", "errors list --json", "requirements --json",
                                "errors explain - --service evas --park 2 --json <<< '{}'"}) {
    const Outcome run = varnel(arguments);
    EXPECT_EQ(run.status, 0) << arguments;
    EXPECT_FALSE(varnel::Json::parse(run.output, nullptr, false).is_discarded()) << arguments << "\n" << run.output;
  }
}

TEST(VarnelTool, RefusesBadInputWithStatusTwo) {
  const auto garbage = std::filesystem::temp_directory_path() / "varnel-cli-garbage.json";
  std::ofstream(garbage) << "\x01{ not json";
  const std::string rows[] = {
      "errors explain /nonexistent/body.json --service booking --park 2",
      "errors explain " + garbage.string() + " --service booking --park 2",
      "errors explain - --service nowhere --park 2 <<< '{}'",
      "errors explain - --service booking --park east <<< '{}'",
      "renewals --guest " + garbage.string(),
      "answers parse --kind order - <<< '[1, 2]'",
      "settings --defaults " + garbage.string() + " list",
      "settings --defaults /tmp/varnel-cli-unused.sqlite3 preset apRenewals",
      "requirements --local nonsense",
      "requirements --remote /nonexistent.json",
      "no-such-command",
  };
  for (const auto& arguments : rows) {
    const Outcome run = varnel(arguments);
    EXPECT_EQ(run.status, 2) << arguments << "\n" << run.output;
    EXPECT_FALSE(run.output.empty()) << arguments;
  }
  EXPECT_FALSE(std::filesystem::exists("/tmp/varnel-cli-unused.sqlite3"));
  std::filesystem::remove(garbage);
}

}  // namespace
