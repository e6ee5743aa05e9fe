#pragma once
// String tables as JSON objects of key to text, at
// <bundle>/<language>.lproj/<table>.json. Tables are read once and kept.
// A missing or malformed table is reported once and holds no keys, so every
// key looks up as itself.

#include <map>
#include <mutex>
#include <string>

#include "varnel/host/KTVRLocalization.h"

namespace varnel::standalone {

class StringTableLocalization final : public KTVRLocalization {
 public:
  explicit StringTableLocalization(std::string language = "en");
  std::string localizedStringForKey(std::string_view key, std::string_view tableName,
                                    const std::filesystem::path& bundle) const override;

 private:
  using Table = std::map<std::string, std::string, std::less<>>;
  const Table& table(const std::filesystem::path& file) const;

  std::string language_;
  mutable std::mutex mutex_;
  mutable std::map<std::filesystem::path, Table> tables_;
};

}  // namespace varnel::standalone
