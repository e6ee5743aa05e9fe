#pragma once
// Looking for a secret in a log line. A short secret such as a security code
// can be spelled by chance by a loopback port or a random idempotency key,
// which a line may rightly carry: those are taken out before looking.

#include <regex>
#include <string>

namespace varnel::testing {

/// `line` without loopback addresses and UUIDs.
inline std::string withoutAddressesAndKeys(const std::string& line) {
  static const std::regex chance(
      "127\\.0\\.0\\.1:[0-9]+|[0-9a-fA-F]{8}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{12}");
  return std::regex_replace(line, chance, "_");
}

}  // namespace varnel::testing
