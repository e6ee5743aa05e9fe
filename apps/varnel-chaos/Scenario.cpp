#include "Scenario.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <random>

namespace varnel::chaos {
namespace {

using Random = std::mt19937_64;

template <typename T>
const T& pick(Random& random, const std::vector<T>& choices) {
  return choices[std::uniform_int_distribution<std::size_t>(0, choices.size() - 1)(random)];
}

bool chance(Random& random, double probability) { return std::bernoulli_distribution(probability)(random); }

int between(Random& random, int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }

FaultChoice drawFault(Random& random, std::chrono::milliseconds requestTimeout) {
  FaultChoice fault;
  // The checkout, where money moves, gets twice the share of each other endpoint.
  static const std::vector<std::string> endpoints = {"get-payment-accounts", "create-orders", "create-contract",
                                                     "create-order-purchase", "create-order-purchase"};
  fault.endpoint = pick(random, endpoints);
  fault.kind = std::string(kFaultKinds[std::uniform_int_distribution<std::size_t>(0, kFaultKinds.size() - 1)(random)]);
  if (fault.kind == "booking") {
    fault.written = "booking:" + pick(random, std::vector<std::string>{"SYSTEM_ERROR", "ORDER_PENDING", "PAYMENT_DECLINED",
                                                                    "INVALID_REQUEST"});
  } else if (fault.kind == "residency") {
    fault.written = "residency:" + pick(random, std::vector<std::string>{"RES-4101", "0871", "9"});
  } else if (fault.kind == "status") {
    fault.written = "status:" + std::to_string(pick(random, std::vector<int>{200, 400, 401, 404, 409, 429, 500, 502, 503}));
  } else if (fault.kind == "delay") {
    fault.delay = std::chrono::milliseconds(between(random, 20, 300));
    fault.written = "delay:" + std::to_string(fault.delay.count());
  } else if (fault.kind == "delay-past-timeout") {
    fault.delay = requestTimeout + std::chrono::milliseconds(between(random, 200, 600));
    fault.written = "delay:" + std::to_string(fault.delay.count());
  } else {
    fault.written = fault.kind;
  }
  // Half of the faults hit the next request only (a retry then gets through),
  // the others every request until they are cleared.
  if (chance(random, 0.5)) fault.written += "*1";
  return fault;
}

}  // namespace

std::string chaosPassId(int index) {
  char text[32];
  std::snprintf(text, sizeof text, "AP-CHAOS-%06d", index);
  return text;
}

std::vector<RenewalScenario> drawScenarios(std::uint64_t seed, int renewals, int kills,
                                           std::chrono::milliseconds requestTimeout) {
  Random random(seed);
  std::vector<int> order(static_cast<std::size_t>(renewals));
  std::iota(order.begin(), order.end(), 0);
  std::shuffle(order.begin(), order.end(), random);
  std::vector<bool> killed(static_cast<std::size_t>(renewals), false);
  for (int i = 0; i < kills; ++i) killed[static_cast<std::size_t>(order[static_cast<std::size_t>(i)])] = true;

  const std::vector<CardChoice> cards = {{"CARD-REF-0001", false}, {"CARD-REF-0001", false},
                                         {"CARD-REF-0001", false}, {"CARD-REF-0002", true},
                                         {"CARD-REF-0002", true},  {"CARD-REF-0003", false}};
  std::vector<RenewalScenario> scenarios;
  for (int index = 0; index < renewals; ++index) {
    RenewalScenario scenario;
    scenario.index = index;
    scenario.passId = chaosPassId(index);
    scenario.monthly = chance(random, 0.4);
    scenario.card = pick(random, cards);
    if (chance(random, 0.75)) scenario.fault = drawFault(random, requestTimeout);
    // A contract fault means something only under the monthly plan.
    if (scenario.fault && scenario.fault->endpoint == "create-contract") scenario.monthly = true;
    const double killAt = std::uniform_real_distribution<double>(0.0, 1.2)(random);
    if (killed[static_cast<std::size_t>(index)]) scenario.killAt = killAt;
    for (bool& resume : scenario.resumeRuns) resume = chance(random, 0.5);
    scenarios.push_back(std::move(scenario));
  }
  return scenarios;
}

std::string describe(const RenewalScenario& scenario) {
  std::string text = std::to_string(scenario.index);
  text.insert(0, 1, '#');
  text += " " + scenario.passId + " " + (scenario.monthly ? "monthly" : "full") + " " + scenario.card.reference;
  text += scenario.fault ? " fault " + scenario.fault->endpoint + "=" + scenario.fault->written : " no fault";
  if (scenario.killAt) text += " kill at " + std::to_string(static_cast<int>(*scenario.killAt * 100)) + "%";
  return text;
}

}  // namespace varnel::chaos
