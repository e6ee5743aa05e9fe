// The create-order parser against a bare JSON parse of the same bytes: an
// answer with 100 guests and 100 order entries, from bytes to a RenewalOrder.

#include <cstdio>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "RatioSummary.h"
#include "varnel/host/Registry.h"
#include "varnel/platform/Json.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"
#include "varnel/services/VNLParseUpdateSubmitResponse.h"
#include "varnel/standalone/StaticAuthenticationService.h"

namespace {

using varnel::Json;

constexpr int kGuests = 100;
constexpr int kEntries = 100;

std::string participant(int index) { return "guest-" + std::to_string(1000 + index); }

Json largeAnswer() {
  Json entries = Json::array();
  for (int i = 0; i < kEntries; ++i) {
    Json entry = {{"id", "item-" + std::to_string(i)},
                  {"confirmationNumber", "KX" + std::to_string(4419000 + i)},
                  {"entitlementAssignment", {{"guestReferenceIds", {participant(i % kGuests)}}}}};
    // Every fifth entry has no name of its own and carries the previous one over.
    if (i % 5 != 4) {
      entry["components"]["annualpass"]["names"]["KTVRO Cart Plus Ticket Only"]["text"] =
          "Pass tier " + std::to_string(i % 7);
    }
    entries.push_back(std::move(entry));
  }
  Json guests = Json::array();
  for (int i = 0; i < kGuests; ++i) {
    guests.push_back({{"participantId", participant(i)},
                      {"kuid", "{A1B2C3D4-" + std::to_string(i) + "}"},
                      {"avatarImage", "avatar-" + std::to_string(i)},
                      {"name", {{"firstName", "First" + std::to_string(i)}, {"lastName", "Family"}}},
                      {"phoneNumber", {{"type", "MOBILE"}, {"number", "59255501" + std::to_string(i)}}},
                      {"emailAddress", "guest" + std::to_string(i) + "@example.test"},
                      {"birthDate", "1990-01-01"},
                      {"address",
                       {{"line1", std::to_string(i) + " Lantern Way"},
                        {"line2", "Unit 3"},
                        {"city", "Hollowmere"},
                        {"stateOrProvince", "QZ"},
                        {"postalCode", "00043"},
                        {"country", "US"}}}});
  }
  Json policies = Json::array();
  for (int i = 0; i < 3; ++i) {
    policies.push_back({{"id", "pol-" + std::to_string(i)},
                        {"name", "Policy " + std::to_string(i)},
                        {"descriptions", {{{"id", "d"}, {"key", "summary"}, {"text", "<p>Terms.</p>"}}}}});
  }
  return {{"links", {{"self", {{"href", "https://commerce.example.test/orders/ORD7731A9"}}}}},
          {"bookingTermsAndConditions", "Renewal passes are non-transferable."},
          {"pricing",
           {{"subtotal", "69900.00"}, {"tax", "4613.40"}, {"total", "74513.40"}, {"currency", "USD"},
            {"taxIncluded", false}}},
          {"totalDepositDue", {{"total", "7451.34"}}},
          {"monthlyPaymentAmount", {{"value", "5588.51"}}},
          {"downPaymentAmount", {{"value", "7451.34"}}},
          {"orderItems", {{"limit", 25}, {"total", kEntries}, {"entries", std::move(entries)}}},
          {"guests", std::move(guests)},
          {"payments", {{{"amount", "7451.34"}, {"paymentCard", {{"cardType", "VISA"}, {"cardSubType", "CREDIT"},
                                                               {"maskedCardNumber", "XXXX4242"}}}}}},
          {"status", "BOOKED"},
          {"termsAndConditions", {{"policies", std::move(policies)}}}};
}

const std::string& answerBytes() {
  static const std::string bytes = largeAnswer().dump();
  return bytes;
}

void JsonParseOnly(benchmark::State& state) {
  const std::string& bytes = answerBytes();
  for (auto _ : state) benchmark::DoNotOptimize(Json::parse(bytes, nullptr, false));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

void CreateOrderFromBytes(benchmark::State& state) {
  const std::string& bytes = answerBytes();
  const varnel::VNLParseCreateOrderResponse parser;
  for (auto _ : state) {
    const Json answer = Json::parse(bytes, nullptr, false);
    benchmark::DoNotOptimize(parser.parseCreateOrder(answer));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

void ConfirmationFromBytes(benchmark::State& state) {
  const std::string& bytes = answerBytes();
  const varnel::VNLParseUpdateSubmitResponse parser;
  for (auto _ : state) {
    const Json answer = Json::parse(bytes, nullptr, false);
    benchmark::DoNotOptimize(parser.parse(answer));
  }
}

BENCHMARK(JsonParseOnly);
BENCHMARK(CreateOrderFromBytes);
BENCHMARK(ConfirmationFromBytes);

// The parse must see the answer it is measured on: every guest and entry.
bool answerIsComplete() {
  const auto order = varnel::VNLParseCreateOrderResponse().parseCreateOrder(Json::parse(answerBytes()));
  const bool complete = order.guests.size() == kGuests && order.products.size() == kEntries &&
                        order.guests[3].guestPassName() == "Pass tier 3" && order.guests[1].isMe();
  if (!complete) std::fprintf(stderr, "the benchmark answer did not parse completely\n");
  return complete;
}

}  // namespace

int main(int argc, char** argv) {
  varnel::host::Registry::set<varnel::KTVRAuthenticationService>(
      std::make_shared<varnel::standalone::StaticAuthenticationService>("{A1B2C3D4-1}"));
  if (!answerIsComplete()) return 1;
  std::printf("answer: %zu bytes, %d guests, %d entries\n", answerBytes().size(), kGuests, kEntries);
  varnel::bench::RatioSummary summary;
  varnel::bench::runWith(summary, argc, argv);
  summary.printRatio("CreateOrderFromBytes", "JsonParseOnly", "<= 1.5");
  summary.printRatio("ConfirmationFromBytes", "JsonParseOnly", "information");
  return 0;
}
