// Any bytes, as a create-order answer.

#include "FuzzHost.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace varnel;
  const Json answer = fuzz::answerFrom(data, size);
  const VNLParseCreateOrderResponse parser;
  const RenewalOrder order = parser.parseCreateOrder(answer);
  // The public steps must take any value on their own.
  if (answer.is_array()) (void)parser.passHolder(answer.get_ref<const Json::array_t&>(), parser.orderItems(answer));
  (void)parser.termsAndConditionsPolicies(answer).size();
  (void)parser.descriptionsFromPolicy(answer).has_value();
  // Only orders with a product and a guest can be described.
  const bool complete = !order.products.empty() && !order.guests.empty();
  return fuzz::described(complete ? order.debugDescription() : std::string(), order.toJson());
}
