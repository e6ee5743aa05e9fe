#pragma once
// A renewal order as a guest reads it: the order and its plan, each pass with
// the guests it is for, the guests, the pricing, and the terms as plain text.

#include <string>
#include <string_view>

#include "varnel/purchase/RenewalOrder.h"

namespace varnel::cli {

/// The summary, several lines, each ending in a line break.
std::string orderSummary(const RenewalOrder& order);

/// HTML as plain text: tags dropped (a paragraph, heading, list item or line
/// break ends a line), the common character entities decoded, runs of blanks
/// made one, blank lines dropped.
std::string plainTextOfHtml(std::string_view html);

}  // namespace varnel::cli
