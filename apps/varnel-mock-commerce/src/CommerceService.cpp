#include "CommerceService.h"

#include <chrono>
#include <strings.h>

namespace varnel::mock {
namespace {

constexpr std::size_t kJournalLimit = 10'000;

}  // namespace

std::vector<std::string> pathSegments(std::string_view path) {
  std::vector<std::string> parts;
  while (!path.empty()) {
    if (path.front() == '/') {
      path.remove_prefix(1);
      continue;
    }
    auto slash = path.find('/');
    parts.emplace_back(path.substr(0, slash));
    path = slash == std::string_view::npos ? std::string_view{} : path.substr(slash);
  }
  return parts;
}

namespace {

Json fieldsObject(const Fields& fields) {
  Json object = Json::object();
  for (const auto& [name, value] : fields) {
    if (object.contains(name)) object[name] = object[name].get<std::string>() + ", " + value;
    else object[name] = value;
  }
  return object;
}

Reply reply(int status, std::string body, Cut cut = Cut::none) {
  return Reply{.status = status, .body = std::move(body), .contentType = "application/json", .cut = cut};
}

Reply faultReply(const Fault& fault) {
  switch (fault.kind) {
    case FaultKind::booking:
      return jsonReply(500, Json{{"errors", Json::array({Json{{"typeId", fault.text}}})}});
    case FaultKind::residency:
      return jsonReply(400, bookingError("GUEST_RESIDENCY_NOT_VERIFIED", "The guest's residency could not be verified.",
                                         fault.text));
    case FaultKind::status:
      return jsonReply(fault.number, bookingError("SCRIPTED_STATUS", "Scripted answer with status " +
                                                                         std::to_string(fault.number) + "."));
    case FaultKind::reset: return reply(0, "", Cut::reset);
    case FaultKind::empty: return reply(0, "", Cut::empty);
    case FaultKind::malformed: return reply(200, "{\"links\": {\"self\": <html>");
    case FaultKind::array: return reply(200, R"([{"status":"BOOKED"}])");
    case FaultKind::delay:
    case FaultKind::resetAfter: break;
  }
  return jsonReply(500, bookingError("UNEXPECTED_ERROR", "Unknown scripted fault."));
}

// Takes one use of the fault at the front of `queue`.
std::optional<Fault> takeFront(std::deque<Fault>& queue) {
  if (queue.empty()) return std::nullopt;
  Fault fault = queue.front();
  if (queue.front().remaining && --*queue.front().remaining == 0) queue.pop_front();
  return fault;
}

}  // namespace

const std::string* Call::header(std::string_view name) const {
  for (const auto& [key, value] : headers) {
    if (key.size() == name.size() && strncasecmp(key.data(), name.data(), name.size()) == 0) return &value;
  }
  return nullptr;
}

const std::string* Call::parameter(std::string_view name) const {
  for (const auto& [key, value] : query) {
    if (key == name) return &value;
  }
  return nullptr;
}

Reply jsonReply(int status, const Json& body) {
  return reply(status, body.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::optional<Json> parseBody(const std::string& body) {
  if (body.empty()) return std::nullopt;
  return parseJson(body).value;
}

CommerceService::CommerceService(MockCommerceOptions options)
    : options_(std::move(options)), household_(options_.guest), routeFaults_(options_.routeFaults) {
  for (const auto& fault : options_.faults) faults_[fault.endpoint].push_back(fault.fault);
}

void CommerceService::setBaseUrl(std::string baseUrl) {
  std::lock_guard lock(mutex_);
  baseUrl_ = std::move(baseUrl);
}

std::optional<CommerceService::Endpoint> CommerceService::endpointOf(const Call& call) {
  const auto parts = call.segments.empty() ? pathSegments(call.path) : call.segments;
  auto is = [&](std::initializer_list<std::string_view> shape) {
    if (parts.size() != shape.size()) return false;
    std::size_t i = 0;
    for (std::string_view expected : shape) {
      if (expected != "*" && parts[i] != expected) return false;
      ++i;
    }
    return true;
  };
  if (is({"profile", "guests", "*", "payment-accounts"})) return Endpoint{"get-payment-accounts", "GET", std::string(parts[2])};
  if (is({"env2", "assembly", "guest", "*", "payment-accounts"}) && parts[3].starts_with("id;kuid=")) {
    return Endpoint{"get-payment-accounts", "GET", std::string(parts[3].substr(8))};
  }
  if (is({"commerce", "guests", "*", "orders"})) return Endpoint{"create-orders", "POST", std::string(parts[2])};
  if (is({"commerce", "orders", "*", "contract"})) return Endpoint{"create-contract", "POST", std::string(parts[2])};
  if (is({"commerce", "orders", "*", "express-checkout"})) {
    return Endpoint{"create-order-purchase", "POST", std::string(parts[2])};
  }
  if (is({"mobile-commerce", "index.php", "rest", "export", "json", "header"})) {
    return Endpoint{"server-error-routing", "GET", ""};
  }
  return std::nullopt;
}

Reply CommerceService::handle(const Call& call) {
  try {
    if (call.path.starts_with("/__admin/")) return admin(call);
    if (call.method == "OPTIONS") {
      record(call, nullptr, std::nullopt);
      return Reply{204, "", "", Cut::none};
    }
    auto endpoint = endpointOf(call);
    std::optional<Json> body = parseBody(call.body);
    record(call, endpoint ? &*endpoint : nullptr, body);
    if (!endpoint) return jsonReply(404, bookingError("NOT_FOUND", "No such resource."));
    bool head = call.method == "HEAD" && endpoint->method == "GET";
    if (call.method != endpoint->method && !head) {
      return jsonReply(405, bookingError("METHOD_NOT_ALLOWED", "Use " + endpoint->method + " here."));
    }
    std::optional<Fault> fault = takeFault(*endpoint, call);
    if (fault && fault->kind == FaultKind::delay && !sleepFor(fault->number)) {
      return jsonReply(503, bookingError("SYSTEM_UNAVAILABLE", "The service is stopping."));
    }
    if (fault && fault->kind != FaultKind::delay && fault->kind != FaultKind::resetAfter) return faultReply(*fault);
    Reply reply = serve(call, *endpoint, body);
    if (fault && fault->kind == FaultKind::resetAfter) reply.cut = Cut::reset;
    return reply;
  } catch (...) {
    return jsonReply(500, bookingError("UNEXPECTED_ERROR", "The request could not be handled."));
  }
}

void CommerceService::record(const Call& call, const Endpoint* endpoint, const std::optional<Json>& body) {
  Json entry{{"endpoint", endpoint ? Json(endpoint->key) : Json()},
             {"method", call.method},
             {"path", call.path},
             {"query", fieldsObject(call.query)},
             {"headers", fieldsObject(call.headers)},
             {"body", body ? *body : Json()},
             {"connection", call.connection}};
  std::lock_guard lock(mutex_);
  journal_.push_back(std::move(entry));
  if (journal_.size() > kJournalLimit) journal_.pop_front();
}

std::optional<Fault> CommerceService::takeFault(const Endpoint& endpoint, const Call& call) {
  std::lock_guard lock(mutex_);
  if (const std::string* value = call.header(kMockHeaderName)) {
    for (auto it = routeFaults_.begin(); it != routeFaults_.end(); ++it) {
      if (it->value != *value) continue;
      Fault fault = it->fault;
      if (it->fault.remaining && --*it->fault.remaining == 0) routeFaults_.erase(it);
      return fault;
    }
  }
  auto queue = faults_.find(endpoint.key);
  return queue == faults_.end() ? std::nullopt : takeFront(queue->second);
}

bool CommerceService::sleepFor(int milliseconds) {
  std::unique_lock lock(mutex_);
  return !stopped_.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return stopping_; });
}

void CommerceService::interruptDelays() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  stopped_.notify_all();
}

