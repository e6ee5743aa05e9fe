#include "varnel/standalone/SqliteRenewalJournal.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <mutex>
#include <sstream>

#include "SqliteStatement.h"

namespace varnel::standalone {
namespace {

using sqlite::execute;
using sqlite::Statement;
using State = RenewalJournalEntry::State;

constexpr const char* kCreateJournal =
    "CREATE TABLE IF NOT EXISTS renewals ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT, guest TEXT NOT NULL, pass TEXT NOT NULL, state TEXT NOT NULL,"
    " owner TEXT NOT NULL DEFAULT '', order_id TEXT NOT NULL DEFAULT '', monthly INTEGER NOT NULL DEFAULT 0,"
    " card TEXT NOT NULL DEFAULT '', code_entered INTEGER NOT NULL DEFAULT 0, amount TEXT NOT NULL DEFAULT '',"
    " currency TEXT NOT NULL DEFAULT '', idempotency_key TEXT NOT NULL DEFAULT '', checkout TEXT NOT NULL DEFAULT '',"
    " confirmation TEXT NOT NULL DEFAULT '', created INTEGER NOT NULL, updated INTEGER NOT NULL,"
    " told INTEGER NOT NULL DEFAULT 0)";
/// A file written before the guest's being told was kept: what it holds was told.
constexpr const char* kAddTold = "ALTER TABLE renewals ADD COLUMN told INTEGER NOT NULL DEFAULT 1";
/// Entries a later run finishes: a pending checkout, or a confirmation not yet told.
constexpr const char* kUnfinished = "(state = 'pending' OR (state = 'confirmed' AND told = 0))";

constexpr const char* kColumns =
    "SELECT id, guest, pass, state, owner, order_id, monthly, card, code_entered, amount, currency,"
    " idempotency_key, checkout, confirmation, created, updated, told FROM renewals";

std::int64_t nowSeconds() {
  return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

/// The start time of process `pid` in clock ticks since boot; none when it does not run.
std::optional<std::string> processStart(long pid) {
  std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
  std::string line;
  if (!std::getline(stat, line)) return std::nullopt;
  // The name (field 2) may hold spaces; fields after it are counted from its ")".
  const auto close = line.rfind(')');
  if (close == std::string::npos) return std::nullopt;
  std::istringstream fields(line.substr(close + 1));
  std::string field;
  for (int index = 3; index <= 22 && fields >> field; ++index) {
    if (index == 22) return field;
  }
  return std::nullopt;
}

/// This process, as an owner: its ID and start time, so that a later process
/// given the same ID is not taken for it. Made anew in a forked child.
std::string selfOwner() {
  static std::mutex mutex;
  static pid_t cachedFor = 0;
  static std::string owner;
  std::lock_guard lock(mutex);
  if (cachedFor != getpid()) {
    cachedFor = getpid();
    owner = std::to_string(cachedFor) + ":" + processStart(cachedFor).value_or("");
  }
  return owner;
}

bool ownerRuns(const std::string& owner) {
  if (owner.empty()) return false;
  if (owner == selfOwner()) return true;
  const auto colon = owner.find(':');
  long pid = 0;
  try {
    pid = std::stol(owner.substr(0, colon));
  } catch (const std::exception&) {
    return false;
  }
  if (pid <= 0) return false;
  if (const auto started = processStart(pid)) return colon != std::string::npos && *started == owner.substr(colon + 1);
  return kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM;
}

bool hasColumn(sqlite3* database, const std::string& name) {
  Statement columns(database, "PRAGMA table_info(renewals)");
  while (columns.step() == SQLITE_ROW) {
    if (columns.text(1) == name) return true;
  }
  return false;
}

RenewalJournalEntry readEntry(const Statement& row, std::string* owner) {
  RenewalJournalEntry entry;
  entry.id = row.integer(0);
  entry.guestId = row.text(1);
  entry.passId = row.text(2);
  entry.state = RenewalJournalEntry::stateNamed(row.text(3)).value_or(State::pending);
  if (owner) *owner = row.text(4);
  entry.orderId = row.text(5);
  entry.monthlyPlan = row.integer(6) != 0;
  entry.cardReference = row.text(7);
  entry.securityCodeEntered = row.integer(8) != 0;
  entry.amount = row.text(9);
  entry.currency = row.text(10);
  entry.idempotencyKey = row.text(11);
  entry.checkoutBody = parseJson(row.text(12)).value.value_or(Json());
  entry.confirmationNumber = row.text(13);
  entry.createdAt = row.integer(14);
  entry.updatedAt = row.integer(15);
  entry.told = row.integer(16) != 0;
  return entry;
}

/// One immediate transaction; rolled back unless committed.
class Transaction {
 public:
  explicit Transaction(sqlite3* database) : database_(database), begun_(execute(database, "BEGIN IMMEDIATE")) {}
  ~Transaction() {
    if (begun_ && !committed_) execute(database_, "ROLLBACK");
  }
  bool begun() const { return begun_; }
  bool commit() { return committed_ = execute(database_, "COMMIT"); }

 private:
  sqlite3* database_;
  bool begun_;
  bool committed_ = false;
};

}  // namespace

Result<std::shared_ptr<SqliteRenewalJournal>> SqliteRenewalJournal::open(const std::filesystem::path& path) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(opened, &sqlite3_close_v2);
  const auto failed = [&](const std::string& what) {
    const std::string reason = database ? sqlite3_errmsg(database.get()) : sqlite3_errstr(result);
    return Error{kRenewalJournalErrorDomain, database ? sqlite3_errcode(database.get()) : result,
                 Json{{kErrorLocalizedDescriptionKey, "cannot " + what + " the renewal journal in " + path.string() +
                                                          ": " + reason},
                      {"path", path.string()}}};
  };
  if (result != SQLITE_OK) return failed("open");
  sqlite3_busy_timeout(database.get(), static_cast<int>(kBusyTimeout.count()));
  if (!execute(database.get(), "PRAGMA journal_mode=WAL") || !execute(database.get(), "PRAGMA synchronous=FULL") ||
      !execute(database.get(), kCreateJournal)) {
    return failed("set up");
  }
  if (!hasColumn(database.get(), "told") && !execute(database.get(), kAddTold)) return failed("update");
  return std::shared_ptr<SqliteRenewalJournal>(new SqliteRenewalJournal(database.release(), path));
}

SqliteRenewalJournal::SqliteRenewalJournal(sqlite3* database, std::filesystem::path path)
    : database_(database), path_(std::move(path)) {}

SqliteRenewalJournal::~SqliteRenewalJournal() { sqlite3_close_v2(database_); }

Error SqliteRenewalJournal::lastError(const std::string& what) const {
  return Error{kRenewalJournalErrorDomain, sqlite3_errcode(database_),
               Json{{kErrorLocalizedDescriptionKey,
                     "cannot " + what + " in " + path_.string() + ": " + sqlite3_errmsg(database_)},
                    {"path", path_.string()}}};
}

RenewalJournal::Claim SqliteRenewalJournal::claim(const std::string& guestId, const std::string& passId) {
  std::lock_guard lock(mutex_);
  Transaction transaction(database_);
  if (!transaction.begun()) return Claim{Claim::Kind::failed, {}, false, localizedDescription(lastError("claim"))};
  Claim claim{Claim::Kind::fresh, {}, false, ""};
  {
    Statement open(database_, (std::string(kColumns) +
                               " WHERE guest = ?1 AND pass = ?2 AND (state = 'claimed' OR " + kUnfinished + ") ORDER BY id")
                                  .c_str());
    open.bind(1, guestId);
    open.bind(2, passId);
    while (open.step() == SQLITE_ROW) {
      std::string owner;
      RenewalJournalEntry entry = readEntry(open, &owner);
      if (ownerRuns(owner)) return Claim{Claim::Kind::busy, entry, false, "a renewal of this pass is in flight"};
      if (entry.awaitsFinishing() && claim.kind == Claim::Kind::fresh) {
        claim.kind = Claim::Kind::unfinished;
        claim.entry = std::move(entry);
      } else if (entry.state == State::claimed) {
        claim.replacedInterrupted = true;
      }
    }
  }
  Statement drop(database_, "DELETE FROM renewals WHERE guest = ?1 AND pass = ?2 AND state = 'claimed'");
  drop.bind(1, guestId);
  drop.bind(2, passId);
  if (drop.step() != SQLITE_DONE) return Claim{Claim::Kind::failed, {}, false, localizedDescription(lastError("claim"))};
  if (claim.kind == Claim::Kind::unfinished) {
    Statement take(database_, "UPDATE renewals SET owner = ?1 WHERE id = ?2");
    take.bind(1, selfOwner());
    take.bind(2, claim.entry.id);
    if (take.step() != SQLITE_DONE) return Claim{Claim::Kind::failed, {}, false, localizedDescription(lastError("claim"))};
  } else {
    claim.entry.guestId = guestId;
    claim.entry.passId = passId;
    claim.entry.createdAt = claim.entry.updatedAt = nowSeconds();
    Statement insert(database_,
                     "INSERT INTO renewals (guest, pass, state, owner, created, updated) VALUES (?1, ?2, 'claimed', ?3, ?4, ?4)");
    insert.bind(1, guestId);
    insert.bind(2, passId);
    insert.bind(3, selfOwner());
    insert.bind(4, claim.entry.createdAt);
    if (insert.step() != SQLITE_DONE) return Claim{Claim::Kind::failed, {}, false, localizedDescription(lastError("claim"))};
    claim.entry.id = sqlite3_last_insert_rowid(database_);
  }
  if (!transaction.commit()) return Claim{Claim::Kind::failed, {}, false, localizedDescription(lastError("claim"))};
  return claim;
}

RenewalJournal::Claim SqliteRenewalJournal::claimEntry(std::int64_t id) {
  std::lock_guard lock(mutex_);
  Transaction transaction(database_);
  if (!transaction.begun()) return Claim{Claim::Kind::failed, {}, false, localizedDescription(lastError("claim"))};
  Statement find(database_, (std::string(kColumns) + " WHERE id = ?1 AND " + kUnfinished).c_str());
  find.bind(1, id);
  if (find.step() != SQLITE_ROW) {
    return Claim{Claim::Kind::failed, {}, false, "the journal holds no unfinished renewal " + std::to_string(id)};
  }
  std::string owner;
  RenewalJournalEntry entry = readEntry(find, &owner);
  if (ownerRuns(owner)) return Claim{Claim::Kind::busy, entry, false, "the renewal is being finished"};
  Statement take(database_, "UPDATE renewals SET owner = ?1 WHERE id = ?2");
  take.bind(1, selfOwner());
  take.bind(2, id);
  if (take.step() != SQLITE_DONE || !transaction.commit()) {
    return Claim{Claim::Kind::failed, {}, false, localizedDescription(lastError("claim"))};
  }
  return Claim{Claim::Kind::unfinished, entry, false, ""};
}

std::optional<Error> SqliteRenewalJournal::recordCheckout(const RenewalJournalEntry& entry) {
  std::lock_guard lock(mutex_);
  std::string body;
  try {
    body = RenewalJournalEntry::withoutSecurityCode(entry.checkoutBody).dump();
  } catch (const Json::exception&) {
    return Error{kRenewalJournalErrorDomain, SQLITE_MISMATCH,
                 Json{{kErrorLocalizedDescriptionKey, "the checkout cannot be written down (text that is not UTF-8)"}}};
  }
  Statement update(database_,
                   "UPDATE renewals SET state = 'pending', order_id = ?2, monthly = ?3, card = ?4, code_entered = ?5,"
                   " amount = ?6, currency = ?7, idempotency_key = ?8, checkout = ?9, updated = ?10"
                   " WHERE id = ?1 AND state = 'claimed' AND owner = ?11");
  update.bind(1, entry.id);
  update.bind(2, entry.orderId);
  update.bind(3, std::int64_t{entry.monthlyPlan});
  update.bind(4, entry.cardReference);
  update.bind(5, std::int64_t{entry.securityCodeEntered});
  update.bind(6, entry.amount);
  update.bind(7, entry.currency);
  update.bind(8, entry.idempotencyKey);
  update.bind(9, body);
  update.bind(10, nowSeconds());
  update.bind(11, selfOwner());
  if (update.step() != SQLITE_DONE) return lastError("write the checkout down");
  if (sqlite3_changes(database_) != 1) {
    return Error{kRenewalJournalErrorDomain, SQLITE_NOTFOUND,
                 Json{{kErrorLocalizedDescriptionKey, "the renewal is no longer claimed by this process"}}};
  }
  return std::nullopt;
}

std::optional<Error> SqliteRenewalJournal::finish(std::int64_t id, State state, const std::string& confirmationNumber) {
  std::lock_guard lock(mutex_);
  Statement update(database_,
                   "UPDATE renewals SET state = ?2, confirmation = ?3, checkout = '', owner = '', updated = ?4 WHERE id = ?1");
  update.bind(1, id);
  update.bind(2, RenewalJournalEntry::stateName(state));
  update.bind(3, confirmationNumber);
  update.bind(4, nowSeconds());
  if (update.step() != SQLITE_DONE) return lastError("write the renewal's answer down");
  return std::nullopt;
}

void SqliteRenewalJournal::markTold(std::int64_t id) {
  std::lock_guard lock(mutex_);
  Statement update(database_, "UPDATE renewals SET told = 1, owner = '' WHERE id = ?1");
  update.bind(1, id);
  update.step();
}

void SqliteRenewalJournal::release(std::int64_t id) {
  std::lock_guard lock(mutex_);
  Transaction transaction(database_);
  Statement drop(database_, "DELETE FROM renewals WHERE id = ?1 AND state = 'claimed' AND owner = ?2");
  drop.bind(1, id);
  drop.bind(2, selfOwner());
  drop.step();
  Statement clear(database_, "UPDATE renewals SET owner = '' WHERE id = ?1 AND owner = ?2");
  clear.bind(1, id);
  clear.bind(2, selfOwner());
  clear.step();
  if (transaction.begun()) transaction.commit();
}

std::vector<RenewalJournalEntry> SqliteRenewalJournal::select(const std::string& guestId, bool pendingOnly) const {
  std::lock_guard lock(mutex_);
  const std::string sql =
      std::string(kColumns) + " WHERE guest = ?1" + (pendingOnly ? std::string(" AND ") + kUnfinished : "") +
      " ORDER BY id";
  Statement query(database_, sql.c_str());
  query.bind(1, guestId);
  std::vector<RenewalJournalEntry> found;
  while (query.step() == SQLITE_ROW) found.push_back(readEntry(query, nullptr));
  return found;
}

std::vector<RenewalJournalEntry> SqliteRenewalJournal::unfinished(const std::string& guestId) const {
  return select(guestId, true);
}

std::vector<RenewalJournalEntry> SqliteRenewalJournal::entries(const std::string& guestId) const {
  return select(guestId, false);
}

}  // namespace varnel::standalone
