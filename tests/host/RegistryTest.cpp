#include <thread>

#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"

namespace varnel {
namespace {

struct Greeter {
  virtual ~Greeter() = default;
  virtual int value() const = 0;
};
struct FixedGreeter : Greeter {
  explicit FixedGreeter(int v) : v_(v) {}
  int value() const override { return v_; }
  int v_;
};

class RegistryTest : public testing::HostFixture {};

TEST_F(RegistryTest, SlotsAreKeyedByInterfaceAndReplaceable) {
  EXPECT_EQ(host::Registry::get<Greeter>(), nullptr);
  host::Registry::set<Greeter>(std::make_shared<FixedGreeter>(1));
  auto previous = host::Registry::set<Greeter>(std::make_shared<FixedGreeter>(2));
  ASSERT_NE(previous, nullptr);
  EXPECT_EQ(previous->value(), 1);
  EXPECT_EQ(host::Registry::get<Greeter>()->value(), 2);
  host::Registry::set<Greeter>(nullptr);
  EXPECT_EQ(host::Registry::get<Greeter>(), nullptr);
}

TEST_F(RegistryTest, ConcurrentReadersAndWritersAgree) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 500; ++i) {
        if (t % 2) {
          host::Registry::set<Greeter>(std::make_shared<FixedGreeter>(i));
        } else if (auto greeter = host::Registry::get<Greeter>()) {
          EXPECT_GE(greeter->value(), 0);
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_NE(host::Registry::get<Greeter>(), nullptr);
}

TEST_F(RegistryTest, PrintUtilityReachesTheRegisteredSinkWithItsSite) {
  KTVCPrintUtility::debugPrint("named", LogSite{"Classes/Somewhere", "f(x:)", 12});
  KTVCPrintUtility::errorPrint("here");
  const auto lines = log->lines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_FALSE(lines[0].isError);
  EXPECT_EQ(lines[0].site.file, "Classes/Somewhere");
  EXPECT_EQ(lines[0].site.line, 12);
  EXPECT_TRUE(lines[1].isError);
  EXPECT_EQ(lines[1].site.file, "RegistryTest");
  EXPECT_GT(lines[1].site.line, 0);
}

TEST_F(RegistryTest, PrintingWithoutASinkIsSilent) {
  host::Registry::set<KTVCPrintSink>(nullptr);
  KTVCPrintUtility::debugPrint("dropped");
  EXPECT_TRUE(log->lines().empty());
}

TEST_F(RegistryTest, RegisteredResourceBundleWinsOverTheEnvironment) {
  host::Registry::set<ResourceBundle>(std::make_shared<ResourceBundle>(ResourceBundle{"/opt/elsewhere"}));
  EXPECT_EQ(varnelResourceDirectory(), "/opt/elsewhere");
  host::Registry::set<ResourceBundle>(nullptr);
  EXPECT_TRUE(std::filesystem::exists(varnelResourceDirectory() / "en.lproj" / "Localizable.json"));
}

}  // namespace
}  // namespace varnel
