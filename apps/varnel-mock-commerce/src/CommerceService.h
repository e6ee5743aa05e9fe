#pragma once
// The mock commerce service without its HTTP server: one request in, one
// reply out. It routes the request to its endpoint, journals it, applies the
// scripted faults, checks the token and the owner, and acts on the household's
// orders, charges and idempotency keys. All of its state is behind one mutex,
// so requests may arrive on any thread; handle() never throws.

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Answers.h"
#include "Household.h"
#include "varnel/mock/MockCommerceServer.h"

namespace varnel::mock {

using Fields = std::vector<std::pair<std::string, std::string>>;

/// The non-empty segments of a path, between its slashes.
std::vector<std::string> pathSegments(std::string_view path);

/// One request as the server received it (path percent-decoded).
struct Call {
  std::string method;
  std::string path;
  /// The path's segments, split at the slashes sent and then percent-decoded,
  /// so that an encoded slash ("%2F") stays inside its segment. Empty: taken
  /// from `path`.
  std::vector<std::string> segments;
  Fields query;
  Fields headers;
  std::string body;
  /// The client's port: the requests of one connection share it.
  int connection = -1;

  /// The first header of that name, compared without case.
  const std::string* header(std::string_view name) const;
  /// The first query parameter of that name.
  const std::string* parameter(std::string_view name) const;
};

/// How a reply ends the connection instead of answering.
enum class Cut { none, reset, empty };

struct Reply {
  int status = 200;
  std::string body;
  std::string contentType = "application/json";
  Cut cut = Cut::none;
};

class CommerceService {
 public:
  explicit CommerceService(MockCommerceOptions options);

  /// The {server} of the answers' links; set once the port is known.
  void setBaseUrl(std::string baseUrl);
  /// Answers one request; sleeps first under a delay fault.
  Reply handle(const Call& call);
  /// Ends every delay under way (the server is stopping).
  void interruptDelays();

  std::optional<Error> addFault(const EndpointFault& fault);
  void clearFaults();
  Json journal() const;
  void clearJournal();
  std::map<std::string, int> charges() const;

 private:
  struct Endpoint {
    std::string key;
    std::string method;
    /// The kuid or order id of the path.
    std::string parameter;
  };
  struct StoredReply {
    std::string method;
    std::string path;
    std::string body;
    Reply reply;
  };

  static std::optional<Endpoint> endpointOf(const Call& call);
  Reply admin(const Call& call);
  void record(const Call& call, const Endpoint* endpoint, const std::optional<Json>& body);
  std::optional<Fault> takeFault(const Endpoint& endpoint, const Call& call);
  bool sleepFor(int milliseconds);
  Reply serve(const Call& call, const Endpoint& endpoint, const std::optional<Json>& body);
  Reply serveWrite(const Call& call, const Endpoint& endpoint, const std::optional<Json>& body);

  // The endpoints (CommerceEndpoints.cpp); called with the mutex held.
  std::optional<Reply> authorize(const Call& call) const;
  Reply paymentAccounts(const Endpoint& endpoint) const;
  Reply createOrder(const Endpoint& endpoint, const std::optional<Json>& body);
  Reply contract(const Endpoint& endpoint, const std::optional<Json>& body);
  Reply checkout(const Call& call, const Endpoint& endpoint, const std::optional<Json>& body);
  Reply routing(const Call& call) const;
  /// The order of the path, or the refusal (404 unknown, 403 not the guest's).
  std::variant<Order*, Reply> ownOrder(const Endpoint& endpoint);
  /// The stored card that a contract or checkout body pays with, or the refusal.
  std::variant<const Json*, Reply> payingAccount(const Order& order, const std::optional<Json>& body) const;

  MockCommerceOptions options_;
  Household household_;

  mutable std::mutex mutex_;
  std::string baseUrl_;
  std::map<std::string, std::deque<Fault>> faults_;
  std::vector<RouteFault> routeFaults_;
  std::deque<Json> journal_;
  std::map<std::string, Order> orders_;
  std::set<std::string> renewedPasses_;
  std::map<std::string, StoredReply> idempotencyKeys_;
  long orderCount_ = 0;
  bool stopping_ = false;
  std::condition_variable stopped_;
};

/// A reply with a JSON body.
Reply jsonReply(int status, const Json& body);
/// The parsed body; none when it is empty or not JSON within the JSON limits
/// (varnel/platform/Json.h: size, nesting).
std::optional<Json> parseBody(const std::string& body);

}  // namespace varnel::mock
