#include "varnel/checkout/ContractFetcher.h"

#include <fstream>
#include <sstream>

#include "varnel/checkout/PurchaseHandler.h"
#include "varnel/entitlements/VNLVarnel.h"
#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/host/KTVRPrivateDataService.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/platform/Describe.h"
#include "varnel/platform/MainQueue.h"
#include "varnel/platform/UserDefaults.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/services/VNLParseContractResponse.h"

namespace varnel {
namespace {

LogSite fetcherSite(const char* function, int line) { return LogSite{"Classes/Fetchers/ContractFetcher", function, line}; }

void onMainQueue(std::function<void()> task) {
  if (auto queue = host::Registry::get<MainQueue>()) {
    queue->post(std::move(task));
  } else {
    task();
  }
}

std::optional<VNLContractDataModel> contractOf(const Json& result) {
  if (!result.is_object()) return std::nullopt;
  return VNLParseContractResponse().parseContract(result);
}

Error fetcherError(long code, std::string reason) {
  return Error{kContractFetcherErrorDomain, code, Json{{kErrorLocalizedDescriptionKey, std::move(reason)}}};
}

}  // namespace

void ContractFetcher::fetchMonthlyContract(const std::string& orderId, const PaymentAccount& paymentAccounts,
                                           const RenewalOrder& renewalOrder, Success success, Failure failure) const {
  auto defaults = host::Registry::get<UserDefaults>();
  if (defaults && defaults->boolForKey(VNLVarnel::Constants::varnelContractMockKey)) {
    mockData(std::move(success), std::move(failure));
  } else {
    contractRequest(orderId, paymentAccounts, renewalOrder, std::move(success), std::move(failure));
  }
}

Json ContractFetcher::parameterDictionary(const PaymentAccount& paymentAccount, const RenewalOrder& renewalOrder) const {
  return PurchaseHandler::parameterDictionaryForPurchase(paymentAccount, renewalOrder);
}

void ContractFetcher::contractRequest(const std::string& orderId, const PaymentAccount& paymentAccounts,
                                      const RenewalOrder& renewalOrder, Success success, Failure failure) const {
  auto service = KTVRPrivateDataService::sharedInstance();
  if (!service) {
    onMainQueue([failure] {
      if (failure) failure(fetcherError(1, "No private data service is registered"));
    });
    return;
  }
  monthlyContractRequest(
      *service, orderId, parameterDictionary(paymentAccounts, renewalOrder),
      [success](const std::optional<Json>& result) {
        if (KTVCPrintUtility::isEnabled()) {
          KTVCPrintUtility::debugPrint("Result: " + (result ? "Optional(" + result->dump(-1, ' ', false, Json::error_handler_t::replace) + ")" : std::string("nil")),
                                       fetcherSite("contractRequest(orderId:paymentAccounts:renewalOrder:success:failure:)", __LINE__));
        }
        std::optional<VNLContractDataModel> contract = result ? contractOf(*result) : std::nullopt;
        onMainQueue([success, contract] {
          if (success) success(contract);
        });
      },
      [failure](const std::optional<Error>& error) {
        KTVCPrintUtility::debugPrint("Error: " + describe(error),
                                     fetcherSite("contractRequest(orderId:paymentAccounts:renewalOrder:success:failure:)", __LINE__));
        onMainQueue([failure, error] {
          if (failure) failure(error);
        });
      });
}

void ContractFetcher::mockData(Success success, Failure failure) const {
  const auto path = varnelResourceDirectory() / "contract.js";
  std::error_code missing;
  if (!std::filesystem::is_regular_file(path, missing)) {
    KTVCPrintUtility::debugPrint("Path not found", fetcherSite("mockData(success:failure:)", __LINE__));
    onMainQueue([failure] {
      if (failure) failure(fetcherError(2, "The canned contract is missing"));
    });
    return;
  }
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  const JsonParse parsed = parseJson(text.str());
  const Json decoded = parsed.value.value_or(Json());
  if (!in || !parsed) {
    const Error error = fetcherError(3, "The data couldn\u2019t be read because it isn\u2019t in the correct format.");
    KTVCPrintUtility::debugPrint("Error occourd: " + localizedDescription(error),
                                 fetcherSite("mockData(success:failure:)", __LINE__));
    onMainQueue([failure, error] {
      if (failure) failure(error);
    });
    return;
  }
  if (auto contract = contractOf(decoded)) {
    onMainQueue([success, contract] {
      if (success) success(contract);
    });
  }
}

}  // namespace varnel
