#pragma once
// How `varnel renew` tells a renewal's outcome: the confirmation, the guest's
// banner, or how to finish a renewal whose answer was lost; as text or JSON.
//
// Exit statuses: 0 confirmed, 1 refused (nothing charged), 2 bad input, 3
// unknown (being confirmed: `varnel renew --resume` finishes it).

#include <memory>
#include <vector>

#include "commands/ErrorReport.h"
#include "varnel/checkout/RenewalFlow.h"

namespace varnel::cli {

inline constexpr int kExitRenewed = 0;
inline constexpr int kExitRefused = 1;
inline constexpr int kExitBadInput = 2;
inline constexpr int kExitUnknown = 3;

/// Prints one renewal's outcome (and shows the banner of a refusal or an
/// unknown outcome); answers the exit status.
int reportRenewal(const RenewalOutcome& outcome, const std::shared_ptr<KTVCParkResortContext>& park, bool json);

/// Prints what `renew --resume` finished; answers the exit status (the worst
/// of the outcomes).
int reportResumed(const std::vector<RenewalOutcome>& outcomes, const std::shared_ptr<KTVCParkResortContext>& park,
                  bool json);

/// The outcome as `varnel renew --json` prints it.
OrderedJson outcomeJson(const RenewalOutcome& outcome, KTVCResortChoice park);

/// Readable lines for the guest's pending renewals ("order ... of pass ..."),
/// or the one line that says how to finish them; empty when there are none.
std::string pendingNotice(const std::vector<RenewalJournalEntry>& pending);

}  // namespace varnel::cli
