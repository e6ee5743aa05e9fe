#include "varnel/purchase/VNLRenewalTermsAndConditionsPolicy.h"

namespace varnel {

Json VNLRenewalPolicyDescription::toJson() const {
  return Json{{"id", id}, {"name", name}, {"htmlText", htmlText}};
}

Json VNLRenewalTermsAndConditionsPolicy::toJson() const {
  Json texts = Json::array();
  for (const auto& description : descriptions) texts.push_back(description.toJson());
  return Json{{"id", id}, {"name", name}, {"descriptions", std::move(texts)}};
}

}  // namespace varnel
