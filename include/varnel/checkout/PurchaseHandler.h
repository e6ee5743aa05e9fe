#pragma once
// The last step of a renewal: the express checkout of an order with the
// card the guest chose. One checkout at a time; the outcome reaches the
// delegate on the thread the private data service answers on.
//
//   auto handler = PurchaseHandler::create();
//   handler->setDelegate(myDelegate);                  // held weakly
//   handler->beginPurchaseTransaction(order.orderId, account, order);
//
// The handler validates nothing: the guest's checks (CheckoutChecks) come
// first. A second call while a checkout is in flight is ignored. Without a
// private data service nothing is sent and the handler stays busy, so every
// later call is ignored too. A success whose answer is absent or not an
// object is reported to the delegate but leaves the handler busy, so that a
// repeated submission cannot charge twice; only a failure or a parsed
// confirmation makes it idle again.

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "varnel/platform/Error.h"
#include "varnel/platform/Json.h"
#include "varnel/purchase/PaymentAccount.h"
#include "varnel/purchase/RenewalConfirmation.h"
#include "varnel/purchase/RenewalOrder.h"

namespace varnel {

class PurchaseHandler;

class PurchaseHandlerDelegate {
 public:
  virtual ~PurchaseHandlerDelegate() = default;
  /// The express checkout answered with success.
  virtual void purchaseHandlerDidComplete(PurchaseHandler& handler) = 0;
  /// The express checkout failed; `error` is what the request reported (a
  /// commerce error as a platform error, or the service's own).
  virtual void purchaseHandlerDidFail(const Error& error, PurchaseHandler& handler) = 0;
};

class PurchaseHandler : public std::enable_shared_from_this<PurchaseHandler> {
 public:
  /// Keys and fixed values of the express-checkout body.
  struct ParameterDictionaryConstants {
    static constexpr std::string_view cardSubTypeKey = "cardSubType";
    static constexpr std::string_view cardholderNameKey = "cardholderName";
    static constexpr std::string_view cvvKey = "cvv2";
    /// Sent as "cvv2" when the card has no security code.
    static constexpr std::string_view tempraryCVV = "418";
    static constexpr std::string_view referenceIdKey = "id";
    static constexpr std::string_view referenceKey = "key";
    static constexpr std::string_view paymentCardScanKey = "paymentCardScan";
    static constexpr std::string_view billingNameKey = "billingName";
    static constexpr std::string_view firstNameKey = "firstName";
    static constexpr std::string_view lastNameKey = "lastName";
    static constexpr std::string_view prefixkey = "prefix";
    static constexpr std::string_view middleNameKey = "middleName";
    static constexpr std::string_view suffixKey = "suffix";
    static constexpr std::string_view billingAddressKey = "billingAddress";
    static constexpr std::string_view line1Key = "line1";
    static constexpr std::string_view line2Key = "line2";
    static constexpr std::string_view cityKey = "city";
    static constexpr std::string_view stateKey = "stateOrProvince";
    static constexpr std::string_view postalCodeKey = "postalCode";
    static constexpr std::string_view countryKey = "country";
    static constexpr std::string_view typeKey = "type";
    static constexpr std::string_view numberKey = "number";
    static constexpr std::string_view paymentCardKey = "paymentReference";
    static constexpr std::string_view billingPhoneKey = "billingPhone";
    static constexpr std::string_view amountKey = "amount";
    static constexpr std::string_view currencyKey = "currency";
    static constexpr std::string_view billingEmailKey = "billingEmail";
    static constexpr std::string_view paymentsKey = "payments";
    static constexpr std::string_view emailKey = "email";
    static constexpr std::string_view confirmEmailKey = "confirmEmail";
    static constexpr std::string_view agentEmailKey = "agentEmail";
    static constexpr std::string_view agentConfirmEmailKey = "agentConfirmEmail";
    /// A placeholder the service fills in; sent as it stands.
    static constexpr std::string_view agentEmailValue = "${agent.confirm.email}";
    static constexpr std::string_view confirmationEmailsKey = "confirmationEmails";
    static constexpr std::string_view bookingTermsAndConditionsKey = "bookingTermsAndConditions";
  };

  /// init(): no delegate, no results, idle.
  static std::shared_ptr<PurchaseHandler> create();

  std::shared_ptr<PurchaseHandlerDelegate> delegate() const;
  void setDelegate(std::weak_ptr<PurchaseHandlerDelegate> delegate);

  /// The confirmation of the last successful checkout, until a failure clears it.
  std::optional<RenewalConfirmation> purchaseResults() const;

  /// Submits the express checkout of `orderId` (see the class comment).
  void beginPurchaseTransaction(const std::string& orderId, const PaymentAccount& paymentAccounts,
                                const RenewalOrder& renewalOrder);

  /// The express-checkout body: the card with its holder and billing address,
  /// the billing phone (the mobile phone, else the address's phone), the
  /// amount ("0" on a monthly plan, else the order's total), the currency, the
  /// guests' confirmation e-mails and the order's terms. An address without a
  /// state or country, or a profile without an e-mail, is a programming error
  /// of the host: it is logged and the value is sent as absent.
  static Json parameterDictionaryForPurchase(const PaymentAccount& paymentAccount, const RenewalOrder& renewalOrder);

  /// The handling of the express checkout's two answers.
  void serviceSuccess(const std::optional<Json>& results);
  void serviceError(const std::optional<Error>& error);

  /// A checkout is in flight.
  bool isProcessingTransaction() const;

 private:
  PurchaseHandler() = default;

  mutable std::mutex mutex_;
  std::weak_ptr<PurchaseHandlerDelegate> delegate_;
  std::optional<RenewalConfirmation> purchaseResults_;
  bool processingTransaction_ = false;
};

}  // namespace varnel
