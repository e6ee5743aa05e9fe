#include "Soak.h"

#include <signal.h>

#include <algorithm>
#include <atomic>
#include <set>
#include <iostream>
#include <thread>

#include <nlohmann/json.hpp>

#include "varnel/platform/Json.h"

#include "ChaosGuest.h"

namespace varnel::chaos {
namespace {

using Clock = std::chrono::steady_clock;
using Json = nlohmann::json;

/// What one order's answer told the guest, from a `varnel renew --json`
/// object or an entry of `--resume --json`'s lists.
void readOrderAnswer(RenewalRecord& record, const Json& answer, bool& confirmed, bool& refused) {
  const std::string outcome = answer.value("outcome", "");
  const std::string order = answer.contains("orderId") && answer["orderId"].is_string()
                                ? answer["orderId"].get<std::string>()
                                : std::string();
  if (outcome == "confirmed") {
    const Json& confirmation = answer.contains("confirmation") ? answer["confirmation"] : Json();
    const std::string number = confirmation.is_object() && confirmation.value("confirmationNumber", Json()).is_string()
                                   ? confirmation["confirmationNumber"].get<std::string>()
                                   : std::string();
    if (number.empty() || order.empty()) {
      record.notes.push_back("told confirmed without an order ID and a confirmation number");
      return;
    }
    record.confirmedOrders[order] = number;
    confirmed = true;
  } else if (outcome == "refused") {
    if (!order.empty()) record.refusedOrders.insert(order);
    refused = true;
  }
}

std::string lastLine(const std::string& text) {
  auto end = text.find_last_not_of('\n');
  if (end == std::string::npos) return {};
  const auto begin = text.rfind('\n', end);
  return text.substr(begin == std::string::npos ? 0 : begin + 1, end - (begin == std::string::npos ? 0 : begin + 1) + 1);
}

}  // namespace

Soak::Soak(const ChaosOptions& options, std::filesystem::path work) : options_(options), work_(std::move(work)) {
  environment_.push_back("VARNEL_REQUEST_TIMEOUT_MS=" + std::to_string(options_.requestTimeout.count()));
}

std::vector<std::string> Soak::renewArguments(const RenewalScenario& scenario, const MockServer& server,
                                              const Batch& batch) const {
  std::vector<std::string> arguments = {options_.varnel.string(), "renew", "--server", server.url(), "--guest",
                                        batch.guestFile.string(), "--defaults", batch.defaults.string(), "--json",
                                        "--pass", scenario.passId, "--card", scenario.card.reference, "--plan",
                                        scenario.monthly ? "monthly" : "full", "--accept-terms"};
  if (scenario.monthly) arguments.emplace_back("--sign-contract");
  if (scenario.card.needsSecurityCode) {
    arguments.emplace_back("--cvv");
    arguments.emplace_back(kChaosSecurityCode);
  }
  return arguments;
}

std::vector<std::string> Soak::resumeArguments(const RenewalScenario& scenario, const MockServer& server,
                                               const Batch& batch) const {
  std::vector<std::string> arguments = {options_.varnel.string(), "renew", "--resume", "--server", server.url(),
                                        "--guest", batch.guestFile.string(), "--defaults", batch.defaults.string(),
                                        "--json"};
  if (scenario.card.needsSecurityCode) {
    arguments.emplace_back("--cvv");
    arguments.emplace_back(kChaosSecurityCode);
  }
  return arguments;
}

ChildRun Soak::runVarnel(const std::vector<std::string>& arguments,
                         std::optional<std::chrono::milliseconds> killAfter, const Batch& batch) {
  return runChild(arguments, environment_, ChildLimits{options_.childTimeout, killAfter}, batch.directory);
}

bool Soak::account(RenewalRecord& record, const ChildRun& run, bool resume, bool& finishedNothing) {
  finishedNothing = false;
  const std::string what = resume ? "varnel renew --resume" : "varnel renew";
  if (const std::string report = sanitizerReport(run.err); !report.empty()) {
    ++record.crashes;
    record.notes.push_back(what + " crashed: " + report);
    return false;
  }
  // Killed after it had printed its whole answer: the guest saw that answer,
  // whatever the exit status would have been.
  const bool answeredBeforeKill =
      run.end == ChildRun::End::killed && parseJson(run.out).value.value_or(Json()).is_object();
  switch (run.end) {
    case ChildRun::End::killed:
      if (!answeredBeforeKill) return false;
      break;
    case ChildRun::End::timedOut:
      ++record.hangs;
      record.notes.push_back(what + " did not exit within " +
                             std::to_string(options_.childTimeout.count() / 1000) + " s");
      return false;
    case ChildRun::End::signaled:
      ++record.crashes;
      record.notes.push_back(what + " died of signal " + std::to_string(run.signal) + ": " + lastLine(run.err));
      return false;
    case ChildRun::End::exited: break;
  }
  if (run.status == 2 && !answeredBeforeKill) {
    // Told "bad input" (nothing sent for the renewal); the next run tries again.
    ++record.badInput;
    record.notes.push_back(what + " exited 2: " + lastLine(run.err));
    return false;
  }
  if (!answeredBeforeKill && run.status != 0 && run.status != 1 && run.status != 3) {
    ++record.crashes;
    record.notes.push_back(what + " exited " + std::to_string(run.status) + ": " + lastLine(run.err));
    return false;
  }
  const Json answer = parseJson(run.out).value.value_or(Json());
  bool confirmed = false;
  bool refused = false;
  if (!answer.is_object()) {
    record.notes.push_back(what + " exited " + std::to_string(run.status) + " without a JSON answer: " +
                           lastLine(run.err));
  } else if (resume) {
    std::size_t entries = 0;
    for (const char* list : {"finished", "unfinished"}) {
      if (!answer.contains(list) || !answer[list].is_array()) continue;
      for (const Json& entry : answer[list]) {
        ++entries;
        readOrderAnswer(record, entry, confirmed, refused);
      }
    }
    finishedNothing = entries == 0;
  } else {
    readOrderAnswer(record, answer, confirmed, refused);
    if (answer.contains("error") && answer["error"].is_object()) {
      const Json& error = answer["error"];
      record.lastReason = error.value("case", Json()).is_string() ? error["case"].get<std::string>() + ": " : "";
      record.lastReason += error.value("reason", Json()).is_string() ? error["reason"].get<std::string>() : "";
    }
  }
  if (!answeredBeforeKill && confirmed != (run.status == 0) && !finishedNothing) {
    record.notes.push_back(what + " exited " + std::to_string(run.status) + " but its answer says otherwise");
  }
  if (finishedNothing) return false;
  if (confirmed) record.told = Told::confirmed;
  else if (refused || (run.status == 1 && !answeredBeforeKill)) record.told = Told::refused;
  else {
    record.told = Told::unknown;
    record.toldUnknown = true;
  }
  return record.told == Told::confirmed || record.told == Told::refused;
}

RenewalRecord Soak::renew(const RenewalScenario& scenario, MockServer& server, const Batch& batch, Pace& pace) {
  const auto started = Clock::now();
  RenewalRecord record;
  record.index = scenario.index;
  record.passId = scenario.passId;
  record.faultKind = scenario.fault ? scenario.fault->kind : "none";

  if (scenario.fault && !server.addFault(scenario.fault->endpoint, scenario.fault->written)) {
    record.notes.push_back("the mock server did not take the fault " + scenario.fault->written);
  }
  std::optional<std::chrono::milliseconds> killAfter;
  if (scenario.killAt) killAfter = std::chrono::milliseconds(static_cast<long long>(*scenario.killAt * pace.usualRunMs));
  const ChildRun first = runVarnel(renewArguments(scenario, server, batch), killAfter, batch);
  const auto firstEnded = Clock::now();
  // A run that ended before its kill instant was not killed.
  record.killed = first.end == ChildRun::End::killed;
  if (scenario.fault) server.clearFaults();
  if (!scenario.fault && !scenario.killAt && first.end == ChildRun::End::exited && first.status != 2) {
    // A running mean over the last few dozen unfaulted runs.
    pace.usualRuns = std::min(pace.usualRuns + 1, 32);
    pace.usualRunMs += (static_cast<double>(first.elapsed.count()) - pace.usualRunMs) / pace.usualRuns;
  }
  bool finishedNothing = false;
  bool settled = account(record, first, false, finishedNothing);
  bool renewAgain = false;
  for (std::size_t attempt = 0; !settled && attempt < scenario.resumeRuns.size(); ++attempt) {
    const bool resume = scenario.resumeRuns[attempt] && !renewAgain;
    const ChildRun next = runVarnel(
        resume ? resumeArguments(scenario, server, batch) : renewArguments(scenario, server, batch), std::nullopt,
        batch);
    settled = account(record, next, resume, finishedNothing);
    ++record.runs;
    // Nothing was pending (the killed run stopped before its checkout was
    // written down): the guest renews the pass again.
    renewAgain = renewAgain || finishedNothing;
  }
  if (!settled && record.told == Told::nothing) {
    record.notes.push_back("no run told the guest anything");
  }
  // A delayed request may still be acted on by the server after its client
  // gave up; wait it out so that its order is counted with this renewal.
  if (scenario.fault && scenario.fault->delay.count() > 0) {
    std::this_thread::sleep_until(firstEnded + scenario.fault->delay + std::chrono::milliseconds(100));
  }
  record.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - started);
  return record;
}

