#include "varnel/standalone/SqliteUserDefaults.h"

#include <cstdlib>
#include <exception>
#include <set>
#include <utility>

#include <sqlite3.h>

#include "SqliteStatement.h"
#include "varnel/host/KTVCPrintUtility.h"

namespace varnel::standalone {
namespace fs = std::filesystem;
namespace {

/// Marks a file as this store ("VNLD"), so that another program's database is
/// never taken for one.
constexpr int kApplicationId = 0x564E4C44;
constexpr int kSchemaVersion = 1;

constexpr const char* kCreateSchema =
    "CREATE TABLE defaults (key TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL) WITHOUT ROWID";

Error storeError(const fs::path& path, int code, const std::string& message) {
  return Error{kSqliteUserDefaultsErrorDomain, code,
               Json{{"message", message}, {"path", path.string()}, {kErrorLocalizedDescriptionKey, message}}};
}

/// Why SQLite answered `code`, in words that say what to do about it.
std::string reasonFor(sqlite3* database, int code) {
  switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return "locked by another process";
    case SQLITE_READONLY: return "read-only";
    default: return sqlite3_errmsg(database);
  }
}

/// The error of `doing` ("cannot read") that failed with `code`: "PATH is
/// locked by another process", "PATH is read-only", else "cannot read PATH:
/// SQLite's reason".
Error failureOf(sqlite3* database, int code, const fs::path& path, const std::string& doing) {
  const int primary = code & 0xff;
  if (primary == SQLITE_BUSY || primary == SQLITE_LOCKED || primary == SQLITE_READONLY) {
    return storeError(path, code, path.string() + " is " + reasonFor(database, code));
  }
  return storeError(path, code, doing + " " + path.string() + ": " + sqlite3_errmsg(database));
}

using sqlite::execute;
using sqlite::queryInteger;
using sqlite::Statement;

std::string unreadableMessage(std::string_view key, const fs::path& path, const std::string& problem) {
  return "the value under \"" + std::string(key) + "\" in " + path.string() + " cannot be read: " + problem;
}

/// Reads the whole file once: refuses anything that is not a sound database.
std::optional<Error> checkIntegrity(sqlite3* database, const fs::path& path) {
  Statement check(database, "PRAGMA quick_check");
  const int result = check.step();
  if (result != SQLITE_ROW) {
    const std::string reason = sqlite3_errmsg(database);
    if ((result & 0xff) == SQLITE_NOTADB) {
      return storeError(path, result, path.string() + " is not a user-defaults store: " + reason);
    }
    if ((result & 0xff) == SQLITE_CORRUPT) return storeError(path, result, path.string() + " is damaged: " + reason);
    return failureOf(database, result, path, "cannot read");
  }
  const std::string verdict = check.text(0);
  if (verdict != "ok") {
    return storeError(path, SQLITE_CORRUPT, path.string() + " is damaged: " + verdict);
  }
  return std::nullopt;
}

/// Gives a new, empty file the store's schema. Another process may be doing
/// the same at this moment: the immediate transaction lets only one of them.
std::optional<Error> createSchemaIfEmpty(sqlite3* database, const fs::path& path) {
  const auto tables = queryInteger(database, "SELECT count(*) FROM sqlite_master");
  const auto applicationId = queryInteger(database, "PRAGMA application_id");
  if (tables != 0 || applicationId != 0) return std::nullopt;

  const auto failed = [&](const char* what) {
    Error failure = failureOf(database, sqlite3_errcode(database), path, what);
    execute(database, "ROLLBACK");
    return failure;
  };
  if (!execute(database, "PRAGMA journal_mode=WAL")) return failed("cannot set up");
  if (!execute(database, "BEGIN IMMEDIATE")) return failed("cannot set up");
  if (queryInteger(database, "SELECT count(*) FROM sqlite_master") == 0) {
    const std::string stamp = "PRAGMA application_id=" + std::to_string(kApplicationId) +
                              "; PRAGMA user_version=" + std::to_string(kSchemaVersion);
    if (!execute(database, kCreateSchema) || !execute(database, stamp.c_str())) return failed("cannot set up");
  }
  if (!execute(database, "COMMIT")) return failed("cannot set up");
  return std::nullopt;
}

std::optional<Error> checkSchema(sqlite3* database, const fs::path& path) {
  const auto applicationId = queryInteger(database, "PRAGMA application_id");
  if (applicationId != kApplicationId) {
    return storeError(path, SQLITE_NOTADB,
                      path.string() + " is a database of another program, not a user-defaults store");
  }
  const auto version = queryInteger(database, "PRAGMA user_version");
  if (version != kSchemaVersion) {
    return storeError(path, SQLITE_NOTADB,
                      path.string() + " has user-defaults schema version " +
                          std::to_string(version.value_or(-1)) + ", this program reads version " +
                          std::to_string(kSchemaVersion));
  }
  std::set<std::string> columns;
  Statement info(database, "SELECT name FROM pragma_table_info('defaults')");
  while (info.step() == SQLITE_ROW) columns.insert(info.text(0));
  if (columns != std::set<std::string>{"key", "value"}) {
    return storeError(path, SQLITE_NOTADB, path.string() + " lacks the user-defaults table (key, value)");
  }
  return std::nullopt;
}

/// Takes the write lock and gives it back at once, so that a store that
/// cannot be written (read-only, or locked by another process for longer
/// than the busy timeout) is refused before anyone relies on a write.
std::optional<Error> checkWritable(sqlite3* database, const fs::path& path) {
  if (sqlite3_db_readonly(database, "main") == 1) {
    return storeError(path, SQLITE_READONLY, path.string() + " is read-only");
  }
  if (!execute(database, "BEGIN IMMEDIATE")) {
    return failureOf(database, sqlite3_errcode(database), path, "cannot write to");
  }
  execute(database, "ROLLBACK");
  return std::nullopt;
}

}  // namespace

