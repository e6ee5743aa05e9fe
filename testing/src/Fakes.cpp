#include "varnel/testing/Fakes.h"

#include <algorithm>

#include "varnel/host/Registry.h"

namespace varnel::testing {

void CapturingPrintSink::debugPrint(std::string_view message, const LogSite& site) {
  std::lock_guard lock(mutex_);
  lines_.push_back({false, std::string(message), site});
}

void CapturingPrintSink::errorPrint(std::string_view message, const LogSite& site) {
  std::lock_guard lock(mutex_);
  lines_.push_back({true, std::string(message), site});
}

std::vector<CapturingPrintSink::Line> CapturingPrintSink::lines() const {
  std::lock_guard lock(mutex_);
  return lines_;
}

std::vector<std::string> CapturingPrintSink::messages() const {
  std::lock_guard lock(mutex_);
  std::vector<std::string> result;
  for (const auto& line : lines_) result.push_back(line.message);
  return result;
}

std::size_t CapturingPrintSink::count(std::string_view message) const {
  std::lock_guard lock(mutex_);
  return static_cast<std::size_t>(
      std::count_if(lines_.begin(), lines_.end(), [&](const Line& line) { return line.message == message; }));
}

void CapturingPrintSink::clear() {
  std::lock_guard lock(mutex_);
  lines_.clear();
}

TableLocalization::TableLocalization(std::map<std::string, std::string, std::less<>> entries)
    : table(std::move(entries)) {}

std::string TableLocalization::localizedStringForKey(std::string_view key, std::string_view,
                                                     const std::filesystem::path&) const {
  auto it = table.find(key);
  return it == table.end() ? std::string(key) : it->second;
}

std::shared_ptr<KTVRNotificationBanner> RecordingBannerFactory::transactionalErrorBanner(const Error& error,
                                                                                         std::string title,
                                                                                         std::string message) {
  return made.emplace_back(std::make_shared<RecordingBanner>(KTVRNotificationBannerKind::transactionalError, error,
                                                             std::move(title), std::move(message)));
}

std::shared_ptr<KTVRNotificationBanner> RecordingBannerFactory::serviceErrorBanner(const Error& error,
                                                                                   std::string title,
                                                                                   std::string message) {
  return made.emplace_back(std::make_shared<RecordingBanner>(KTVRNotificationBannerKind::serviceError, error,
                                                             std::move(title), std::move(message)));
}

std::shared_ptr<KTVRNotificationBanner> RecordingBannerFactory::validationErrorBanner(std::string title,
                                                                                      std::string message) {
  return made.emplace_back(std::make_shared<RecordingBanner>(KTVRNotificationBannerKind::validationError,
                                                             std::nullopt, std::move(title), std::move(message)));
}

std::optional<DefaultsValue> InMemoryUserDefaults::objectForKey(std::string_view key) const {
  auto it = values_.find(key);
  if (it == values_.end()) return std::nullopt;
  return it->second;
}

void InMemoryUserDefaults::setObject(std::string_view key, DefaultsValue value) {
  ++writeCount;
  values_.insert_or_assign(std::string(key), std::move(value));
}

void InMemoryUserDefaults::removeObjectForKey(std::string_view key) {
  ++writeCount;
  if (auto it = values_.find(key); it != values_.end()) values_.erase(it);
}

std::map<std::string, DefaultsValue, std::less<>> InMemoryUserDefaults::dictionaryRepresentation() const {
  return values_;
}

bool InMemoryUserDefaults::synchronize() {
  ++synchronizeCount;
  return true;
}

void ManualMainQueue::post(std::function<void()> task) {
  std::lock_guard lock(mutex_);
  tasks_.push_back(std::move(task));
}

std::size_t ManualMainQueue::runAll() {
  std::size_t ran = 0;
  for (;;) {
    std::function<void()> task;
    {
      std::lock_guard lock(mutex_);
      if (tasks_.empty()) return ran;
      task = std::move(tasks_.front());
      tasks_.pop_front();
    }
    task();
    ++ran;
  }
}

std::size_t ManualMainQueue::pending() const {
  std::lock_guard lock(mutex_);
  return tasks_.size();
}

FakeHost::FakeHost()
    : log(std::make_shared<CapturingPrintSink>()),
      localization(std::make_shared<TableLocalization>()),
      banners(std::make_shared<RecordingBannerFactory>()),
      defaults(std::make_shared<InMemoryUserDefaults>()),
      mainQueue(std::make_shared<ManualMainQueue>()) {
  using host::Registry;
  Registry::clear();
  Registry::set<KTVCPrintSink>(log);
  Registry::set<KTVRLocalization>(localization);
  Registry::set<KTVRNotificationBannerFactory>(banners);
  Registry::set<UserDefaults>(defaults);
  Registry::set<MainQueue>(mainQueue);
}

FakeHost::~FakeHost() { host::Registry::clear(); }

}  // namespace varnel::testing
