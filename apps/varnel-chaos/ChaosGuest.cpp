#include "ChaosGuest.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include <nlohmann/json.hpp>

#include "varnel/platform/Json.h"

#include "ChildProcess.h"
#include "Scenario.h"

namespace varnel::chaos {
namespace {

std::filesystem::path resourceDirectory() {
  if (const char* directory = std::getenv("VARNEL_RESOURCE_DIR"); directory != nullptr && *directory != '\0') {
    return directory;
  }
  return VARNEL_CHAOS_RESOURCE_DIR;
}

bool renewableMonthly(const nlohmann::json& entitlement) {
  return entitlement.value("categoryId", "") == "AnnualPass" && entitlement.value("isRenewable", false) &&
         entitlement.value("monthlyPaymentEligible", false) && entitlement.contains("defaultRenewableProductId");
}

}  // namespace

std::string writeChaosGuest(const std::filesystem::path& path, int first, int count) {
  const auto sample = resourceDirectory() / "guests" / "sample-guest.json";
  auto guest = parseJson(readWholeFile(sample)).value.value_or(Json());
  if (!guest.is_object() || !guest["entitlements"].is_array()) return "cannot read " + sample.string();
  nlohmann::json model;
  for (const auto& entitlement : guest["entitlements"]) {
    if (renewableMonthly(entitlement)) {
      model = entitlement;
      break;
    }
  }
  if (model.is_null()) return sample.string() + " holds no renewable annual pass with a monthly plan";

  auto passes = nlohmann::json::array();
  for (int index = first; index < first + count; ++index) {
    nlohmann::json pass = model;
    pass["productInstanceId"] = chaosPassId(index);
    char barcode[32];
    std::snprintf(barcode, sizeof barcode, "77%09d", index);
    pass["barcodeString"] = barcode;
    passes.push_back(std::move(pass));
  }
  guest["entitlements"] = std::move(passes);
  guest["description"] = "Chaos soak guest: the sample household with " + std::to_string(count) +
                         " renewable annual passes.";
  std::ofstream out(path, std::ios::trunc);
  out << guest.dump() << '\n';
  out.close();
  return out ? std::string() : "cannot write " + path.string();
}

}  // namespace varnel::chaos
