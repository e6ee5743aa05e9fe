// The purchase handler against the mock commerce service over loopback HTTP:
// what each misbehaviour of the checkout endpoint makes of the handler, and
// that an order is charged once whatever the guest or the network does.

#include <gtest/gtest.h>

#include "checkout/RenewalOverHttp.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/mock/MockFault.h"
#include "varnel/platform/Describe.h"
#include "varnel/standalone/network/NetworkErrors.h"

namespace varnel::testing {
namespace {

constexpr const char* kCheckoutEndpoint = "create-order-purchase";

class PurchaseOverHttpTest : public RenewalOverHttpTest {
 protected:
  /// A handler with a recording delegate, checking out `order` with `account`.
  struct Checkout {
    std::shared_ptr<PurchaseHandler> handler = PurchaseHandler::create();
    std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
  };
  Checkout checkout(const RenewalOrder& order, const PaymentAccount& account) {
    Checkout started;
    started.handler->setDelegate(started.delegate);
    started.handler->beginPurchaseTransaction(order.orderId, account, order);
    settle();
    return started;
  }

  void addFault(const std::string& kind) {
    auto fault = mock::Fault::parse(kind);
    ASSERT_TRUE(fault.ok()) << kind;
    ASSERT_FALSE(server->setFault({kCheckoutEndpoint, fault.value()})) << kind;
  }
};

/// The commerce error a failure carries, by its error domain and code.
std::optional<APError> apErrorCarried(const Error& error) {
  if (error.domain != kAPErrorDomain) return std::nullopt;
  return apErrorFromRawValue(static_cast<int>(error.code));
}

TEST_F(PurchaseOverHttpTest, EachCheckoutFaultReachesTheDelegateAsItShould) {
  enum class Told { completed, failed, nothing };
  struct Row {
    const char* fault;
    Told told;
    std::optional<APError> error;  // of a failure; none: the networking's own error
    bool idleAfter;
    int charges;
  };
  // One row per kind of answer: how each code maps is proven where errors are
  // mapped, and the declined card below.
  const Row rows[] = {
      {"booking:CART_LOCKED", Told::failed, APError::GeneralBookingServiceError, true, 0},
      {"residency:072316", Told::failed, APError::NonCAResident, true, 0},
      {"status:503", Told::failed, APError::GeneralBookingServiceError, true, 0},
      {"reset", Told::failed, APError::ConnectionError, true, 0},
      {"malformed", Told::failed, std::nullopt, true, 0},
      // An answer that is not an object confirms nothing: the handler stays busy.
      {"array", Told::completed, std::nullopt, false, 0},
      // Transport failures the retries get past.
      {"reset*1", Told::completed, std::nullopt, true, 1},
      {"empty*2", Told::completed, std::nullopt, true, 1},
      {"delay:20", Told::completed, std::nullopt, true, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.fault);
    restart();
    const RenewalOrder order = placeOrder(false);
    const PaymentAccount card = storedCard("CARD-REF-0001", "123");
    addFault(row.fault);
    const Checkout done = checkout(order, card);
    const auto failures = done.delegate->failures();
    EXPECT_EQ(done.delegate->completions(), row.told == Told::completed ? 1 : 0);
    ASSERT_EQ(failures.size(), row.told == Told::failed ? 1u : 0u);
    if (row.told == Told::failed) {
      EXPECT_EQ(apErrorCarried(failures[0]), row.error) << describe(failures[0]);
      if (!row.error) {
        EXPECT_EQ(failures[0].domain, standalone::kNetworkErrorDomain);
      }
    }
    EXPECT_EQ(done.handler->isProcessingTransaction(), !row.idleAfter);
    EXPECT_EQ(done.handler->purchaseResults().has_value(), row.told == Told::completed && row.idleAfter);
    EXPECT_EQ(chargesOf(order.orderId), row.charges);
  }
}

TEST_F(PurchaseOverHttpTest, RepeatedTapsWhileInFlightSendOneCheckout) {
  const RenewalOrder order = placeOrder(false);
  const PaymentAccount card = storedCard("CARD-REF-0001");
  addFault("delay:200*1");  // keeps the first checkout in flight while the guest taps on
  auto handler = PurchaseHandler::create();
  auto delegate = std::make_shared<RecordingDelegate>();
  handler->setDelegate(delegate);
  for (int tap = 0; tap < 100; ++tap) handler->beginPurchaseTransaction(order.orderId, card, order);
  settle();
  EXPECT_EQ(requestsTo(kCheckoutEndpoint).size(), 1u);
  EXPECT_EQ(chargesOf(order.orderId), 1);
  EXPECT_EQ(delegate->completions(), 1);
  EXPECT_TRUE(delegate->failures().empty());
  ASSERT_TRUE(handler->purchaseResults());
  EXPECT_FALSE(handler->purchaseResults()->confirmationNumber().empty());
}

TEST_F(PurchaseOverHttpTest, TwoHandlersChargeAnOrderOnce) {
  const RenewalOrder order = placeOrder(false);
  const PaymentAccount card = storedCard("CARD-REF-0001");
  const Checkout first = checkout(order, card);
  const Checkout second = checkout(order, card);
  EXPECT_EQ(chargesOf(order.orderId), 1);
  EXPECT_EQ(first.delegate->completions(), 1);
  ASSERT_EQ(second.delegate->failures().size(), 1u);
  EXPECT_EQ(second.delegate->completions(), 0);
  EXPECT_FALSE(second.handler->isProcessingTransaction());
  EXPECT_FALSE(second.handler->purchaseResults());
  // The service's "order already purchased" has no commerce error of its own:
  // the guest is told the general service message.
  EXPECT_EQ(apErrorCarried(second.delegate->failures()[0]), APError::GeneralBookingServiceError);
}

TEST_F(PurchaseOverHttpTest, LostAnswerIsRecoveredWithoutASecondCharge) {
  const RenewalOrder order = placeOrder(false);
  const PaymentAccount card = storedCard("CARD-REF-0001");
  addFault("reset-after*1");
  const Checkout done = checkout(order, card);
  const auto sent = requestsTo(kCheckoutEndpoint);
  ASSERT_EQ(sent.size(), 2u);
  EXPECT_EQ(headerOf(sent[0], "Idempotency-Key"), headerOf(sent[1], "Idempotency-Key"));
  EXPECT_TRUE(headerOf(sent[0], "Idempotency-Key"));
  EXPECT_EQ(chargesOf(order.orderId), 1);
  EXPECT_EQ(done.delegate->completions(), 1);
  EXPECT_TRUE(done.delegate->failures().empty());
  ASSERT_TRUE(done.handler->purchaseResults());
  EXPECT_FALSE(done.handler->purchaseResults()->confirmationNumber().empty());
  EXPECT_FALSE(done.handler->isProcessingTransaction());
}

TEST_F(PurchaseOverHttpTest, DeclinedCardChargesNothingAndFreesTheHandler) {
  const RenewalOrder order = placeOrder(false);
  const Checkout declined = checkout(order, storedCard("CARD-REF-0003", "123"));
  ASSERT_EQ(declined.delegate->failures().size(), 1u);
  EXPECT_EQ(apErrorCarried(declined.delegate->failures()[0]), APError::PAYMENT_DECLINED);
  EXPECT_EQ(chargesOf(order.orderId), 0);
  // The guest picks another card and the same handler checks out.
  declined.handler->beginPurchaseTransaction(order.orderId, storedCard("CARD-REF-0001"), order);
  settle();
  EXPECT_EQ(declined.delegate->completions(), 1);
  EXPECT_EQ(chargesOf(order.orderId), 1);
}

}  // namespace
}  // namespace varnel::testing
