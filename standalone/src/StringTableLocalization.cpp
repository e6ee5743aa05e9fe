#include "varnel/standalone/StringTableLocalization.h"

#include "varnel/host/KTVCPrintUtility.h"
#include "varnel/platform/Json.h"
#include "varnel/standalone/InputFile.h"

namespace varnel::standalone {

StringTableLocalization::StringTableLocalization(std::string language) : language_(std::move(language)) {}

std::string StringTableLocalization::localizedStringForKey(std::string_view key, std::string_view tableName,
                                                           const std::filesystem::path& bundle) const {
  const auto file = bundle / (language_ + ".lproj") / (std::string(tableName) + ".json");
  std::lock_guard lock(mutex_);
  const Table& entries = table(file);
  auto it = entries.find(key);
  return it == entries.end() ? std::string(key) : it->second;
}

const StringTableLocalization::Table& StringTableLocalization::table(const std::filesystem::path& file) const {
  if (auto it = tables_.find(file); it != tables_.end()) return it->second;
  Table& entries = tables_[file];
  const auto content = readInputFile(file);
  if (!content) {
    KTVCPrintUtility::errorPrint("String table not readable: " + file.string());
    return entries;
  }
  const Json document = parseJson(content.value()).value.value_or(Json());
  if (!document.is_object()) {
    KTVCPrintUtility::errorPrint("String table is not a JSON object: " + file.string());
    return entries;
  }
  for (const auto& [key, text] : document.items()) {
    if (text.is_string()) entries.emplace(key, text.get<std::string>());
  }
  return entries;
}

}  // namespace varnel::standalone