Reply CommerceService::serve(const Call& call, const Endpoint& endpoint, const std::optional<Json>& body) {
  std::lock_guard lock(mutex_);
  if (endpoint.key == "server-error-routing") return routing(call);
  if (auto refusal = authorize(call)) return *refusal;
  if (endpoint.key == "get-payment-accounts") return paymentAccounts(endpoint);
  return serveWrite(call, endpoint, body);
}

// A write repeating an Idempotency-Key gets the earlier reply, and only for
// the same request; the first one is acted on and its reply kept.
Reply CommerceService::serveWrite(const Call& call, const Endpoint& endpoint, const std::optional<Json>& body) {
  const std::string* key = call.header("Idempotency-Key");
  std::string fingerprint = body ? body->dump() : call.body;
  if (key) {
    auto stored = idempotencyKeys_.find(*key);
    if (stored != idempotencyKeys_.end()) {
      const StoredReply& earlier = stored->second;
      if (earlier.method == call.method && earlier.path == call.path && earlier.body == fingerprint) {
        return earlier.reply;
      }
      return jsonReply(422, bookingError("IDEMPOTENCY_KEY_REUSED",
                                         "This Idempotency-Key was used for a different request."));
    }
  }
  Reply reply;
  if (endpoint.key == "create-orders") reply = createOrder(endpoint, body);
  else if (endpoint.key == "create-contract") reply = contract(endpoint, body);
  else reply = checkout(call, endpoint, body);
  if (key) idempotencyKeys_[*key] = StoredReply{call.method, call.path, std::move(fingerprint), reply};
  return reply;
}

