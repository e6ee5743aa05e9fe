#pragma once
// The host's localization library: looks a key up in a string table of a
// resource bundle. A key that the table does not hold looks up as itself.

#include <filesystem>
#include <string>
#include <string_view>

namespace varnel {

class KTVRLocalization {
 public:
  virtual ~KTVRLocalization() = default;
  virtual std::string localizedStringForKey(std::string_view key, std::string_view tableName,
                                            const std::filesystem::path& bundle) const = 0;
};

}  // namespace varnel
