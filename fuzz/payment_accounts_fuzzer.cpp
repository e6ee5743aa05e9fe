// Any bytes, as a payment-accounts answer.

#include "FuzzHost.h"
#include "varnel/services/VNLParsePaymentAccounts.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto accounts = varnel::VNLParsePaymentAccounts().parsePaymentAccounts(varnel::fuzz::answerFrom(data, size));
  std::size_t characters = 0;
  for (const auto& account : accounts) {
    characters += account.guestDetails().firstName().size() + account.creditCard().cardNumber().size();
    if (account.cardHolderAddress()) characters += account.cardHolderAddress()->line1.value_or("").size();
  }
  (void)characters;  // every field read, so the sanitizers see each one
  return 0;
}
