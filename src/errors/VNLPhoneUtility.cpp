#include "varnel/errors/VNLPhoneUtility.h"

#include "varnel/errors/VarnelLocalizedString.h"
#include "varnel/host/KTVCPrintUtility.h"

namespace varnel {

std::optional<std::string> VNLPhoneUtility::APPhoneNumber(APError /*error*/, KTVCResortChoice park) {
  switch (park) {
    case kResortChoiceWest: return VarnelLocalizedStringForKey(VNLAPRenewalsHelpPhoneNumberKeys::zlt);
    case kResortChoiceEast: return VarnelLocalizedStringForKey(VNLAPRenewalsHelpPhoneNumberKeys::oqs);
    default:
      KTVCPrintUtility::debugPrint("Unknown Park used",
                                   LogSite{"Classes/VNLPhoneUtility", "APPhoneNumber(for:for:)", __LINE__});
      return std::nullopt;
  }
}

}  // namespace varnel