Result<std::shared_ptr<SqliteUserDefaults>> SqliteUserDefaults::open(const fs::path& path,
                                                                     std::chrono::milliseconds busyTimeout) {
  std::error_code folderError;
  if (path.has_parent_path()) fs::create_directories(path.parent_path(), folderError);
  if (folderError) {
    return storeError(path, SQLITE_CANTOPEN,
                      "cannot create the folder of " + path.string() + ": " + folderError.message());
  }

  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &opened,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX, nullptr);
  std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(opened, &sqlite3_close_v2);
  if (result != SQLITE_OK) {
    return storeError(path, result, "cannot open " + path.string() + ": " + sqlite3_errstr(result));
  }
  sqlite3_extended_result_codes(database.get(), 1);
  sqlite3_busy_timeout(database.get(), static_cast<int>(busyTimeout.count()));

  // Checks that only read come first, so that a foreign or damaged file is
  // refused before anything is written to it.
  for (auto check : {&checkIntegrity, &createSchemaIfEmpty, &checkSchema, &checkWritable}) {
    if (auto error = check(database.get(), path)) return *error;
  }
  if (!execute(database.get(), "PRAGMA journal_mode=WAL") || !execute(database.get(), "PRAGMA synchronous=FULL")) {
    return failureOf(database.get(), sqlite3_errcode(database.get()), path, "cannot set up");
  }
  return std::shared_ptr<SqliteUserDefaults>(new SqliteUserDefaults(database.release(), path));
}

Result<fs::path> SqliteUserDefaults::defaultPath() {
  const auto environment = [](const char* name) -> std::string {
    const char* value = std::getenv(name);
    return value ? value : "";
  };
  if (auto chosen = environment(kDefaultsPathEnvironmentVariable); !chosen.empty()) return fs::path(chosen);
  fs::path configuration = environment("XDG_CONFIG_HOME");
  if (configuration.empty() || configuration.is_relative()) {
    const auto home = environment("HOME");
    if (home.empty()) {
      return storeError({}, SQLITE_CANTOPEN,
                        "no place for the user defaults: set VARNEL_DEFAULTS, XDG_CONFIG_HOME or HOME");
    }
    configuration = fs::path(home) / ".config";
  }
  return configuration / "varnel" / "defaults.sqlite3";
}

Result<fs::path> SqliteUserDefaults::resolvePath(const std::optional<fs::path>& explicitPath) {
  if (explicitPath && !explicitPath->empty()) return *explicitPath;
  return defaultPath();
}

Result<std::shared_ptr<SqliteUserDefaults>> SqliteUserDefaults::openResolved(
    const std::optional<fs::path>& explicitPath) {
  auto path = resolvePath(explicitPath);
  if (!path) return path.error();
  return open(path.value());
}

SqliteUserDefaults::SqliteUserDefaults(sqlite3* database, fs::path path)
    : database_(database), path_(std::move(path)) {}

SqliteUserDefaults::~SqliteUserDefaults() { sqlite3_close_v2(database_); }

std::optional<DefaultsValue> SqliteUserDefaults::objectForKey(std::string_view key) const {
  std::lock_guard lock(mutex_);
  if (auto pending = unsaved_.find(key); pending != unsaved_.end()) return pending->second;
  Statement select(database_, "SELECT value FROM defaults WHERE key = ?1");
  select.bind(1, key);
  const int result = select.step();
  if (result == SQLITE_DONE) return std::nullopt;
  if (result != SQLITE_ROW) {
    KTVCPrintUtility::errorPrint("cannot read " + path_.string() + ": " + sqlite3_errmsg(database_));
    return std::nullopt;
  }
  auto decoded = parseDefaultsValueText(select.text(0));
  if (!decoded.value) KTVCPrintUtility::errorPrint(unreadableMessage(key, path_, decoded.problem));
  return std::move(decoded.value);
}

