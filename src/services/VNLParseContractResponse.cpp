#include "varnel/services/VNLParseContractResponse.h"

#include "JsonShapes.h"

namespace varnel {

using namespace services_detail;

VNLContractDataModel VNLParseContractResponse::parseContract(const Json& result) const {
  VNLContractDataModel contract;
  contract.contractForEmail = stringOrEmpty(result, ServiceKeys::kcontractForEmail);
  contract.contractForMobile = stringOrEmpty(result, ServiceKeys::kContractForMobile);
  if (const Json* sections = stringDictionaryMember(result, ServiceKeys::kKeySections)) {
    for (const auto& [key, value] : sections->items()) {
      contract.linksDictionary.emplace(key, value.get_ref<const std::string&>());
    }
  }
  return contract;
}

}  // namespace varnel
