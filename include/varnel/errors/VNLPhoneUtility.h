#pragma once
// The renewal help phone number of each resort.

#include <optional>
#include <string>
#include <string_view>

#include "varnel/errors/APError.h"
#include "varnel/host/KTVCParkResortContext.h"

namespace varnel {

/// String-table keys whose texts are the resorts' help phone numbers.
struct VNLAPRenewalsHelpPhoneNumberKeys {
  static constexpr std::string_view zlt = "com.varnel.serviceError.ap.helpPhoneNumber.zlt";  // west resort
  static constexpr std::string_view oqs = "com.varnel.serviceError.ap.helpPhoneNumber.oqs";  // east resort
};

struct VNLPhoneUtility {
  /// The localized help number of the west (1) or east (2) resort; none, with
  /// a debug line, for any other park. The error does not change the number.
  static std::optional<std::string> APPhoneNumber(APError error, KTVCResortChoice park);
};

}  // namespace varnel
