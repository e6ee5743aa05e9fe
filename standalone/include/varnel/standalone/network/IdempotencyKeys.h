#pragma once
// Idempotency keys of writes. Every write gets a key, and every retry of it
// reuses that key. While a write has no answer its key is kept in the
// settings store under a digest of its URL and body, so that a process that
// dies mid-write and sends the same write again after a restart reuses the
// key and the service does not act twice. An answered write's key is dropped;
// a kept key older than kAbandonedAfter belongs to a write nobody sent again
// and is dropped the first time this process makes a key.
//
// Cost: one synced write to the store per write request (the key); dropping
// it waits for no disk.

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include "varnel/platform/UserDefaults.h"

namespace varnel::standalone {

class IdempotencyKeys {
 public:
  /// Prefix of the settings keys; the rest is the hex SHA-256 of URL and body.
  static constexpr std::string_view kPendingWritePrefix = "com.varnel.network.pendingWrite.";

  /// Keys are kept in `store` (the registered settings store when null is
  /// given, and in memory only when there is none).
  explicit IdempotencyKeys(std::shared_ptr<UserDefaults> store = nullptr);

  /// A kept key of a write that was never answered is dropped after this long.
  static constexpr std::chrono::hours kAbandonedAfter{24};

  /// The key of the write whose settingsKey() is `pendingWrite`: the kept
  /// one, else a fresh one, kept (and written out) before this returns.
  std::string keyForWrite(const std::string& pendingWrite);
  /// The write was answered: its key is no longer needed.
  void writeAnswered(const std::string& pendingWrite);

  /// A random version-4 UUID.
  static std::string freshKey();
  static std::string settingsKey(std::string_view url, std::string_view body);

 private:
  std::shared_ptr<UserDefaults> store() const;

  void dropAbandoned(UserDefaults& store);

  std::shared_ptr<UserDefaults> explicitStore_;
  bool abandonedDropped_ = false;
};

}  // namespace varnel::standalone
