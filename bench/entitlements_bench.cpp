// The facade's renewal queries over a persisted store of N entitlements:
// renewableEntitlements() plus firstRenewalDate() against copying the N
// manager records (the baseline), at N = 250, 500, 1000 and 2000.
//
// For scale, ObjectsAtDefaults makes and releases the objects that the two
// queries must make (each converts the whole store), at their defaults and
// without copying a field: the part of the cost that no conversion avoids.

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "RatioSummary.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/entitlements/VNLEntitlementParkTicket.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/Registry.h"

namespace {

using namespace varnel;

constexpr int kSizes[] = {250, 500, 1000, 2000};

/// A manager whose persisted store is a fixed list.
class StoreManager final : public ENTMEntitlementsManager {
 public:
  explicit StoreManager(ENTMAnyList store) : store_(std::move(store)) {}
  void configureWithParkResortContext(std::shared_ptr<KTVCParkResortContext>) override {}
  std::optional<std::string> kuid() const override { return "guest-4f21-aa07"; }
  std::optional<ENTMUserProfile> userProfile() const override { return ENTMUserProfile{ENTMAvatar{"avatar-1"}}; }
  void registerEntitlementListener(std::weak_ptr<ENTMEntitlementsListener>) override {}
  void removeEntitlementListener(const ENTMEntitlementsListener*) override {}
  void beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType, const std::optional<Json>&) override {}
  void retrieveAffiliationsFromUserInfo(const std::optional<Json>&) override {}
  std::optional<ENTMAnyList> persistedEntitlementsOfType(ENTMEntitlementType) const override { return store_; }
  const ENTMAnyList& store() const { return store_; }

 private:
  ENTMAnyList store_;
};

/// A household's worth of records, repeated: renewable and non-renewable
/// annual passes (some with a renewal option), park tickets with
/// affiliations, and an entitlement of another category.
ENTMEntitlementRef record(int index) {
  auto entitlement = std::make_shared<ENTMEntitlement>();
  const std::string id = std::to_string(index);
  entitlement->productInstanceId = "AP-" + id;
  entitlement->passTypeName = "Crestline Select Pass";
  entitlement->ticketAgeGroupTitle = "Crestline Select Pass - Adult";
  entitlement->guestType = "ADULT";
  entitlement->profileId = index % 3 ? "guest-" + id : "guest-4f21-aa07";
  entitlement->holderName = "Guest Number " + id;
  entitlement->firstName = "Guest";
  entitlement->lastName = "Number " + id;
  entitlement->barcodeString = "1201" + id;
  entitlement->status = "ACTIVE";
  entitlement->currency = "USD";
  entitlement->totalPrice = 689.0f;
  entitlement->pricePerMonth = 48.5f;
  entitlement->passValidityStartDate = Date::fromTimeIntervalSince1970(1900000000.0 + index * 3600);
  entitlement->passExpirationDate = Date::fromTimeIntervalSince1970(1930000000.0 + (index * 7919 % 1000) * 86400);
  entitlement->address = "12 Harbour Lane";
  entitlement->city = "Wrenfield";
  entitlement->state = "QZ";
  entitlement->postalCode = "00042";
  entitlement->country = "US";
  switch (index % 5) {
    case 0:
    case 1: {  // renewable annual pass with its default renewal
      entitlement->categoryId = "AnnualPass";
      entitlement->productType = "crestline-select-pass";
      entitlement->isRenewable = true;
      entitlement->defaultRenewableProductId = "RN-" + id;
      auto option = std::make_shared<ENTMEntitlement>();
      option->productInstanceId = "RN-" + id;
      option->categoryId = "AnnualPass";
      option->isRenewable = true;
      option->totalPrice = 709.0f;
      entitlement->apRenewalOptions = ENTMAnyList{ENTMEntitlementRef(option)};
      break;
    }
    case 2:  // a pass being retired: renewable, no default renewal
      entitlement->categoryId = "AnnualPass";
      entitlement->productType = "harbor-nights-pass";
      entitlement->isRenewable = true;
      break;
    case 3:  // park ticket
      entitlement->categoryId = "ThemePark";
      entitlement->productType = "crestline-3-day";
      entitlement->affiliationInfo = std::vector<ENTMAffiliation>{{"STD_GST", 0}, {"FL_RES", 2}};
      break;
    default:
      entitlement->categoryId = "DiningPlan";
      break;
  }
  return entitlement;
}

std::shared_ptr<StoreManager> storeOf(int size) {
  ENTMAnyList store;
  for (int i = 0; i < size; ++i) store.emplace_back(record(i));
  return std::make_shared<StoreManager>(std::move(store));
}