Reply CommerceService::admin(const Call& call) {
  const std::string& path = call.path;
  const std::string& method = call.method;
  if (path == "/__admin/requests" && method == "GET") return jsonReply(200, journal());
  if (path == "/__admin/requests" && method == "DELETE") {
    clearJournal();
    return reply(204, "");
  }
  if (path == "/__admin/charges" && method == "GET") {
    Json answer = Json::object();
    for (const auto& [id, count] : charges()) answer[id] = count;
    return jsonReply(200, answer);
  }
  if (path == "/__admin/faults" && method == "DELETE") {
    clearFaults();
    return reply(204, "");
  }
  if (path == "/__admin/faults" && method == "POST") {
    std::optional<Json> body = parseBody(call.body);
    const std::string* endpoint = body ? jsonString(*body, "endpoint") : nullptr;
    const std::string* kind = body ? jsonString(*body, "fault") : nullptr;
    if (!endpoint || !kind) return jsonReply(400, Json{{"error", "expected {\"endpoint\": KEY, \"fault\": KIND}"}});
    auto fault = EndpointFault::parse(*endpoint + "=" + *kind);
    if (!fault) return jsonReply(400, Json{{"error", fault.error().userInfo.value("reason", "bad fault")}});
    addFault(fault.value());
    return jsonReply(200, Json{{"endpoint", *endpoint}, {"fault", fault.value().fault.describe()}});
  }
  if (path == "/__admin/faults" && method == "GET") {
    std::lock_guard lock(mutex_);
    Json answer{{"endpoints", Json::object()}, {"routes", Json::object()}};
    for (const auto& [key, queue] : faults_) {
      for (const Fault& fault : queue) answer["endpoints"][key].push_back(fault.describe());
    }
    for (const auto& route : routeFaults_) answer["routes"][route.value] = route.fault.describe();
    return jsonReply(200, answer);
  }
  return jsonReply(404, Json{{"error", "unknown admin request"}});
}

std::optional<Error> CommerceService::addFault(const EndpointFault& fault) {
  if (!isMockEndpointKey(fault.endpoint)) {
    return mockCommerceError(MockCommerceErrorCode::badOption, "unknown endpoint key \"" + fault.endpoint + "\"");
  }
  std::lock_guard lock(mutex_);
  faults_[fault.endpoint].push_back(fault.fault);
  return std::nullopt;
}

void CommerceService::clearFaults() {
  std::lock_guard lock(mutex_);
  faults_.clear();
}

Json CommerceService::journal() const {
  std::lock_guard lock(mutex_);
  Json list = Json::array();
  for (const Json& entry : journal_) list.push_back(entry);
  return list;
}

void CommerceService::clearJournal() {
  std::lock_guard lock(mutex_);
  journal_.clear();
}

std::map<std::string, int> CommerceService::charges() const {
  std::lock_guard lock(mutex_);
  std::map<std::string, int> counts;
  for (const auto& [id, order] : orders_) counts[id] = order.charges;
  return counts;
}

}  // namespace varnel::mock
