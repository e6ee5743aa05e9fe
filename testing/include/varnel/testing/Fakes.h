#pragma once
// Fakes of the host interfaces, for the tests of the module and of a host app
// (Varnel::testing). They need no test framework: FakeHost installs a fresh set
// in the host registry and empties the registry when it goes away; the
// GoogleTest fixture over it is in varnel/testing/HostFixture.h.
//
//   varnel::testing::FakeHost host;
//   host.localization->table["Key"] = "Text";
//   ... exercise the module ...
//   EXPECT_EQ(host.log->count("a line"), 1u);

#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/host/KTVRLocalization.h"
#include "varnel/host/KTVRNotificationBanner.h"
#include "varnel/platform/MainQueue.h"
#include "varnel/platform/UserDefaults.h"

namespace varnel::testing {

/// Keeps every printed line.
class CapturingPrintSink final : public KTVCPrintSink {
 public:
  struct Line {
    bool isError;
    std::string message;
    LogSite site;
  };
  void debugPrint(std::string_view message, const LogSite& site) override;
  void errorPrint(std::string_view message, const LogSite& site) override;

  std::vector<Line> lines() const;
  std::vector<std::string> messages() const;
  /// How many lines carry exactly this message.
  std::size_t count(std::string_view message) const;
  void clear();

 private:
  mutable std::mutex mutex_;
  std::vector<Line> lines_;
};

/// A string table held in memory; unknown keys look up as themselves.
class TableLocalization final : public KTVRLocalization {
 public:
  explicit TableLocalization(std::map<std::string, std::string, std::less<>> table = {});
  std::string localizedStringForKey(std::string_view key, std::string_view tableName,
                                    const std::filesystem::path& bundle) const override;
  std::map<std::string, std::string, std::less<>> table;
};

/// Banners that only record whether they were shown.
class RecordingBanner final : public KTVRNotificationBanner {
 public:
  using KTVRNotificationBanner::KTVRNotificationBanner;
  void show() override { ++shownCount; }
  int shownCount = 0;
};

class RecordingBannerFactory final : public KTVRNotificationBannerFactory {
 public:
  std::shared_ptr<KTVRNotificationBanner> transactionalErrorBanner(const Error& error, std::string title,
                                                                   std::string message) override;
  std::shared_ptr<KTVRNotificationBanner> serviceErrorBanner(const Error& error, std::string title,
                                                             std::string message) override;
  std::shared_ptr<KTVRNotificationBanner> validationErrorBanner(std::string title, std::string message) override;
  std::vector<std::shared_ptr<RecordingBanner>> made;
};

/// A user-defaults store in memory; counts synchronisations.
class InMemoryUserDefaults final : public UserDefaults {
 public:
  std::optional<DefaultsValue> objectForKey(std::string_view key) const override;
  void setObject(std::string_view key, DefaultsValue value) override;
  void removeObjectForKey(std::string_view key) override;
  std::map<std::string, DefaultsValue, std::less<>> dictionaryRepresentation() const override;
  bool synchronize() override;

  int synchronizeCount = 0;
  int writeCount = 0;

 private:
  std::map<std::string, DefaultsValue, std::less<>> values_;
};

/// A main queue that runs tasks only when the test says so.
class ManualMainQueue final : public MainQueue {
 public:
  void post(std::function<void()> task) override;
  /// Runs every waiting task (and those they post); returns how many ran.
  std::size_t runAll();
  std::size_t pending() const;

 private:
  mutable std::mutex mutex_;
  std::deque<std::function<void()>> tasks_;
};

/// Installs fresh fakes in the host registry on construction and empties the
/// registry on destruction. One at a time: the registry is process-wide.
class FakeHost {
 public:
  FakeHost();
  ~FakeHost();
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  std::shared_ptr<CapturingPrintSink> log;
  std::shared_ptr<TableLocalization> localization;
  std::shared_ptr<RecordingBannerFactory> banners;
  std::shared_ptr<InMemoryUserDefaults> defaults;
  std::shared_ptr<ManualMainQueue> mainQueue;
};

}  // namespace varnel::testing
