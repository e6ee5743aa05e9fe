#pragma once
// A mock commerce server on a free loopback port serving the sample
// household, and the requests a client of it sends.

#include <gtest/gtest.h>
#include <httplib.h>
#include <strings.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "varnel/mock/MockCommerceServer.h"

namespace varnel::mock::testing {

inline constexpr const char* kGuestKuid = "guest-4f21-aa07";
inline constexpr const char* kToken = "mock-token-4f21aa07-5d8c";

inline standalone::GuestData sampleGuest() {
  auto guest = standalone::readGuestDataFile(std::string(VARNEL_TEST_RESOURCE_DIR) + "/guests/sample-guest.json");
  EXPECT_TRUE(guest.ok());
  return guest ? guest.value() : standalone::GuestData{};
}

/// The create-order body for one pass.
inline Json orderBody(const std::string& entitlementId, bool paymentPlan) {
  return Json{{"kuid", kGuestKuid},
              {"products", Json::array({Json{{"categoryId", "AnnualPassRenewal"},
                                             {"quantity", 1},
                                             {"entitlementId", entitlementId},
                                             {"guestIdType", "kuid"},
                                             {"guestId", kGuestKuid}}})},
              {"destinationId", "80007798"},
              {"storeId", "oqs_mobile"},
              {"paymentPlan", paymentPlan}};
}

/// The express-checkout (and contract) body paying `amount` with a stored card.
inline Json checkoutBody(const std::string& amount, const std::string& cardReference = "CARD-REF-0001",
                         const std::string& cardKey = "7d1e0c") {
  Json card{{"cardSubType", "VISA"}, {"cardholderName", "Rowan Ashby"}, {"cvv2", "418"},
            {"id", cardReference},   {"key", cardKey},                   {"paymentCardScan", false}};
  return Json{{"payments", Json::array({Json{{"paymentReference", card},
                                             {"billingPhone", {{"type", "MOBILE"}, {"number", "999-555-0188"}}},
                                             {"amount", amount},
                                             {"currency", "USD"},
                                             {"billingEmail", "rowan.ashby@example.test"}}})},
              {"confirmationEmails", Json::array({Json{{"email", "rowan.ashby@example.test"}}})},
              {"bookingTermsAndConditions", "terms"}};
}

class MockCommerceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    MockCommerceOptions options;
    options.guest = sampleGuest();
    startServer(std::move(options));
  }

  void startServer(MockCommerceOptions options) {
    server_.reset();
    auto started = MockCommerceServer::start(std::move(options));
    ASSERT_TRUE(started.ok());
    server_ = std::move(started.value());
  }

  MockCommerceServer& server() { return *server_; }

  httplib::Client client() {
    httplib::Client client("127.0.0.1", server_->port());
    client.set_read_timeout(10, 0);
    return client;
  }

  httplib::Headers auth(const std::string& token = kToken) { return {{"Authorization", "Bearer " + token}}; }

  httplib::Result post(const std::string& path, const Json& body, httplib::Headers headers = {}) {
    if (headers.empty()) headers = auth();
    return client().Post(path.c_str(), headers, body.dump(), "application/json");
  }

  /// Creates an order and gives its id (empty on failure).
  std::string createOrder(const std::string& entitlementId = "AP-100201", bool paymentPlan = true) {
    auto result = post(std::string("/commerce/guests/") + kGuestKuid + "/orders", orderBody(entitlementId, paymentPlan));
    if (!result || result->status != 200) return "";
    return Json::parse(result->body).value("id", "");
  }

  static std::string checkoutPath(const std::string& orderId) { return "/commerce/orders/" + orderId + "/express-checkout"; }

  static Json bodyOf(const httplib::Result& result) {
    return result ? Json::parse(result->body, nullptr, false) : Json();
  }
  static std::string typeIdOf(const httplib::Result& result) {
    Json body = bodyOf(result);
    return body.is_object() && body.contains("errors") ? body["errors"][0].value("typeId", "") : "";
  }

  std::unique_ptr<MockCommerceServer> server_;
};

/// The value of header `name` (any case) of a journalled request; none when absent.
inline std::optional<std::string> headerOf(const Json& request, std::string_view name) {
  const Json* headers = jsonMember(request, "headers");
  if (!headers || !headers->is_object()) return std::nullopt;
  for (const auto& [key, value] : headers->items()) {
    if (key.size() == name.size() && strncasecmp(key.data(), name.data(), name.size()) == 0 && value.is_string()) {
      return value.get<std::string>();
    }
  }
  return std::nullopt;
}

}  // namespace varnel::mock::testing
