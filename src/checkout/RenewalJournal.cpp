#include "varnel/checkout/RenewalJournal.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace varnel {
namespace {

using State = RenewalJournalEntry::State;

constexpr std::array<std::pair<State, std::string_view>, 4> kStateNames{{
    {State::claimed, "claimed"},
    {State::pending, "pending"},
    {State::confirmed, "confirmed"},
    {State::refused, "refused"},
}};

std::int64_t nowSeconds() {
  return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

Error journalError(const std::string& message) {
  return Error{kRenewalJournalErrorDomain, 1, Json{{"message", message}}};
}

}  // namespace

std::string_view RenewalJournalEntry::stateName(State state) {
  for (const auto& [value, name] : kStateNames) {
    if (value == state) return name;
  }
  return "claimed";
}

std::optional<State> RenewalJournalEntry::stateNamed(std::string_view name) {
  for (const auto& [value, text] : kStateNames) {
    if (text == name) return value;
  }
  return std::nullopt;
}

Json RenewalJournalEntry::toJson() const {
  return Json{{"id", id},
              {"state", stateName(state)},
              {"passId", passId},
              {"orderId", orderId},
              {"plan", monthlyPlan ? "monthly" : "full"},
              {"cardReference", cardReference},
              {"securityCodeEntered", securityCodeEntered},
              {"amount", amount},
              {"currency", currency},
              {"confirmationNumber", confirmationNumber},
              {"told", told},
              {"createdAt", createdAt},
              {"updatedAt", updatedAt}};
}

Json RenewalJournalEntry::withoutSecurityCode(Json body) {
  auto payments = body.find("payments");
  if (payments == body.end() || !payments->is_array()) return body;
  for (auto& payment : *payments) {
    auto reference = payment.find("paymentReference");
    if (reference != payment.end() && reference->is_object()) reference->erase("cvv2");
  }
  return body;
}

InMemoryRenewalJournal::Row* InMemoryRenewalJournal::find(std::int64_t id) {
  const auto it = std::find_if(rows_.begin(), rows_.end(), [id](const Row& row) { return row.entry.id == id; });
  return it == rows_.end() ? nullptr : &*it;
}

RenewalJournal::Claim InMemoryRenewalJournal::claim(const std::string& guestId, const std::string& passId) {
  std::lock_guard lock(mutex_);
  Claim claim;
  for (auto it = rows_.begin(); it != rows_.end();) {
    const RenewalJournalEntry& entry = it->entry;
    if (entry.guestId != guestId || entry.passId != passId || !entry.unfinished()) {
      ++it;
      continue;
    }
    if (it->owned) return Claim{Claim::Kind::busy, entry, false, "a renewal of this pass is in flight"};
    if (entry.awaitsFinishing()) {
      it->owned = true;
      return Claim{Claim::Kind::unfinished, entry, false, ""};
    }
    it = rows_.erase(it);
    claim.replacedInterrupted = true;
  }
  RenewalJournalEntry entry;
  entry.id = nextId_++;
  entry.guestId = guestId;
  entry.passId = passId;
  entry.createdAt = entry.updatedAt = nowSeconds();
  rows_.push_back(Row{entry, true});
  claim.kind = Claim::Kind::fresh;
  claim.entry = entry;
  return claim;
}

RenewalJournal::Claim InMemoryRenewalJournal::claimEntry(std::int64_t id) {
  std::lock_guard lock(mutex_);
  Row* row = find(id);
  if (!row || !row->entry.awaitsFinishing()) {
    return Claim{Claim::Kind::failed, {}, false, "the journal holds no unfinished renewal " + std::to_string(id)};
  }
  if (row->owned) return Claim{Claim::Kind::busy, row->entry, false, "the renewal is being finished"};
  row->owned = true;
  return Claim{Claim::Kind::unfinished, row->entry, false, ""};
}

std::optional<Error> InMemoryRenewalJournal::recordCheckout(const RenewalJournalEntry& entry) {
  std::lock_guard lock(mutex_);
  Row* row = find(entry.id);
  if (!row || !row->owned) return journalError("the renewal is not claimed");
  const std::int64_t createdAt = row->entry.createdAt;
  row->entry = entry;
  row->entry.checkoutBody = RenewalJournalEntry::withoutSecurityCode(entry.checkoutBody);
  row->entry.state = State::pending;
  row->entry.createdAt = createdAt;
  row->entry.updatedAt = nowSeconds();
  return std::nullopt;
}

std::optional<Error> InMemoryRenewalJournal::finish(std::int64_t id, State state,
                                                    const std::string& confirmationNumber) {
  std::lock_guard lock(mutex_);
  Row* row = find(id);
  if (!row) return journalError("the journal holds no renewal " + std::to_string(id));
  row->entry.state = state;
  row->entry.confirmationNumber = confirmationNumber;
  row->entry.updatedAt = nowSeconds();
  row->owned = false;
  return std::nullopt;
}

void InMemoryRenewalJournal::markTold(std::int64_t id) {
  std::lock_guard lock(mutex_);
  if (Row* row = find(id)) {
    row->entry.told = true;
    row->owned = false;
  }
}

void InMemoryRenewalJournal::release(std::int64_t id) {
  std::lock_guard lock(mutex_);
  Row* row = find(id);
  if (!row) return;
  if (row->entry.state == State::claimed) {
    std::erase_if(rows_, [id](const Row& each) { return each.entry.id == id; });
    return;
  }
  row->owned = false;
}

std::vector<RenewalJournalEntry> InMemoryRenewalJournal::unfinished(const std::string& guestId) const {
  std::vector<RenewalJournalEntry> found = entries(guestId);
  std::erase_if(found, [](const RenewalJournalEntry& entry) { return !entry.awaitsFinishing(); });
  return found;
}

std::vector<RenewalJournalEntry> InMemoryRenewalJournal::entries(const std::string& guestId) const {
  std::lock_guard lock(mutex_);
  std::vector<RenewalJournalEntry> found;
  for (const Row& row : rows_) {
    if (row.entry.guestId == guestId) found.push_back(row.entry);
  }
  return found;
}

}  // namespace varnel
