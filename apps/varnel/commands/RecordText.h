#pragma once
// The renewal records as the tool prints them for people.

#include <string>

#include "varnel/purchase/RenewalConfirmation.h"
#include "varnel/purchase/RenewalOrder.h"

namespace varnel::cli {

/// The order's own description when it has a product and a guest, else its
/// fields one by one.
std::string readableOrder(const RenewalOrder& order);

/// Number, status, plan, payment, pricing, products and guests.
std::string readableConfirmation(const RenewalConfirmation& confirmation);

}  // namespace varnel::cli
