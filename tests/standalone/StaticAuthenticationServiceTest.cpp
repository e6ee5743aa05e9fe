#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/host/KTVRAuthenticationService.h"
#include "varnel/host/Registry.h"
#include "varnel/standalone/StaticAuthenticationService.h"

namespace varnel {
namespace {

class StaticAuthenticationServiceTest : public testing::HostFixture {};

TEST_F(StaticAuthenticationServiceTest, SharedInstanceIsTheInstalledServiceOrNone) {
  EXPECT_EQ(KTVRAuthenticationService::sharedInstance(), nullptr);
  host::Registry::set<KTVRAuthenticationService>(
      std::make_shared<standalone::StaticAuthenticationService>("{K-1}", "ada@example.test"));
  const auto service = KTVRAuthenticationService::sharedInstance();
  ASSERT_NE(service, nullptr);
  EXPECT_EQ(service->kuid(), "{K-1}");
  EXPECT_EQ(service->email(), "ada@example.test");
}

TEST_F(StaticAuthenticationServiceTest, NobodyIsSignedInWithoutAnAccountIdentifier) {
  const standalone::StaticAuthenticationService nobody;
  EXPECT_EQ(nobody.kuid(), std::nullopt);
  EXPECT_EQ(nobody.email(), std::nullopt);
  const standalone::StaticAuthenticationService emptyId{""};
  EXPECT_EQ(emptyId.kuid(), "") << "an empty identifier is still a signed-in guest";
}

}  // namespace
}  // namespace varnel
