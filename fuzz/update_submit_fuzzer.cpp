// Any bytes, as an express-checkout answer.

#include "FuzzHost.h"
#include "varnel/services/VNLParseUpdateSubmitResponse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto confirmation = varnel::VNLParseUpdateSubmitResponse().parse(varnel::fuzz::answerFrom(data, size));
  return varnel::fuzz::described(confirmation.pricing().debugDescription(), confirmation.toJson());
}
