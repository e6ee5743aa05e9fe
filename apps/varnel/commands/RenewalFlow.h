#pragma once
// The steps of `varnel renew`, in order: passes, order, cards, checks,
// contract (monthly plan), checkout, confirmation.

#include <string>

#include "commands/CommerceSession.h"

namespace varnel::cli {

struct RenewOptions {
  CommerceOptions commerce;
  std::string pass;
  std::string card;
  std::string cvv;
  std::string plan = "full";
  bool acceptTerms = false;
  bool signContract = false;
};

/// Runs the renewal; answers the exit status (0 renewed, 1 a commerce
/// failure the guest was shown). Bad input is a UsageError.
int runRenewal(const RenewOptions& options);

}  // namespace varnel::cli