Soak::BatchResult Soak::runBatch(int first, int count, const std::vector<RenewalScenario>& scenarios,
                                 Clock::time_point deadline) {
  BatchResult result;
  const auto directory = work_ / ("batch-" + std::to_string(first / options_.batchSize));
  std::filesystem::create_directories(directory);
  const Batch batch{directory / "guest.json", directory / "defaults.sqlite3", directory};
  std::string problem = writeChaosGuest(batch.guestFile, first, count);
  std::unique_ptr<MockServer> server;
  if (problem.empty()) server = MockServer::start(options_.mockCommerce, batch.guestFile, directory / "server.err", problem);
  if (!server) {
    result.problems.push_back(problem);
    result.serverStarted = false;
    return result;
  }
  Pace pace;
  std::set<std::string> known;
  for (int index = first; index < first + count; ++index) {
    if (Clock::now() >= deadline) {
      result.incomplete = true;
      break;
    }
    const RenewalScenario& scenario = scenarios[static_cast<std::size_t>(index)];
    RenewalRecord record = renew(scenario, *server, batch, pace);
    if (const auto charges = server->charges()) {
      for (const auto& [order, charged] : *charges) {
        if (known.insert(order).second) record.orders.insert(order);
      }
    }
    if (options_.verbose) {
      static const char* told[] = {"nothing", "confirmed", "refused", "unknown"};
      std::lock_guard lock(verboseMutex_);
      std::cerr << describe(scenario) << " -> " << told[static_cast<int>(record.told)]
                << (record.toldUnknown ? " (after unknown)" : "") << ", " << record.runs << " run(s), "
                << record.elapsed.count() << " ms"
                << (record.told == Told::refused ? " [" + record.lastReason + "]" : std::string()) << '\n';
    }
    result.records.push_back(std::move(record));
    if (!server->alive()) break;
  }
  result.charges = server->charges();
  if (!result.charges) result.problems.push_back("the mock server did not answer its charges");
  if (const std::string crash = server->stop(); !crash.empty()) {
    result.serverCrashed = true;
    result.problems.push_back("the mock commerce server crashed: " + crash);
  }
  return result;
}

