#pragma once
// The stand-alone renewal journal: a table "renewals" beside the settings in
// the same SQLite file, shared safely by every process that opens it.
//
// Each operation is one immediate transaction, so two processes never both
// claim a pass. An entry belongs to the process (its ID) that claimed it; an
// owner that no longer runs has given it up. Writes that a renewal depends on
// (a claim, a recorded checkout, its answer) reach the disk before they
// return (synchronous=FULL on the write-ahead log).

#include <chrono>
#include <filesystem>
#include <memory>
#include <mutex>

#include "varnel/checkout/RenewalJournal.h"
#include "varnel/platform/Result.h"

struct sqlite3;

namespace varnel::standalone {

class SqliteRenewalJournal final : public RenewalJournal {
 public:
  /// How long an operation waits for another process to release the file.
  static constexpr std::chrono::milliseconds kBusyTimeout{3000};

  /// Opens (and, the first time, creates) the journal in the store at `path`.
  static Result<std::shared_ptr<SqliteRenewalJournal>> open(const std::filesystem::path& path);
  ~SqliteRenewalJournal() override;
  SqliteRenewalJournal(const SqliteRenewalJournal&) = delete;
  SqliteRenewalJournal& operator=(const SqliteRenewalJournal&) = delete;

  Claim claim(const std::string& guestId, const std::string& passId) override;
  Claim claimEntry(std::int64_t id) override;
  std::optional<Error> recordCheckout(const RenewalJournalEntry& entry) override;
  std::optional<Error> finish(std::int64_t id, RenewalJournalEntry::State state,
                              const std::string& confirmationNumber) override;
  void markTold(std::int64_t id) override;
  void release(std::int64_t id) override;
  std::vector<RenewalJournalEntry> unfinished(const std::string& guestId) const override;
  std::vector<RenewalJournalEntry> entries(const std::string& guestId) const override;

  const std::filesystem::path& path() const { return path_; }

 private:
  SqliteRenewalJournal(sqlite3* database, std::filesystem::path path);
  std::vector<RenewalJournalEntry> select(const std::string& guestId, bool pendingOnly) const;
  Error lastError(const std::string& what) const;

  sqlite3* database_;
  std::filesystem::path path_;
  mutable std::mutex mutex_;
};

}  // namespace varnel::standalone
