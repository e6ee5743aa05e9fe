#pragma once
// The renewal journal: where a renewal is written down before its checkout
// leaves the process, so that one whose answer was lost (a timeout, a reset,
// a killed process) is finished later with the same idempotency key instead
// of being paid again, and so that one pass is never renewed twice at once.
//
// Life of an entry:
//
//   claim(guest, pass)            -> claimed   (no order paid yet; the pass is taken)
//   recordCheckout(entry)         -> pending   (durable before the checkout is sent)
//   finish(id, confirmed/refused) -> done      (the answer arrived)
//   markTold(id)                  -> the guest has seen the confirmation
//   release(id)                   -> a claimed entry goes; a pending one stays,
//                                    unowned, for the next run to finish
//
// A confirmed entry whose guest was never told (the process ended between
// the answer and the telling) is unfinished too: the next run tells its
// confirmation without sending anything.
//
// An entry belongs to the process that claimed it. An entry whose owner has
// gone (released, or the process died) is taken over by the next claim: a
// claimed one is dropped (it never reached the checkout, so nothing was
// charged), a pending one is handed back to be finished.
//
// Never stored: the card number or the security code. The checkout body is
// kept without its security code; where the guest entered one, finishing asks
// for it again.
//
// Every operation is atomic and safe from several threads; the stand-alone
// journal (SqliteRenewalJournal) is also safe across processes that share its
// file.

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "varnel/platform/Error.h"
#include "varnel/platform/Json.h"

namespace varnel {

struct RenewalJournalEntry {
  enum class State { claimed, pending, confirmed, refused };

  std::int64_t id = 0;
  State state = State::claimed;
  /// The signed-in guest (kuid) and the product instance ID of the pass.
  std::string guestId;
  std::string passId;
  // Known once the checkout is recorded:
  std::string orderId;
  bool monthlyPlan = false;
  /// The stored card's retrieval reference number.
  std::string cardReference;
  /// The checkout carried a security code the guest entered: finishing needs it again.
  bool securityCodeEntered = false;
  std::string amount;
  std::string currency;
  std::string idempotencyKey;
  /// The express-checkout body without its security code.
  Json checkoutBody;
  /// Set when confirmed.
  std::string confirmationNumber;
  /// The guest has been shown the confirmation.
  bool told = false;
  /// Seconds since 1970.
  std::int64_t createdAt = 0;
  std::int64_t updatedAt = 0;

  /// Confirmed, but the guest has not seen the confirmation yet.
  bool confirmedUntold() const { return state == State::confirmed && !told; }
  /// What a later run finishes: a pending checkout, or a confirmation not yet told.
  bool awaitsFinishing() const { return state == State::pending || confirmedUntold(); }
  bool unfinished() const { return state == State::claimed || awaitsFinishing(); }
  /// "claimed", "pending", "confirmed" or "refused".
  static std::string_view stateName(State state);
  static std::optional<State> stateNamed(std::string_view name);
  /// The entry for people and tools (never a body: it holds e-mail addresses).
  Json toJson() const;
  /// An express-checkout body without the card's security code: what a
  /// journal keeps of it, whatever it is given.
  static Json withoutSecurityCode(Json body);
};

class RenewalJournal {
 public:
  struct Claim {
    enum class Kind {
      /// A new claimed entry: go on with a new renewal.
      fresh,
      /// The pass has a pending renewal nobody is finishing (or a confirmed
      /// one its guest was not told of): finish that one.
      unfinished,
      /// Another renewal of the pass (or of this entry) is in flight.
      busy,
      /// The journal could not be written: nothing may be sent.
      failed,
    };
    Kind kind = Kind::failed;
    RenewalJournalEntry entry;
    /// An earlier renewal of the pass stopped before its checkout (nothing charged).
    bool replacedInterrupted = false;
    /// Why it failed, for people.
    std::string reason;
  };

  virtual ~RenewalJournal() = default;

  /// Takes `passId` of `guestId` for a renewal (see the class comment).
  virtual Claim claim(const std::string& guestId, const std::string& passId) = 0;
  /// Takes the unfinished entry `id` to finish it.
  virtual Claim claimEntry(std::int64_t id) = 0;
  /// Writes the checkout of a claimed entry (its id, and the fields known once
  /// the checkout is recorded) durably and makes it pending; an error when it
  /// is not on disk, and then nothing may be sent.
  virtual std::optional<Error> recordCheckout(const RenewalJournalEntry& entry) = 0;
  /// The checkout was answered.
  virtual std::optional<Error> finish(std::int64_t id, RenewalJournalEntry::State state,
                                      const std::string& confirmationNumber) = 0;
  /// The guest has been shown the confirmation of the confirmed entry `id`.
  virtual void markTold(std::int64_t id) = 0;
  /// The renewal stopped without an answer to act on (see the class comment).
  virtual void release(std::int64_t id) = 0;
  /// The guest's pending entries (a checkout recorded, no answer acted on)
  /// and confirmed ones not yet told, oldest first.
  virtual std::vector<RenewalJournalEntry> unfinished(const std::string& guestId) const = 0;
  /// Every entry of the guest, oldest first.
  virtual std::vector<RenewalJournalEntry> entries(const std::string& guestId) const = 0;
};

/// A journal that lives as long as the process: one renewal per pass in
/// flight within it, and the three outcomes, but no recovery after a restart.
/// The renewal road falls back on it when the host registered no journal.
class InMemoryRenewalJournal final : public RenewalJournal {
 public:
  Claim claim(const std::string& guestId, const std::string& passId) override;
  Claim claimEntry(std::int64_t id) override;
  std::optional<Error> recordCheckout(const RenewalJournalEntry& entry) override;
  std::optional<Error> finish(std::int64_t id, RenewalJournalEntry::State state,
                              const std::string& confirmationNumber) override;
  void markTold(std::int64_t id) override;
  void release(std::int64_t id) override;
  std::vector<RenewalJournalEntry> unfinished(const std::string& guestId) const override;
  std::vector<RenewalJournalEntry> entries(const std::string& guestId) const override;

 private:
  struct Row {
    RenewalJournalEntry entry;
    bool owned = false;
  };
  Row* find(std::int64_t id);

  mutable std::mutex mutex_;
  std::vector<Row> rows_;
  std::int64_t nextId_ = 1;
};

/// Domain of the journals' own errors.
inline constexpr const char* kRenewalJournalErrorDomain = "Varnel.RenewalJournal";

}  // namespace varnel
