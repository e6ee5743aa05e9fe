#include "varnel/errors/APNotificationBanner.h"

#include "varnel/errors/APErrorMessage.h"
#include "varnel/errors/ErrorConstants.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/errors/VNLPhoneUtility.h"
#include "varnel/errors/VarnelLocalizedString.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/host/Registry.h"

namespace varnel {
namespace {

constexpr const char* kSource = "Classes/Errors/APNotificationBanner";
constexpr const char* kShowFunction = "showNotificationBanner(error:context:retryBlock:)";

constexpr std::string_view kTransactionalTitleKey = "com.varnel.checkout.transactionalError.title";
constexpr std::string_view kServiceTitleKey = "com.varnel.checkout.serviceError.title";
constexpr std::string_view kValidationTitleKey = "com.varnel.checkout.validationError.title";

/// The park value for the message: the resort values the host defines for
/// messages pass through; any other is logged (and then has no phone number).
KTVCResortChoice message(KTVCResortChoice resort) {
  switch (resort) {
    case kResortChoiceWest:
    case kResortChoiceEast:
    case kResortChoiceAlternate: return resort;
    default:
      KTVCPrintUtility::debugPrint("Unknown Park used",
                                   LogSite{kSource, "message(for:for:)", __LINE__});
      return resort;
  }
}

/// Errors whose message tells the guest not to try again get no retry action.
bool offersRetry(APError error) { return error != APError::ServiceErrorNoRetry; }

}  // namespace

void APNotificationBanner::showNotificationBanner(APError error, const std::shared_ptr<KTVCParkResortContext>& context,
                                                  KTVRRetryBlock retryBlock) {
  if (!context) {
    KTVCPrintUtility::debugPrint("KTVCParkResortContext must be supplied!",
                                 LogSite{kSource, kShowFunction, __LINE__});
    return;
  }
  const auto factory = host::Registry::get<KTVRNotificationBannerFactory>();
  if (!factory) {
    KTVCPrintUtility::debugPrint("No notification banner factory registered",
                                 LogSite{kSource, kShowFunction, __LINE__});
    return;
  }

  const KTVCResortChoice park = message(context->resortChoice());
  std::string text = APErrorMessage::message(error, park);

  std::shared_ptr<KTVRNotificationBanner> banner;
  if (isTransactionalError(error)) {
    banner = factory->transactionalErrorBanner(toError(error), VarnelLocalizedStringForKey(kTransactionalTitleKey),
                                               std::move(text));
  } else if (isSeviceError(error)) {
    const Error serviceError{std::string(ErrorConstants::errorDomain), rawValue(error), Json()};
    banner = factory->serviceErrorBanner(serviceError, VarnelLocalizedStringForKey(kServiceTitleKey), std::move(text));
    if (banner && retryBlock && offersRetry(error)) banner->setRetryBlock(std::move(retryBlock));
    if (banner) banner->setPhoneNumber(VNLPhoneUtility::APPhoneNumber(error, park));
  } else {
    banner = factory->validationErrorBanner(VarnelLocalizedStringForKey(kValidationTitleKey), std::move(text));
  }
  if (banner) banner->show();
}

}  // namespace varnel
