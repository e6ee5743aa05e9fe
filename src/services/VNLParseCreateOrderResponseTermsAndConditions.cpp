// The terms-and-conditions group of the create-order parser.

#include "JsonShapes.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/services/CreateOrderResponseKey.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"

namespace varnel {

using Key = CreateOrderResponseKey;
using namespace services_detail;

std::vector<VNLRenewalTermsAndConditionsPolicy> VNLParseCreateOrderResponse::termsAndConditionsPolicies(
    const Json& termsAndConditions) const {
  constexpr std::string_view function = "termsAndConditionsPolicies(_:)";
  const Json* policies = objectArrayMember(termsAndConditions, Key::policies);
  if (!policies) {
    KTVCPrintUtility::debugPrint("No terms & conditions policies found in renewal order",
                                 moduleSite(kCreateOrderParserFile, function));
    return {};
  }
  std::vector<VNLRenewalTermsAndConditionsPolicy> result;
  for (const Json& policy : *policies) {
    // Read in order and stop at the first failure: a policy without an id or
    // a name is left out before its texts are looked at.
    const std::string* id = jsonString(policy, Key::id);
    const std::string* name = id ? jsonString(policy, Key::name) : nullptr;
    auto descriptions = name ? descriptionsFromPolicy(policy) : std::nullopt;
    if (!descriptions) {
      KTVCPrintUtility::debugPrint("Unable to parse renewal order terms and conditions",
                                   moduleSite(kCreateOrderParserFile, function));
      continue;
    }
    result.push_back(VNLRenewalTermsAndConditionsPolicy{*id, *name, std::move(*descriptions)});
  }
  return result;
}

std::optional<std::vector<VNLRenewalPolicyDescription>> VNLParseCreateOrderResponse::descriptionsFromPolicy(
    const Json& policy) const {
  constexpr std::string_view function = "descriptionsFromPolicy(_:)";
  const Json* descriptions = objectArrayMember(policy, Key::descriptions);
  if (!descriptions) {
    KTVCPrintUtility::debugPrint("No htmltex found in terms & conditions policies for a renewal order",
                                 moduleSite(kCreateOrderParserFile, function));
    return std::nullopt;
  }
  std::vector<VNLRenewalPolicyDescription> result;
  for (const Json& description : *descriptions) {
    const std::string* id = jsonString(description, Key::id);
    const std::string* key = jsonString(description, Key::key);
    const std::string* text = jsonString(description, Key::text);
    if (!id || !key || !text) {
      KTVCPrintUtility::debugPrint("Unable to parse terms & condition text", moduleSite(kCreateOrderParserFile, function));
      continue;
    }
    result.push_back(VNLRenewalPolicyDescription{*id, *key, *text});
  }
  return result;
}

}  // namespace varnel
