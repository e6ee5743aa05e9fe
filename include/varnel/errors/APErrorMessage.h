#pragma once
// The guest-facing text of a commerce error at a resort.

#include <string>

#include "varnel/errors/APError.h"
#include "varnel/host/KTVCParkResortContext.h"

namespace varnel {

struct APErrorMessage {
  /// The string-table key of the error's message at `park`. Empty for the
  /// connection error and for a residency error at a resort it does not
  /// apply to (Florida residency: east only; California ones: west only).
  static std::string localizationKey(APError error, KTVCResortChoice park);

  /// The localized message; when the resort has a help phone number, the text
  /// is a format whose one "%@" receives it.
  static std::string message(APError error, KTVCResortChoice park);
};

}  // namespace varnel
