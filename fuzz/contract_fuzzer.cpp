// Any bytes, as a monthly-contract answer.

#include "FuzzHost.h"
#include "varnel/services/VNLParseContractResponse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace varnel;
  fuzz::installHostOnce();
  const Json answer = fuzz::answerFrom(data, size);
  const VNLContractDataModel contract = VNLParseContractResponse().parseContract(answer);
  (void)contract.debugDescription().size();
  for (const auto& [key, link] : contract.linksDictionary) (void)contract.linkDetails(key).size();
  (void)fuzz::printedSize(contract.toJson());
  return 0;
}