SqliteUserDefaults::Contents SqliteUserDefaults::contents() const {
  std::lock_guard lock(mutex_);
  Contents contents;
  Statement all(database_, "SELECT key, value FROM defaults");
  int result;
  while ((result = all.step()) == SQLITE_ROW) {
    auto decoded = parseDefaultsValueText(all.text(1));
    if (decoded.value) {
      contents.values.emplace(all.text(0), std::move(*decoded.value));
    } else {
      contents.unreadable.emplace(all.text(0), std::move(decoded.problem));
    }
  }
  if (result != SQLITE_DONE) {
    KTVCPrintUtility::errorPrint("cannot read " + path_.string() + ": " + sqlite3_errmsg(database_));
  }
  for (const auto& [key, pending] : unsaved_) {
    contents.unreadable.erase(key);
    if (pending) {
      contents.values.insert_or_assign(key, *pending);
    } else {
      contents.values.erase(key);
    }
  }
  return contents;
}

std::map<std::string, DefaultsValue, std::less<>> SqliteUserDefaults::dictionaryRepresentation() const {
  Contents all = contents();
  for (const auto& [key, problem] : all.unreadable) {
    KTVCPrintUtility::errorPrint(unreadableMessage(key, path_, problem));
  }
  return std::move(all.values);
}

void SqliteUserDefaults::setObject(std::string_view key, DefaultsValue value) { write(key, std::move(value)); }

void SqliteUserDefaults::removeObjectForKey(std::string_view key) { write(key, std::nullopt); }

void SqliteUserDefaults::write(std::string_view key, std::optional<DefaultsValue> value) {
  std::optional<std::string> encoded;
  if (value) {
    encoded = defaultsValueText(*value);
    if (!encoded) {
      const std::string failure = "refused to store the value under \"" + std::string(key) +
                                  "\": it contains a number that is not finite or text that is not UTF-8, or nests "
                                  "arrays and dictionaries too deeply";
      KTVCPrintUtility::errorPrint(failure);
      std::lock_guard lock(mutex_);
      refusedSinceSynchronize_ = true;
      writeFailure_ = failure;
      return;
    }
  }
  std::lock_guard lock(mutex_);
  const std::string ownedKey(key);
  if (commit(ownedKey, encoded)) {
    unsaved_.erase(ownedKey);
  } else {
    unsaved_.insert_or_assign(ownedKey, std::move(value));
  }
}

bool SqliteUserDefaults::commit(const std::string& key, const std::optional<std::string>& encoded) {
  // One statement in autocommit mode is its own transaction. A removal need
  // not wait for the disk: it survives a killed process at once, and a power
  // cut from the next synced write on.
  if (!encoded) execute(database_, "PRAGMA synchronous=NORMAL");
  Statement statement(database_, encoded ? "INSERT INTO defaults (key, value) VALUES (?1, ?2) "
                                           "ON CONFLICT (key) DO UPDATE SET value = excluded.value"
                                         : "DELETE FROM defaults WHERE key = ?1");
  statement.bind(1, key);
  if (encoded) statement.bind(2, *encoded);
  const int result = statement.step();
  if (!encoded) execute(database_, "PRAGMA synchronous=FULL");
  if (result == SQLITE_DONE) return true;
  writeFailure_ = "cannot write \"" + key + "\" to " + path_.string() + ": " + reasonFor(database_, result);
  KTVCPrintUtility::errorPrint(writeFailure_);
  return false;
}

bool SqliteUserDefaults::synchronize() {
  std::lock_guard lock(mutex_);
  for (auto pending = unsaved_.begin(); pending != unsaved_.end();) {
    const auto encoded = pending->second ? defaultsValueText(*pending->second) : std::nullopt;
    pending = commit(pending->first, encoded) ? unsaved_.erase(pending) : std::next(pending);
  }
  // Committed writes are already durable in the log, which SQLite folds into
  // the main file by itself as it grows.
  const bool everythingWritten = unsaved_.empty() && !refusedSinceSynchronize_;
  refusedSinceSynchronize_ = false;
  if (everythingWritten) writeFailure_.clear();
  return everythingWritten;
}

std::optional<std::string> SqliteUserDefaults::writeFailure() const {
  std::lock_guard lock(mutex_);
  return writeFailure_.empty() ? std::nullopt : std::optional<std::string>(writeFailure_);
}

}  // namespace varnel::standalone