// Baseline: copy every manager record of the store.
void copyRecords(benchmark::State& state, int size) {
  const auto manager = storeOf(size);
  for (auto _ : state) {
    std::vector<ENTMEntitlement> copies;
    copies.reserve(manager->store().size());
    for (const auto& element : manager->store()) copies.push_back(*std::get<ENTMEntitlementRef>(element));
    benchmark::DoNotOptimize(copies.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * size);
}

// One query's objects for the store: a pass per annual pass, with an annual
// pass per renewal option and one more for its default renewal; a ticket per
// park ticket; a plain entitlement otherwise. The renewable ones are kept.
VNLVarnel::Entitlements renewableAtDefaults(const ENTMAnyList& store) {
  VNLVarnel::Entitlements made;
  made.reserve(store.size());
  for (const auto& element : store) {
    const ENTMEntitlement& record = *std::get<ENTMEntitlementRef>(element);
    if (record.categoryId == "ThemePark") {
      made.push_back(std::make_shared<VNLEntitlementParkTicket>());
    } else if (record.categoryId != "AnnualPass") {
      made.push_back(std::make_shared<VNLEntitlement>());
    } else {
      auto pass = std::make_shared<VNLEntitlementAnnualPass>();
      pass->setEntitlementRenewable(record.isRenewable);
      if (record.apRenewalOptions) {
        std::vector<std::shared_ptr<VNLEntitlement>> options;
        options.reserve(record.apRenewalOptions->size());
        for (std::size_t i = 0; i < record.apRenewalOptions->size(); ++i) {
          options.push_back(std::make_shared<VNLEntitlementAnnualPass>());
        }
        pass->setApRenewalOptions(std::move(options));
        if (record.defaultRenewableProductId) pass->setRenewableEntitlement(std::make_shared<VNLEntitlementAnnualPass>());
      }
      made.push_back(std::move(pass));
    }
  }
  std::erase_if(made, [](const auto& entitlement) { return !entitlement->entitlementRenewable(); });
  return made;
}

void objectsAtDefaults(benchmark::State& state, int size) {
  const auto manager = storeOf(size);
  for (auto _ : state) {
    auto renewable = renewableAtDefaults(manager->store());
    benchmark::DoNotOptimize(renewable.data());
    benchmark::DoNotOptimize(renewableAtDefaults(manager->store()).data());
  }
  state.SetItemsProcessed(state.iterations() * size);
}

void renewalQueries(benchmark::State& state, int size) {
  host::Registry::set<ENTMEntitlementsManager>(storeOf(size));
  VNLVarnel varnel;
  for (auto _ : state) {
    auto renewable = varnel.renewableEntitlements();
    benchmark::DoNotOptimize(renewable.data());
    benchmark::DoNotOptimize(varnel.firstRenewalDate());
  }
  state.SetItemsProcessed(state.iterations() * size);
  host::Registry::set<ENTMEntitlementsManager>(nullptr);
}

std::string name(const char* stem, int size) { return std::string(stem) + "/" + std::to_string(size); }

}  // namespace

int main(int argc, char** argv) {
  for (int size : kSizes) {
    benchmark::RegisterBenchmark(name("CopyRecords", size).c_str(), copyRecords, size);
    benchmark::RegisterBenchmark(name("RenewalQueries", size).c_str(), renewalQueries, size);
    benchmark::RegisterBenchmark(name("ObjectsAtDefaults", size).c_str(), objectsAtDefaults, size);
  }
  varnel::bench::RatioSummary summary;
  varnel::bench::runWith(summary, argc, argv);
  for (int size : kSizes) {
    summary.printRatio(name("RenewalQueries", size), name("CopyRecords", size), size == 1000 ? "<= 3" : "information");
  }
  for (int size : kSizes) {
    summary.printRatio(name("ObjectsAtDefaults", size), name("CopyRecords", size), "information: objects alone");
  }
  for (int size : kSizes) {
    const double queries = summary.nanoseconds(name("RenewalQueries", size));
    const double copies = summary.nanoseconds(name("CopyRecords", size));
    const double floor = summary.nanoseconds(name("ObjectsAtDefaults", size));
    if (queries > 0 && copies > 0) {
      std::printf("N = %4d   queries %7.1f ns per entitlement   objects at defaults %7.1f   copy %7.1f ns per record\n",
                  size, queries / size, floor > 0 ? floor / size : 0.0, copies / size);
    }
  }
  return 0;
}
