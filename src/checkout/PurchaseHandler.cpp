#include "varnel/checkout/PurchaseHandler.h"

#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/host/KTVRAuthenticationService.h"
#include "varnel/host/KTVRPrivateDataService.h"
#include "varnel/host/KTVRUserProfileAuthentication.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/VNLParseUpdateSubmitResponse.h"

namespace varnel {
namespace {

using Keys = PurchaseHandler::ParameterDictionaryConstants;

Json optionalText(const std::optional<std::string>& text) { return text ? Json(*text) : Json(); }

std::string key(std::string_view name) { return std::string(name); }

LogSite handlerSite(const char* function, int line) {
  return LogSite{"Classes/Handlers/PurchaseHandler", function, line};
}

Json paymentCard(const PaymentAccount& account) {
  const CreditCard& card = account.creditCard();
  const CardGuestDetails& holder = account.guestDetails();
  const KTVRAddress* address = account.cardHolderAddress().get();
  if (!address || !address->state || !address->country) {
    KTVCPrintUtility::errorPrint("The card holder's address must have a state and a country",
                                 handlerSite("parameterDictionaryForPurchase(paymentAccount:renewalOrder:)", __LINE__));
  }
  const std::optional<std::string> noText;
  Json billingAddress{
      {key(Keys::line1Key), optionalText(address ? address->line1 : noText)},
      {key(Keys::line2Key), optionalText(address ? address->line2 : noText)},
      {key(Keys::cityKey), optionalText(address ? address->city : noText)},
      {key(Keys::stateKey), optionalText(address && address->state ? address->state->code : noText)},
      {key(Keys::postalCodeKey), optionalText(address ? address->zipCode : noText)},
      {key(Keys::countryKey), optionalText(address && address->country ? address->country->code : noText)}};
  return Json{{key(Keys::cardSubTypeKey), card.paymentMethod()},
              {key(Keys::cardholderNameKey), holder.firstName() + " " + holder.lastName()},
              {key(Keys::cvvKey), card.hasSecurityCode() ? *card.securityCode() : key(Keys::tempraryCVV)},
              {key(Keys::referenceIdKey), card.retrievalReferenceNumber()},
              {key(Keys::referenceKey), card.retrievalReferenceKey()},
              {key(Keys::paymentCardScanKey), card.isScanned()},
              {key(Keys::billingNameKey), Json{{key(Keys::firstNameKey), holder.firstName()},
                                               {key(Keys::lastNameKey), holder.lastName()},
                                               {key(Keys::prefixkey), ""},
                                               {key(Keys::middleNameKey), ""},
                                               {key(Keys::suffixKey), ""}}},
              {key(Keys::billingAddressKey), std::move(billingAddress)}};
}

Json billingPhone(const PaymentAccount& account) {
  const KTVRAddress* address = account.cardHolderAddress().get();
  std::optional<KTVRAddress::Phone> phone;
  if (address) phone = address->mobilePhone ? address->mobilePhone : address->phoneNumber;
  return Json{{key(Keys::typeKey), phone ? phone->type.value_or("") : ""},
              {key(Keys::numberKey), phone ? phone->number.value_or("") : ""}};
}

std::optional<std::string> signedInEmail() {
  auto authentication = KTVRAuthenticationService::sharedInstance();
  return authentication ? authentication->email() : std::nullopt;
}

std::optional<std::string> profileEmail() {
  auto profile = KTVRUserProfileAuthentication::sharedInstance();
  auto email = profile ? profile->email() : std::nullopt;
  if (!email) {
    KTVCPrintUtility::errorPrint("The signed-in profile has no e-mail address",
                                 handlerSite("parameterDictionaryForPurchase(paymentAccount:renewalOrder:)", __LINE__));
  }
  return email;
}

}  // namespace

std::shared_ptr<PurchaseHandler> PurchaseHandler::create() {
  return std::shared_ptr<PurchaseHandler>(new PurchaseHandler());
}

std::shared_ptr<PurchaseHandlerDelegate> PurchaseHandler::delegate() const {
  std::lock_guard lock(mutex_);
  return delegate_.lock();
}

void PurchaseHandler::setDelegate(std::weak_ptr<PurchaseHandlerDelegate> delegate) {
  std::lock_guard lock(mutex_);
  delegate_ = std::move(delegate);
}

std::optional<RenewalConfirmation> PurchaseHandler::purchaseResults() const {
  std::lock_guard lock(mutex_);
  return purchaseResults_;
}

bool PurchaseHandler::isProcessingTransaction() const {
  std::lock_guard lock(mutex_);
  return processingTransaction_;
}

Json PurchaseHandler::parameterDictionaryForPurchase(const PaymentAccount& paymentAccount,
                                                     const RenewalOrder& renewalOrder) {
  const Json amount = renewalOrder.paymentPlan ? Json("0") : optionalText(renewalOrder.pricing.total);
  Json payment{{key(Keys::paymentCardKey), paymentCard(paymentAccount)},
               {key(Keys::billingPhoneKey), billingPhone(paymentAccount)},
               {key(Keys::amountKey), amount},
               {key(Keys::currencyKey), renewalOrder.pricing.currency},
               {key(Keys::billingEmailKey), optionalText(signedInEmail())}};
  const Json email = optionalText(profileEmail());
  Json confirmation{{key(Keys::emailKey), email},
                    {key(Keys::confirmEmailKey), email},
                    {key(Keys::agentEmailKey), key(Keys::agentEmailValue)},
                    {key(Keys::agentConfirmEmailKey), key(Keys::agentEmailValue)}};
  return Json{{key(Keys::paymentsKey), Json::array({std::move(payment)})},
              {key(Keys::confirmationEmailsKey), Json::array({std::move(confirmation)})},
              {key(Keys::bookingTermsAndConditionsKey), renewalOrder.bookingTermsAndConditions}};
}

void PurchaseHandler::beginPurchaseTransaction(const std::string& orderId, const PaymentAccount& paymentAccounts,
                                               const RenewalOrder& renewalOrder) {
  {
    std::lock_guard lock(mutex_);
    if (processingTransaction_) return;
    processingTransaction_ = true;
  }
  const Json body = parameterDictionaryForPurchase(paymentAccounts, renewalOrder);
  auto service = KTVRPrivateDataService::sharedInstance();
  if (!service) return;  // stays busy: later calls are ignored as well
  std::weak_ptr<PurchaseHandler> weakSelf = weak_from_this();
  createExpressCheckout(
      *service, orderId, body,
      [weakSelf](const std::optional<Json>& results) {
        if (auto self = weakSelf.lock()) self->serviceSuccess(results);
      },
      [weakSelf](const std::optional<Error>& error) {
        if (auto self = weakSelf.lock()) self->serviceError(error);
      });
}

void PurchaseHandler::serviceSuccess(const std::optional<Json>& results) {
  if (results && results->is_object()) {
    RenewalConfirmation confirmation = VNLParseUpdateSubmitResponse().parse(*results);
    std::lock_guard lock(mutex_);
    purchaseResults_ = std::move(confirmation);
    processingTransaction_ = false;
  }
  if (auto listener = delegate()) listener->purchaseHandlerDidComplete(*this);
}

void PurchaseHandler::serviceError(const std::optional<Error>& error) {
  if (!error) return;
  {
    std::lock_guard lock(mutex_);
    purchaseResults_.reset();
    processingTransaction_ = false;
  }
  if (auto listener = delegate()) listener->purchaseHandlerDidFail(*error, *this);
}

}  // namespace varnel
