#pragma once
// The monthly-payment contract of an order, which the guest must see and sign
// before a checkout on the monthly plan. It is priced and addressed exactly as
// the checkout will be: the request's body is the checkout's own body.
//
// Both callbacks run on the main queue (directly, when the host registered
// none). With the tester switch "VarnelContractMockKey" on, no request is sent:
// the contract is read from the module's resource "contract.js".

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "varnel/platform/Error.h"
#include "varnel/platform/Json.h"
#include "varnel/purchase/PaymentAccount.h"
#include "varnel/purchase/RenewalOrder.h"
#include "varnel/services/VNLContractDataModel.h"

namespace varnel {

/// Domain of the fetcher's own failures (no service, no readable canned file).
inline constexpr const char* kContractFetcherErrorDomain = "Varnel.ContractFetcher";

class ContractFetcher {
 public:
  /// Receives a VNLContractDataModel, or nothing when the answer was not an object.
  using Success = std::function<void(const std::optional<VNLContractDataModel>& contract)>;
  using Failure = std::function<void(const std::optional<Error>& error)>;

  /// The entry point: the canned contract when the tester switch is on, else
  /// the service request.
  void fetchMonthlyContract(const std::string& orderId, const PaymentAccount& paymentAccounts,
                            const RenewalOrder& renewalOrder, Success success, Failure failure) const;

  /// Asks the commerce service for the contract (monthlyContractRequest).
  void contractRequest(const std::string& orderId, const PaymentAccount& paymentAccounts,
                       const RenewalOrder& renewalOrder, Success success, Failure failure) const;

  /// The contract of the resource "contract" of type "js"; a missing or
  /// unreadable file is logged and reported to `failure`.
  void mockData(Success success, Failure failure) const;

  /// The checkout's body for this card and order.
  Json parameterDictionary(const PaymentAccount& paymentAccount, const RenewalOrder& renewalOrder) const;
};

}  // namespace varnel