bool Soak::run(Figures& figures, std::vector<std::string>& problems) {
  const auto start = Clock::now();
  const auto deadline = start + options_.deadline;
  const auto scenarios = drawScenarios(options_.seed, options_.renewals, options_.kills, options_.requestTimeout);
  Ledger ledger(options_.seed);
  std::mutex ledgerMutex;
  std::atomic<int> nextFirst{0};
  std::atomic<bool> started{true};
  auto worker = [&] {
    while (started) {
      const int first = nextFirst.fetch_add(options_.batchSize);
      if (first >= options_.renewals) return;
      if (Clock::now() >= deadline) {
        std::lock_guard lock(ledgerMutex);
        ledger.figures().incomplete = true;
        return;
      }
      BatchResult result = runBatch(first, std::min(options_.batchSize, options_.renewals - first), scenarios, deadline);
      std::lock_guard lock(ledgerMutex);
      problems.insert(problems.end(), result.problems.begin(), result.problems.end());
      if (!result.serverStarted) {
        started = false;
        return;
      }
      if (result.incomplete) ledger.figures().incomplete = true;
      ledger.settleBatch(result.records, result.charges.value_or(std::map<std::string, int>{}), problems);
      if (result.serverCrashed) ledger.serverCrashed();
    }
  };
  std::vector<std::thread> workers;
  for (int i = 1; i < options_.parallel; ++i) workers.emplace_back(worker);
  worker();
  for (auto& thread : workers) thread.join();
  figures = ledger.figures();
  figures.seconds = std::chrono::duration<double>(Clock::now() - start).count();
  return started;
}

}  // namespace varnel::chaos
