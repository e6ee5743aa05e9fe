#include "varnel/screens/ServerErrorRoutingPresenter.h"

#include <mutex>
#include <utility>

#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/host/Registry.h"
#include "varnel/platform/Json.h"
#include "varnel/platform/UserDefaults.h"

namespace varnel {
namespace {

constexpr const char* kRoutingSource = "Classes/Debug/ServerErrorRoutingDebugViewController";

std::mutex addressMutex;
std::string& address() {
  static std::string value;
  return value;
}

/// A record, or the first record of a list of them.
const Json* firstRecord(const Json* value) {
  if (value && value->is_array()) value = value->empty() ? nullptr : &value->front();
  return value && value->is_object() ? value : nullptr;
}

/// The text under "value" of the record in `field`.
const std::string* fieldValue(const Json& answer, std::string_view field) {
  const Json* record = firstRecord(jsonMember(answer, field));
  return record ? jsonString(*record, "value") : nullptr;
}

}  // namespace

std::string ServerErrorRoutingPresenter::mockServerAddress() {
  std::lock_guard lock(addressMutex);
  return address();
}

void ServerErrorRoutingPresenter::setMockServerAddress(std::string newAddress) {
  std::lock_guard lock(addressMutex);
  address() = std::move(newAddress);
}

std::shared_ptr<ServerErrorRoutingPresenter> ServerErrorRoutingPresenter::create(ServerErrorRoutingView& view,
                                                                                 std::shared_ptr<URLSession> session,
                                                                                 std::shared_ptr<MainQueue> mainQueue,
                                                                                 std::string serverAddress) {
  return std::shared_ptr<ServerErrorRoutingPresenter>(
      new ServerErrorRoutingPresenter(view, std::move(session), std::move(mainQueue), std::move(serverAddress)));
}

ServerErrorRoutingPresenter::ServerErrorRoutingPresenter(ServerErrorRoutingView& view,
                                                         std::shared_ptr<URLSession> session,
                                                         std::shared_ptr<MainQueue> mainQueue,
                                                         std::string serverAddress)
    : view_(view),
      session_(std::move(session)),
      mainQueue_(std::move(mainQueue)),
      serverAddress_(std::move(serverAddress)) {}

void ServerErrorRoutingPresenter::viewDidAppear() {
  loadDefaults();
  updateUI();
}

void ServerErrorRoutingPresenter::testRoutingTapped() { fetchData(view_.usernameText()); }

void ServerErrorRoutingPresenter::serverErrorRoutingSwitchChanged() {
  saveDefaults(std::nullopt, std::nullopt);
  updateUI();
}

std::string ServerErrorRoutingPresenter::lookupURL(std::string_view userName) const {
  std::string base = serverAddress_;
  while (!base.empty() && base.back() == '/') base.pop_back();
  return base + std::string(kHeaderLookupPath) + std::string(userName);
}

void ServerErrorRoutingPresenter::fetchData(const std::string& userName) {
  if (serverAddress_.empty() || !session_ || !mainQueue_) {
    KTVCPrintUtility::debugPrint("No mock server is set for server-error routing",
                                 LogSite{kRoutingSource, "fetchData(userName:)", __LINE__});
    return;
  }
  URLRequest request;
  request.url = lookupURL(userName);
  auto task = session_->dataTask(
      std::move(request), [weak = weak_from_this(), mainQueue = mainQueue_](std::optional<std::string> data,
                                                                            std::optional<URLResponse> response,
                                                                            std::optional<Error> error) {
        // A failed request shows nothing and changes nothing.
        if (error || !data) return;
        if (response && response->statusCode && (*response->statusCode < 200 || *response->statusCode > 299)) return;
        const auto answer = parseJSONString(*data);
        if (!answer) return;
        mainQueue->post([weak, answer = *answer] {
          if (const auto self = weak.lock()) self->showAnswer(answer);
        });
      });
  if (task) task->resume();
}

void ServerErrorRoutingPresenter::showAnswer(const ServerErrorRoutingAnswer& answer) {
  view_.setResultText(resultText(answer.endpoint, answer.header));
  saveDefaults(std::string(kInternalMockHeader), answer.header);
}

std::optional<ServerErrorRoutingAnswer> ServerErrorRoutingPresenter::parseJSONString(std::string_view json) {
  Json parsed = parseJson(json).value.value_or(Json());
  if (parsed.is_array()) parsed = parsed.empty() ? Json() : Json(parsed.front());
  const std::string* endpoint = parsed.is_object() ? fieldValue(parsed, "field_endpoint") : nullptr;
  const std::string* header = parsed.is_object() ? fieldValue(parsed, "field_simulator_header") : nullptr;
  if (!endpoint || !header) {
    KTVCPrintUtility::debugPrint("Failed to parse JSON", LogSite{kRoutingSource, "parseJSONString(json:)", __LINE__});
    return std::nullopt;
  }
  return ServerErrorRoutingAnswer{*endpoint, *header};
}

void ServerErrorRoutingPresenter::saveDefaults(const std::optional<std::string>& header,
                                               const std::optional<std::string>& headerValue) {
  const auto store = host::Registry::get<UserDefaults>();
  if (!store) return;
  store->setString(kSERUserNameKey, view_.usernameText());
  store->setBool(kSERUseFeatureKey, view_.isRoutingSwitchOn());
  if (header && headerValue) {
    store->setObject(kSERActivateRoutingKey, DefaultsDictionary{{*header, DefaultsValue(*headerValue)}});
  } else {
    store->removeObjectForKey(kSERActivateRoutingKey);
  }
  store->synchronize();
}

std::optional<std::string> ServerErrorRoutingPresenter::storedResultText() {
  const auto store = host::Registry::get<UserDefaults>();
  const auto stored = store ? store->objectForKey(kSERActivateRoutingKey) : std::nullopt;
  const auto* headers = stored ? stored->get<DefaultsDictionary>() : nullptr;
  if (!headers || headers->empty()) return std::nullopt;
  // The stored dictionary keeps the header's name where the lookup showed its endpoint.
  const auto& [name, value] = *headers->begin();
  const auto* text = value.get<std::string>();
  return resultText(name, text ? *text : "");
}

void ServerErrorRoutingPresenter::loadDefaults() {
  const auto store = host::Registry::get<UserDefaults>();
  view_.setUsernameText(store ? store->stringForKey(kSERUserNameKey).value_or("") : "");
  if (const auto text = storedResultText()) view_.setResultText(*text);
  view_.setRoutingSwitchOn(store && store->boolForKey(kSERUseFeatureKey));
}

void ServerErrorRoutingPresenter::updateUI() {
  view_.setRoutingControlsHidden(!view_.isRoutingSwitchOn());
  view_.setResultText(storedResultText().value_or(""));
}

std::string ServerErrorRoutingPresenter::resultText(std::string_view endpoint, std::string_view header) {
  return "Endpoint: " + std::string(endpoint) + " \nHeader: " + std::string(header);
}

}  // namespace varnel
