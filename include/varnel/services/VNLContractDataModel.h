#pragma once
// The monthly-payment contract of an order: its texts for e-mail and for the
// device, and its named sections (links or text) by key.

#include <map>
#include <string>
#include <string_view>

#include "varnel/platform/Json.h"

namespace varnel {

struct VNLContractDataModel {
  std::string contractForEmail;
  std::string contractForMobile;
  std::map<std::string, std::string, std::less<>> linksDictionary;

  /// The link stored under `key`, or empty text when there is none.
  std::string linkDetails(std::string_view key) const;

  /// "contractForEmail: ... \n  contractForMobile: ... \n linksDictionary: [...]"
  std::string debugDescription() const;
  /// The fields by name.
  Json toJson() const;

  friend bool operator==(const VNLContractDataModel&, const VNLContractDataModel&) = default;
};

}  // namespace varnel
