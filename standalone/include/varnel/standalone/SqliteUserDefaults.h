#pragma once
// The stand-alone user-defaults store: one SQLite file, shared safely by
// several processes.
//
// Every write goes through at once in its own transaction (write-ahead log,
// synchronous=FULL), so a value whose write returned is on disk even if the
// process is killed right after. A removal survives a killed process at once
// and a power cut from the next write on: it costs no wait for the disk. Reads go to the file each time and so see
// what other processes wrote. A write that could not be committed (the file
// stayed locked, the disk is full) is kept in memory, still visible to this
// process, and retried by synchronize(), which answers whether everything is
// on disk.
//
// A file that cannot be used as such a store is refused by open() and left as
// it is: not a database, damaged, another schema, read-only, or locked by
// another process for longer than the busy timeout. The error's message names
// the file and the reason.
//
// A value that cannot be read (another program's encoding, nesting deeper than
// the JSON limits allow, varnel/platform/Json.h) does not make the store
// unusable: reads answer its key as absent and log a line naming the key,
// contents() lists it, and removeObjectForKey() deletes it.

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "varnel/platform/Result.h"
#include "varnel/platform/UserDefaults.h"

struct sqlite3;

namespace varnel::standalone {

/// Domain of the errors that open() and defaultPath() report. Their user
/// information holds "message" (a sentence for people) and "path".
inline constexpr const char* kSqliteUserDefaultsErrorDomain = "Varnel.SqliteUserDefaults";

/// Name of the environment variable that chooses the store's file.
inline constexpr const char* kDefaultsPathEnvironmentVariable = "VARNEL_DEFAULTS";

class SqliteUserDefaults final : public UserDefaults {
 public:
  /// How long open() and a write wait for another process to release the
  /// file: open() then refuses the store, a write is kept for synchronize()
  /// to retry.
  static constexpr std::chrono::milliseconds kDefaultBusyTimeout{3000};

  /// Opens the store at `path`, creating the file (and its folder) when it
  /// does not exist yet.
  static Result<std::shared_ptr<SqliteUserDefaults>> open(const std::filesystem::path& path,
                                                          std::chrono::milliseconds busyTimeout = kDefaultBusyTimeout);

  /// Where the store lives unless told otherwise: $VARNEL_DEFAULTS when set,
  /// else $XDG_CONFIG_HOME/varnel/defaults.sqlite3, else
  /// ~/.config/varnel/defaults.sqlite3. Fails only without any home.
  static Result<std::filesystem::path> defaultPath();

  /// `explicitPath` when given, else defaultPath().
  static Result<std::filesystem::path> resolvePath(const std::optional<std::filesystem::path>& explicitPath);

  /// The store that the tools share: `explicitPath` when given, else
  /// defaultPath(), opened.
  static Result<std::shared_ptr<SqliteUserDefaults>> openResolved(
      const std::optional<std::filesystem::path>& explicitPath);

  ~SqliteUserDefaults() override;
  SqliteUserDefaults(const SqliteUserDefaults&) = delete;
  SqliteUserDefaults& operator=(const SqliteUserDefaults&) = delete;

  std::optional<DefaultsValue> objectForKey(std::string_view key) const override;
  void setObject(std::string_view key, DefaultsValue value) override;
  void removeObjectForKey(std::string_view key) override;
  /// Every readable value; a line is logged for each value that is not.
  std::map<std::string, DefaultsValue, std::less<>> dictionaryRepresentation() const override;

  /// What the store holds: the values, and apart from them every key whose
  /// value cannot be read, with the reason. Logs nothing.
  struct Contents {
    std::map<std::string, DefaultsValue, std::less<>> values;
    std::map<std::string, std::string, std::less<>> unreadable;
  };
  Contents contents() const;

  /// Retries the writes that have not reached the file; true when every
  /// write so far is on disk. Costs nothing when all of them are.
  bool synchronize() override;

  /// Why the last write that did not reach the file failed ("cannot write
  /// \"KEY\" to PATH: locked by another process", a refused value); none
  /// once synchronize() has answered true.
  std::optional<std::string> writeFailure() const;

  const std::filesystem::path& path() const { return path_; }

 private:
  SqliteUserDefaults(sqlite3* database, std::filesystem::path path);

  /// Commits one write (a value, or a removal when none) in its own
  /// transaction; false when it could not.
  bool commit(const std::string& key, const std::optional<std::string>& encoded);
  void write(std::string_view key, std::optional<DefaultsValue> value);

  sqlite3* database_;
  std::filesystem::path path_;
  mutable std::mutex mutex_;
  /// Writes not yet committed, by key; none marks a removal.
  std::map<std::string, std::optional<DefaultsValue>, std::less<>> unsaved_;
  /// A value was refused because it cannot be stored (not finite, not UTF-8).
  bool refusedSinceSynchronize_ = false;
  std::string writeFailure_;
};

}  // namespace varnel::standalone
