// Every scripted fault of the mock commerce service on each of the four
// requests, over loopback HTTP: which callback runs (or none), with which
// error, what the module logs, and what a checkout charged. The mock's own
// answer to each fault kind is proven here, through the module that reads it.

#include <algorithm>

#include <gmock/gmock.h>

#include "support/CommerceOverHttp.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/mock/MockFault.h"
#include "varnel/standalone/network/NetworkErrors.h"

namespace varnel::testing {
namespace {

using standalone::kHTTPErrorDomain;
using standalone::kNetworkErrorDomain;

enum class Request { accounts, createOrder, contract, checkout };

const char* endpointKey(Request request) {
  switch (request) {
    case Request::accounts: return "get-payment-accounts";
    case Request::createOrder: return "create-orders";
    case Request::contract: return "create-contract";
    case Request::checkout: return "create-order-purchase";
  }
  return "";
}

enum class Ran { success, failure, neither };

struct Row {
  Request request;
  std::string fault;
  Ran ran;
  /// success: the value is an array (else an object).
  bool arrayValue = false;
  /// failure: the error's domain ("" when the failure carries no error) and
  /// the commerce error a host reads from it (the error itself when it is
  /// one, else through the booking-service mapping).
  std::string errorDomain;
  std::optional<APError> commerceError;
  /// Starts of the module's log lines for this outcome.
  std::vector<std::string> logs;
  /// checkout: how often the order was charged.
  std::optional<int> charges;
};

Row succeeds(Request request, std::string fault, bool arrayValue = false, std::optional<int> charges = {}) {
  return {request, std::move(fault), Ran::success, arrayValue, "", std::nullopt, {}, charges};
}
Row fails(Request request, std::string fault, std::string domain, std::optional<APError> commerceError,
          std::vector<std::string> logs = {}, std::optional<int> charges = {}) {
  return {request, std::move(fault), Ran::failure, false, std::move(domain), commerceError, std::move(logs), charges};
}
Row silent(Request request, std::string fault, std::optional<int> charges = {}) {
  return {request, std::move(fault), Ran::neither, false, "", std::nullopt, {}, charges};
}

// The module's failure lines; a row lists those it expects, none other may appear.
const std::vector<std::string> kFailureLines = {"Sorry, Service Failed!", "An Error Occurred", "error=",
                                                "statusCode should be 200, but is ", "response = "};

std::vector<Row> faultTable() {
  using enum Request;
  using E = APError;
  const std::string ap = kAPErrorDomain;
  const std::string http = kHTTPErrorDomain;
  const std::string net = kNetworkErrorDomain;
  const std::vector<std::string> order = {"Sorry, Service Failed!"};
  const std::vector<std::string> paying = {"An Error Occurred"};
  const std::vector<std::string> lost = {"error="};
  auto refused = [](int status) {
    return std::vector<std::string>{"statusCode should be 200, but is " + std::to_string(status), "response = "};
  };
  return {
      // Payment accounts: the host's value or error as it is.
      fails(accounts, "booking:SYSTEM_ERROR", http, E::SYSTEM_ERROR),
      fails(accounts, "residency:072316", http, E::NonCAResident),
      fails(accounts, "status:503", http, E::GeneralBookingServiceError),
      succeeds(accounts, "status:201"),
      succeeds(accounts, "delay:20"),
      fails(accounts, "reset", net, E::ConnectionError),
      fails(accounts, "reset-after", net, E::ConnectionError),
      fails(accounts, "empty", net, E::ConnectionError),
      fails(accounts, "malformed", net, std::nullopt),
      succeeds(accounts, "array", true),
      // Create order: failures mapped, anything but an object dropped.
      fails(createOrder, "booking:PAYMENT_DECLINED", ap, E::PAYMENT_DECLINED, order),
      fails(createOrder, "residency:072313", ap, E::NonSCAResident, order),
      fails(createOrder, "status:503", ap, E::GeneralBookingServiceError, order),
      succeeds(createOrder, "status:201"),
      succeeds(createOrder, "delay:20"),
      fails(createOrder, "reset", ap, E::ConnectionError, order),
      fails(createOrder, "reset-after", ap, E::ConnectionError, order),
      fails(createOrder, "empty", ap, E::ConnectionError, order),
      fails(createOrder, "malformed", net, std::nullopt, order),
      silent(createOrder, "array"),
      // Contract: any status but 200 fails with no error, a body that is not JSON calls nothing.
      fails(contract, "booking:SYSTEM_UNAVAILABLE", "", std::nullopt, refused(500)),
      fails(contract, "residency:072312", "", std::nullopt, refused(400)),
      fails(contract, "status:503", "", std::nullopt, refused(503)),
      fails(contract, "status:201", "", std::nullopt, refused(201)),
      succeeds(contract, "delay:20"),
      fails(contract, "reset", net, E::ConnectionError, lost),
      fails(contract, "reset-after", net, E::ConnectionError, lost),
      fails(contract, "empty", net, E::ConnectionError, lost),
      silent(contract, "malformed"),
      succeeds(contract, "array", true),
      // Checkout: failures mapped, the value passed on as it is.
      fails(checkout, "booking:PAYMENT_BAD_EXPIRATION_DATE", ap, E::PAYMENT_BAD_EXPIRATION_DATE, paying, 0),
      fails(checkout, "residency:072312", ap, E::NonFLResident, paying, 0),
      fails(checkout, "status:503", ap, E::GeneralBookingServiceError, paying, 0),
      succeeds(checkout, "status:201", false, 0),
      succeeds(checkout, "delay:20", false, 1),
      fails(checkout, "reset", ap, E::ConnectionError, paying, 0),
      fails(checkout, "reset-after", ap, E::ConnectionError, paying, 1),
      fails(checkout, "empty", ap, E::ConnectionError, paying, 0),
      fails(checkout, "malformed", net, std::nullopt, paying, 0),
      succeeds(checkout, "array", true, 0),
  };
}

class FaultsOverHttpTest : public CommerceOverHttpTest {
 protected:
  Outcome send(Request request, const std::string& orderId) {
    switch (request) {
      case Request::accounts: return accounts();
      case Request::createOrder: return createOrder();
      case Request::contract: return contract(orderId);
      case Request::checkout: return checkout(orderId);
    }
    return {};
  }
};

TEST_F(FaultsOverHttpTest, EachFaultReachesTheCallbackTheRequestPromises) {
  for (const Row& row : faultTable()) {
    const std::string label = std::string(endpointKey(row.request)) + "=" + row.fault;
    SCOPED_TRACE(label);
    ASSERT_NO_FATAL_FAILURE(start(sampleGuest(), sampleGuest().kuid));
    log->clear();
    const bool needsOrder = row.request == Request::contract || row.request == Request::checkout;
    const std::string orderId = needsOrder ? placeOrder() : "";
    auto fault = mock::EndpointFault::parse(label);
    ASSERT_TRUE(fault.ok());
    ASSERT_FALSE(server->setFault(fault.value()));

    const Outcome outcome = send(row.request, orderId);

    EXPECT_FALSE(requestsTo(endpointKey(row.request)).empty());
    switch (row.ran) {
      case Ran::success:
        EXPECT_TRUE(outcome.onlySucceeded());
        EXPECT_TRUE(outcome.value && outcome.value->is_array() == row.arrayValue &&
                    outcome.value->is_object() == !row.arrayValue);
        break;
      case Ran::neither:
        EXPECT_TRUE(outcome.silent());
        break;
      case Ran::failure:
        EXPECT_TRUE(outcome.onlyFailed());
        if (row.errorDomain.empty()) {
          EXPECT_FALSE(outcome.error.has_value());
        } else if (!outcome.error) {
          ADD_FAILURE() << "no error";
        } else if (row.errorDomain == kAPErrorDomain) {
          EXPECT_EQ(*outcome.error, toError(row.commerceError.value()));
        } else {
          EXPECT_EQ(outcome.error->domain, row.errorDomain);
          EXPECT_EQ(APBookingServiceError(*outcome.error), row.commerceError);
          // The status the mock answered with is the error's code.
          if (row.errorDomain == kHTTPErrorDomain && row.fault.starts_with("status:")) {
            EXPECT_EQ(outcome.error->code, std::stol(row.fault.substr(7)));
          }
        }
        break;
    }
    for (const std::string& start : kFailureLines) {
      const auto expected = std::count_if(row.logs.begin(), row.logs.end(),
                                          [&](const std::string& line) { return line.starts_with(start); });
      EXPECT_EQ(logLinesStartingWith(start).size(), static_cast<std::size_t>(expected)) << start;
    }
    for (const std::string& line : row.logs) EXPECT_EQ(logLinesStartingWith(line).size(), 1u) << line;
    if (row.charges) {
      EXPECT_EQ(server->charges().at(orderId), *row.charges);
    }
  }
}

TEST_F(FaultsOverHttpTest, TheModuleLogsTheErrorItFailsWith) {
  // The checkout's line carries the error's description as an optional.
  server->setFault(mock::EndpointFault::parse("create-order-purchase=status:503").value());
  ASSERT_TRUE(checkout("ORD000001").onlyFailed());
  EXPECT_THAT(logLinesStartingWith("An Error Occurred"),
              ::testing::ElementsAre("An Error OccurredOptional(\"The service answered with HTTP status 503\")"));
}

}  // namespace
}  // namespace varnel::testing
