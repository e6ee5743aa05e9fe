// Any bytes, as an express-checkout answer.

#include "FuzzHost.h"
#include "varnel/services/VNLParseUpdateSubmitResponse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace varnel;
  fuzz::installHostOnce();
  const Json answer = fuzz::answerFrom(data, size);
  const RenewalConfirmation confirmation = VNLParseUpdateSubmitResponse().parse(answer);
  (void)confirmation.pricing().debugDescription().size();
  (void)fuzz::printedSize(confirmation.toJson());
  return 0;
}
