#include "varnel/standalone/network/IdempotencyKeys.h"

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <map>
#include <mutex>
#include <random>

#include "varnel/host/Registry.h"

namespace varnel::standalone {
namespace {

std::string hex(const unsigned char* bytes, std::size_t count) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(count * 2);
  for (std::size_t i = 0; i < count; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 0x0f];
  }
  return text;
}

/// Separates a kept key from the time it was kept (seconds since 1970).
constexpr char kKeptSince = '@';

std::int64_t nowSeconds() {
  return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

/// Keys of writes while no settings store is registered.
std::map<std::string, std::string>& memoryKeys() {
  static std::map<std::string, std::string> keys;
  return keys;
}

/// One key decision at a time, so that two threads never both make a key for
/// the same write.
std::mutex& keysMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

IdempotencyKeys::IdempotencyKeys(std::shared_ptr<UserDefaults> store) : explicitStore_(std::move(store)) {}

std::shared_ptr<UserDefaults> IdempotencyKeys::store() const {
  return explicitStore_ ? explicitStore_ : host::Registry::get<UserDefaults>();
}

std::string IdempotencyKeys::freshKey() {
  std::array<unsigned char, 16> bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
    // The system's generator failed; fall back to the standard library's.
    std::random_device device;
    for (auto& byte : bytes) byte = static_cast<unsigned char>(device());
  }
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0f) | 0x40);
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3f) | 0x80);
  const std::string digits = hex(bytes.data(), bytes.size());
  return digits.substr(0, 8) + "-" + digits.substr(8, 4) + "-" + digits.substr(12, 4) + "-" + digits.substr(16, 4) +
         "-" + digits.substr(20);
}

std::string IdempotencyKeys::settingsKey(std::string_view url, std::string_view body) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int length = 0;
  EVP_MD_CTX* context = EVP_MD_CTX_new();
  EVP_DigestInit_ex(context, EVP_sha256(), nullptr);
  EVP_DigestUpdate(context, url.data(), url.size());
  EVP_DigestUpdate(context, "\n", 1);
  EVP_DigestUpdate(context, body.data(), body.size());
  EVP_DigestFinal_ex(context, digest.data(), &length);
  EVP_MD_CTX_free(context);
  return std::string(kPendingWritePrefix) + hex(digest.data(), length);
}

std::string IdempotencyKeys::keyForWrite(const std::string& pendingWrite) {
  std::lock_guard lock(keysMutex());
  auto defaults = store();
  if (!defaults) {
    auto [it, inserted] = memoryKeys().try_emplace(pendingWrite, "");
    if (inserted) it->second = freshKey();
    return it->second;
  }
  if (!abandonedDropped_) dropAbandoned(*defaults);
  if (auto kept = defaults->stringForKey(pendingWrite); kept && !kept->empty()) {
    return kept->substr(0, kept->find(kKeptSince));
  }
  std::string key = freshKey();
  defaults->setString(pendingWrite, key + kKeptSince + std::to_string(nowSeconds()));
  defaults->synchronize();
  return key;
}

void IdempotencyKeys::writeAnswered(const std::string& pendingWrite) {
  std::lock_guard lock(keysMutex());
  auto defaults = store();
  if (!defaults) {
    memoryKeys().erase(pendingWrite);
    return;
  }
  defaults->removeObjectForKey(pendingWrite);
}

void IdempotencyKeys::dropAbandoned(UserDefaults& defaults) {
  abandonedDropped_ = true;
  const auto oldest = nowSeconds() - std::chrono::duration_cast<std::chrono::seconds>(kAbandonedAfter).count();
  for (const auto& [name, value] : defaults.dictionaryRepresentation()) {
    if (!name.starts_with(kPendingWritePrefix)) continue;
    const auto* text = value.get<std::string>();
    const auto since = text ? text->find(kKeptSince) : std::string::npos;
    std::int64_t keptAt = 0;
    if (since != std::string::npos) {
      const char* first = text->data() + since + 1;
      std::from_chars(first, text->data() + text->size(), keptAt);
    }
    if (keptAt < oldest) defaults.removeObjectForKey(name);
  }
}

}  // namespace varnel::standalone
