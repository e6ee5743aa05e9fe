// A tester routes their requests to a simulated server error: while the
// routing switch is on, every request carries the stored routing header and
// the mock answers it with the fault routed to that header's value; switched
// off, the same renewal goes through again.

#include "CommerceOverHttpSupport.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/standalone/network/HttpClient.h"

namespace varnel::testing {
namespace {

TEST_F(CommerceOverHttpTest, RoutedRequestsMeetTheirSimulatedErrorUntilRoutingIsOff) {
  auto routed = mock::RouteFault::parse("E503=booking:SYSTEM_UNAVAILABLE");
  ASSERT_TRUE(routed.ok());
  routeFaults = {routed.value()};
  start(sampleGuest(), sampleGuest().kuid);
  defaults->setObject(kServerErrorRoutingHeaderKey,
                      DefaultsDictionary{{"X-Orvane-Internal-Mock-AP", DefaultsValue("E503")}});

  defaults->setBool(kServerErrorRoutingUseFeatureKey, true);
  const Outcome failed = createOrder();
  ASSERT_TRUE(failed.onlyFailed());
  EXPECT_EQ(failed.error, toError(APError::SYSTEM_UNAVAILABLE));
  EXPECT_EQ(headerOf(requestsTo("create-orders").back(), "X-Orvane-Internal-Mock-AP"), "E503");

  defaults->setBool(kServerErrorRoutingUseFeatureKey, false);
  EXPECT_TRUE(createOrder().onlySucceeded());
  EXPECT_EQ(headerOf(requestsTo("create-orders").back(), "X-Orvane-Internal-Mock-AP"), std::nullopt);
}

}  // namespace
}  // namespace varnel::testing
