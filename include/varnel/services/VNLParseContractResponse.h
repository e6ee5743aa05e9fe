#pragma once
// Turns the monthly-contract answer into a VNLContractDataModel. Never fails,
// never throws and logs nothing: missing parts stay empty.

#include <string_view>

#include "varnel/platform/Json.h"
#include "varnel/services/VNLContractDataModel.h"

namespace varnel {

class VNLParseContractResponse {
 public:
  /// The contract's own keys (the two text keys differ in the case of their
  /// second letter).
  struct ServiceKeys {
    ServiceKeys() = delete;
    static constexpr std::string_view kKeySections = "keySections";
    static constexpr std::string_view kcontractForEmail = "contractForEmail";
    static constexpr std::string_view kContractForMobile = "contractForMobile";
  };

  VNLContractDataModel parseContract(const Json& result) const;
};

}  // namespace varnel
