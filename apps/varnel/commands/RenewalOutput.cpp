#include "commands/RenewalOutput.h"

#include <iostream>

#include "varnel/errors/APNotificationBanner.h"

namespace varnel::cli {
namespace {

const char* kResumeHint = "varnel renew --resume";

void printConfirmation(const RenewalOutcome& outcome) {
  const RenewalConfirmation& confirmation = *outcome.confirmation;
  const RenewalPayment& payment = confirmation.payment();
  const std::string card = payment.maskedCardNumber().empty() ? outcome.maskedCard : payment.maskedCardNumber();
  if (outcome.finishedEarlier) std::cout << "Finished the interrupted renewal of order " << outcome.orderId << ".\n";
  std::cout << "Renewed.\n"
            << "Confirmation number: " << confirmation.confirmationNumber() << '\n'
            << "Status:              " << confirmation.status() << '\n'
            << "Amount charged:      " << payment.amount() << ' ' << confirmation.pricing().currency << '\n'
            << "Card:                " << payment.cardType() << (card.empty() ? "" : " " + card) << '\n';
}

OrderedJson errorJson(const RenewalOutcome& outcome, KTVCResortChoice park) {
  if (outcome.error) {
    OrderedJson described = describeError(*outcome.error, park);
    described["reason"] = outcome.reason;
    return described;
  }
  return OrderedJson{{"case", nullptr}, {"reason", outcome.reason}};
}

std::string finishHint(const RenewalOutcome& outcome) {
  return std::string(kResumeHint) + (outcome.needsSecurityCode ? " --cvv CODE" : "");
}

/// Stdout that cannot be written (closed, a full disk) is a failure of its own.
int printed(int status, const RenewalOutcome& outcome) {
  std::cout.flush();
  if (std::cout) return status;
  std::cerr << "varnel: the outcome could not be printed";
  if (outcome.confirmation) {
    std::cerr << " (confirmation number " << outcome.confirmation->confirmationNumber()
              << ", kept in the renewal journal)";
  }
  std::cerr << '\n';
  return status == kExitRenewed ? kExitRefused : status;
}

}  // namespace

OrderedJson outcomeJson(const RenewalOutcome& outcome, KTVCResortChoice park) {
  OrderedJson answer{{"outcome", renewalOutcomeName(outcome.kind)}};
  if (outcome.kind != RenewalOutcome::Kind::confirmed) answer["step"] = renewalStepName(outcome.step);
  answer["orderId"] = outcome.orderId.empty() ? OrderedJson() : OrderedJson(outcome.orderId);
  answer["order"] = outcome.order ? OrderedJson(outcome.order->toJson()) : OrderedJson();
  if (outcome.kind == RenewalOutcome::Kind::confirmed) {
    answer["contract"] = outcome.contract ? OrderedJson(outcome.contract->toJson()) : OrderedJson();
    answer["confirmation"] = outcome.confirmation->toJson();
  } else {
    answer["error"] = errorJson(outcome, park);
  }
  return answer;
}

int reportRenewal(const RenewalOutcome& outcome, const std::shared_ptr<KTVCParkResortContext>& park, bool json) {
  if (outcome.kind == RenewalOutcome::Kind::refused && outcome.badRequest) {
    std::cerr << "varnel: " << outcome.reason << '\n';
    return kExitBadInput;
  }
  if (json) std::cout << dumpJson(outcomeJson(outcome, park->resortChoice())) << '\n';
  switch (outcome.kind) {
    case RenewalOutcome::Kind::confirmed:
      if (!json) printConfirmation(outcome);
      return printed(kExitRenewed, outcome);
    case RenewalOutcome::Kind::unknown:
      std::cerr << "varnel: the renewal" << (outcome.orderId.empty() ? "" : " of order " + outcome.orderId)
                << " is being confirmed and will not be charged twice (" << outcome.reason
                << "); finish it with: " << finishHint(outcome) << '\n';
      APNotificationBanner::showNotificationBanner(APError::PaymentLostConnection, park);
      return printed(kExitUnknown, outcome);
    case RenewalOutcome::Kind::refused:
      break;
  }
  if (outcome.alreadyRenewed) {
    std::cerr << "varnel: this pass is already renewed; nothing was charged\n";
    return printed(kExitRefused, outcome);
  }
  std::cerr << "varnel: the renewal stopped at step \"" << renewalStepName(outcome.step) << "\": "
            << (outcome.error ? std::string(description(*outcome.error)) + " (" + outcome.reason + ")" : outcome.reason)
            << '\n';
  if (outcome.error) APNotificationBanner::showNotificationBanner(*outcome.error, park);
  return printed(kExitRefused, outcome);
}

int reportResumed(const std::vector<RenewalOutcome>& outcomes, const std::shared_ptr<KTVCParkResortContext>& park,
                  bool json) {
  int status = kExitRenewed;
  OrderedJson finished = OrderedJson::array();
  OrderedJson unfinished = OrderedJson::array();
  for (const RenewalOutcome& outcome : outcomes) {
    const int each = outcome.kind == RenewalOutcome::Kind::confirmed ? kExitRenewed
                     : outcome.kind == RenewalOutcome::Kind::unknown ? kExitUnknown
                                                                      : kExitRefused;
    status = std::max(status, each);
    if (json) {
      (outcome.kind == RenewalOutcome::Kind::unknown ? unfinished : finished)
          .push_back(OrderedJson{{"orderId", outcome.orderId},
                                 {"outcome", renewalOutcomeName(outcome.kind)},
                                 {"confirmation", outcome.confirmation ? OrderedJson(outcome.confirmation->toJson())
                                                                       : OrderedJson()},
                                 {"error", outcome.kind == RenewalOutcome::Kind::confirmed
                                               ? OrderedJson()
                                               : errorJson(outcome, park->resortChoice())}});
      continue;
    }
    std::cout << "Order " << outcome.orderId << ": ";
    if (outcome.kind == RenewalOutcome::Kind::confirmed) {
      std::cout << "renewed, confirmation number " << outcome.confirmation->confirmationNumber() << '\n';
    } else if (outcome.busy) {
      std::cout << "being finished by another process\n";
    } else if (outcome.kind == RenewalOutcome::Kind::refused) {
      std::cout << "not charged (" << outcome.reason << ")\n";
    } else {
      std::cout << "still being confirmed (" << outcome.reason << "); finish it with: " << finishHint(outcome)
                << '\n';
    }
  }
  if (json) {
    std::cout << dumpJson(OrderedJson{{"finished", finished}, {"unfinished", unfinished}}) << '\n';
  } else if (outcomes.empty()) {
    std::cout << "No unfinished renewals.\n";
  }
  std::cout.flush();
  return std::cout ? status : std::max(status, kExitRefused);
}

std::string pendingNotice(const std::vector<RenewalJournalEntry>& pending) {
  if (pending.empty()) return {};
  std::string orders;
  for (const auto& entry : pending) orders += (orders.empty() ? "" : ", ") + entry.orderId;
  return "varnel: " + std::to_string(pending.size()) + " unfinished renewal" + (pending.size() == 1 ? "" : "s") +
         " (order " + orders + ") may have been charged; finish with: " + kResumeHint;
}

}  // namespace varnel::cli
