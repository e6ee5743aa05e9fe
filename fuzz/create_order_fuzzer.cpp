// Any bytes, as a create-order answer.

#include "FuzzHost.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace varnel;
  fuzz::installHostOnce();
  const Json answer = fuzz::answerFrom(data, size);
  const VNLParseCreateOrderResponse parser;
  const RenewalOrder order = parser.parseCreateOrder(answer);
  // The steps are public too and must take any value on their own.
  const auto products = parser.orderItems(answer);
  if (answer.is_array()) (void)parser.passHolder(answer.get_ref<const Json::array_t&>(), products).size();
  (void)parser.termsAndConditionsPolicies(answer).size();
  (void)parser.descriptionsFromPolicy(answer).has_value();
  if (!order.products.empty() && !order.guests.empty()) (void)order.debugDescription().size();
  for (const auto& guest : order.guests) (void)guest.debugDescription().size();
  (void)fuzz::printedSize(order.toJson());
  return 0;
}
