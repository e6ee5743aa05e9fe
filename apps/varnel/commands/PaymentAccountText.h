#pragma once
// Stored cards as the tool shows them: holder, brand (recognised from the
// number), the number masked to its last four digits, and the expiry.

#include <string>
#include <vector>

#include "commands/ErrorReport.h"
#include "varnel/purchase/PaymentAccount.h"

namespace varnel::cli {

/// "**** 1111"; numbers of four digits or fewer are all masked.
std::string maskedCardNumber(const std::string& number);

/// The brand's case name ("KTVRCreditCardType_Visa"), from the number.
std::string cardBrand(const CreditCard& card);

/// {"reference", "holder", "brand", "number" (masked), "expires", ...}.
OrderedJson paymentAccountJson(const PaymentAccount& account);

/// An aligned table, one line per card after the heading.
std::string paymentAccountTable(const std::vector<PaymentAccount>& accounts);

}  // namespace varnel::cli
