#pragma once
// A GoogleTest fixture that installs fresh fakes of the host interfaces in the
// host registry before each test and empties the registry after it. Tests
// reach the fakes through the members. Header-only, so that Varnel::testing
// itself needs no test framework; the test program links GoogleTest.
//
//   class MyTest : public varnel::testing::HostFixture {};
//   TEST_F(MyTest, ...) { localization->table["Key"] = "Text"; ... }

#include <memory>
#include <optional>

#include <gtest/gtest.h>

#include "varnel/testing/Fakes.h"

namespace varnel::testing {

class HostFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    host_.emplace();
    log = host_->log;
    localization = host_->localization;
    banners = host_->banners;
    defaults = host_->defaults;
    mainQueue = host_->mainQueue;
  }
  void TearDown() override { host_.reset(); }

  std::shared_ptr<CapturingPrintSink> log;
  std::shared_ptr<TableLocalization> localization;
  std::shared_ptr<RecordingBannerFactory> banners;
  std::shared_ptr<InMemoryUserDefaults> defaults;
  std::shared_ptr<ManualMainQueue> mainQueue;

 private:
  std::optional<FakeHost> host_;
};

}  // namespace varnel::testing
