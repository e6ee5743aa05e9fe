#include "varnel/services/VNLContractDataModel.h"

#include "varnel/platform/Describe.h"

namespace varnel {

std::string VNLContractDataModel::linkDetails(std::string_view key) const {
  const auto it = linksDictionary.find(key);
  return it == linksDictionary.end() ? std::string() : it->second;
}

std::string VNLContractDataModel::debugDescription() const {
  return "contractForEmail: " + contractForEmail + " \n  contractForMobile: " + contractForMobile +
         " \n linksDictionary: " + describe(linksDictionary);
}

Json VNLContractDataModel::toJson() const {
  Json links = Json::object();
  for (const auto& [key, link] : linksDictionary) links[key] = link;
  return Json{{"contractForEmail", contractForEmail},
              {"contractForMobile", contractForMobile},
              {"linksDictionary", std::move(links)}};
}

}  // namespace varnel
