#include "checkout/RenewalOverHttp.h"

#include <mutex>

#include "support/QuickNetworking.h"
#include "varnel/host/Registry.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/VNLCreateOrderParameters.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"
#include "varnel/services/VNLParsePaymentAccounts.h"
#include "varnel/standalone/StaticAuthenticationService.h"

namespace varnel::testing {

void RenewalOverHttpTest::SetUp() {
  HostFixture::SetUp();
  resetOverriddenHeadersForTesting();
  household = mock::testing::sampleGuest();
  host::Registry::set<KTVRAuthenticationService>(
      std::make_shared<standalone::StaticAuthenticationService>(household.kuid, household.email));
  host::Registry::set<KTVRUserProfileAuthentication>(std::make_shared<standalone::StaticUserProfile>(household.email));
  restart();
}

void RenewalOverHttpTest::TearDown() {
  stop();
  HostFixture::TearDown();
}

void RenewalOverHttpTest::stop() {
  standalone::uninstallStandaloneNetworking();
  networking = {};
  if (server) server->stop();
  server.reset();
  resetOverriddenHeadersForTesting();
}

void RenewalOverHttpTest::restart() {
  stop();
  auto started = mock::MockCommerceServer::start({.guest = household, .faults = {}, .routes = {}, .routeFaults = {},
                                                  .requestLog = {}});
  ASSERT_TRUE(started.ok()) << localizedDescription(started.error());
  server = std::move(started.value());
  networking = installQuickNetworking(server->baseUrl(), household.accessToken);
}

void RenewalOverHttpTest::settle() {
  if (networking.client) settleNetworking(*networking.client);
}

std::optional<RenewalOverHttpTest::Answer> RenewalOverHttpTest::run(
    const std::function<void(KTVRPrivateDataService&, KTVRSuccessBlock, KTVRFailureBlock)>& send) {
  auto answer = std::make_shared<std::optional<Answer>>();
  auto mutex = std::make_shared<std::mutex>();
  send(
      *KTVRPrivateDataService::sharedInstance(),
      [answer, mutex](const std::optional<Json>& value) {
        std::lock_guard lock(*mutex);
        *answer = Answer{true, value, std::nullopt};
      },
      [answer, mutex](const std::optional<Error>& error) {
        std::lock_guard lock(*mutex);
        *answer = Answer{false, std::nullopt, error};
      });
  settle();
  std::lock_guard lock(*mutex);
  return *answer;
}

RenewalOrder RenewalOverHttpTest::placeOrder(bool monthlyPlan) {
  const std::string kuid = household.kuid.value_or("");
  const Json product{{"categoryId", "AnnualPassRenewal"},
                     {"quantity", 1},
                     {"entitlementId", kRenewablePass},
                     {"guestIdType", "kuid"},
                     {"guestId", kuid}};
  const VNLCreateOrderParameters parameters(park, kuid, {product}, monthlyPlan);
  const auto answer = run([&](auto& service, auto success, auto failure) {
    createOrderRequest(service, parameters, success, failure);
  });
  EXPECT_TRUE(answer && answer->succeeded && answer->value) << "the mock refused the order";
  if (!answer || !answer->value) return {};
  RenewalOrder order = VNLParseCreateOrderResponse().parseCreateOrder(*answer->value);
  order.paymentPlan = monthlyPlan;
  return order;
}

PaymentAccount RenewalOverHttpTest::storedCard(const std::string& reference, const std::string& securityCode) {
  const auto answer = run([](auto& service, auto success, auto failure) { profileAccounts(service, success, failure); });
  EXPECT_TRUE(answer && answer->succeeded);
  const auto accounts = VNLParsePaymentAccounts().parsePaymentAccounts(answer && answer->value ? *answer->value : Json());
  for (const PaymentAccount& account : accounts) {
    const CreditCard& card = account.creditCard();
    if (card.retrievalReferenceNumber() != reference) continue;
    return PaymentAccount(account.guestDetails(),
                          CreditCard(card.isActive(), card.chargingPrivileges(), card.cardNumber(),
                                     card.expirationDate(), card.expirationMonth(), card.expirationYear(),
                                     card.paymentMethod(), card.paymentMethodType(), card.retrievalReferenceNumber(),
                                     card.retrievalReferenceKey(), securityCode, card.isScanned()),
                          account.cardHolderAddress());
  }
  ADD_FAILURE() << "no stored card " << reference;
  return testAccount();
}

std::vector<Json> RenewalOverHttpTest::requestsTo(std::string_view endpoint) const {
  std::vector<Json> requests;
  for (const Json& entry : server->journal()) {
    if (entry.value("endpoint", Json()) == endpoint) requests.push_back(entry);
  }
  return requests;
}

int RenewalOverHttpTest::chargesOf(const std::string& orderId) const {
  const auto charges = server->charges();
  const auto it = charges.find(orderId);
  return it == charges.end() ? 0 : it->second;
}

}  // namespace varnel::testing
