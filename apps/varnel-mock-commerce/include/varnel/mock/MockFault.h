#pragma once
// Scripted faults of the mock commerce service: how one endpoint, or every
// request carrying a given test-header value, misbehaves.
//
// A fault is written KIND or KIND*N (N > 0: only the next N requests):
//
//   booking:TYPEID   HTTP 500, {"errors":[{"typeId":TYPEID}]}
//   residency:CODE   HTTP 400, an unrecognised typeId and "systemErrorCode" CODE
//   status:CODE      that status (200-599) with a JSON error body naming it
//   delay:MS         answers MS milliseconds late, then normally
//   reset            the connection is reset; the request is not acted on
//   reset-after      the request is acted on (a checkout charges), then the
//                    connection is reset: the answer is lost
//   empty            the connection is closed before any byte of an answer
//   malformed        200 with a body that is not JSON
//   array            200 with a JSON array
//
// Every fault but delay and reset-after leaves the request unacted.

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "varnel/platform/Error.h"
#include "varnel/platform/Result.h"

namespace varnel::mock {

/// Domain of the mock's own errors (bad options, a port that cannot be bound).
inline constexpr const char* kMockCommerceErrorDomain = "Varnel.MockCommerce";

enum class MockCommerceErrorCode : long {
  /// An option, fault, route or guest file is not usable.
  badOption = 1,
  /// The server could not listen on the asked port.
  cannotListen = 2,
};

/// An Error of kMockCommerceErrorDomain whose user information holds "reason".
Error mockCommerceError(MockCommerceErrorCode code, std::string reason);

/// The endpoint keys the mock serves (the keys of resources/environments/mock.json).
inline constexpr std::array<std::string_view, 5> kMockEndpointKeys = {
    "get-payment-accounts", "create-orders", "create-contract", "create-order-purchase", "server-error-routing"};

bool isMockEndpointKey(std::string_view key);

enum class FaultKind { booking, residency, status, delay, reset, resetAfter, empty, malformed, array };

struct Fault {
  FaultKind kind = FaultKind::status;
  /// TYPEID of booking, CODE of residency.
  std::string text;
  /// CODE of status, MS of delay.
  int number = 0;
  /// Requests left when limited by *N; none for a fault that stays until cleared.
  std::optional<int> remaining;

  /// Reads KIND or KIND*N.
  static Result<Fault> parse(std::string_view text);
  /// The fault as parse reads it (with the requests left, if limited).
  std::string describe() const;

  friend bool operator==(const Fault&, const Fault&) = default;
};

/// A fault of one endpoint: --fault KEY=KIND.
struct EndpointFault {
  std::string endpoint;
  Fault fault;

  static Result<EndpointFault> parse(std::string_view text);
};

/// A fault for the requests whose "X-Orvane-Internal-Mock-AP" header has
/// `value`: --route-fault VALUE=KIND.
struct RouteFault {
  std::string value;
  Fault fault;

  static Result<RouteFault> parse(std::string_view text);
};

/// A tester's routing entry: the simulated endpoint and mock header value
/// that the routing service answers for `name`: --route NAME=ENDPOINT,HEADER.
struct Route {
  std::string name;
  std::string endpoint;
  std::string header;

  static Result<Route> parse(std::string_view text);
};

}  // namespace varnel::mock
