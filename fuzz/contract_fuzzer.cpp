// Any bytes, as a monthly-contract answer.

#include "FuzzHost.h"
#include "varnel/services/VNLParseContractResponse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto contract = varnel::VNLParseContractResponse().parseContract(varnel::fuzz::answerFrom(data, size));
  return varnel::fuzz::described(contract.debugDescription(), contract.toJson());
}
