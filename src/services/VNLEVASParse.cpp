#include "varnel/services/VNLEVASParse.h"

#include <fstream>
#include <sstream>

#include "varnel/host/ApplicationBundle.h"
#include "varnel/host/ENTMParseTicketsAndAPs.h"
#include "varnel/host/KTVCPrintUtility.h"

namespace varnel {
namespace {

constexpr std::string_view kEVASSource = "Classes/VNKEVASParse";

/// The resource's bytes; none when it is missing or cannot be read.
std::optional<std::string> resourceContent(std::string_view name) {
  const std::filesystem::path file = applicationResourceDirectory() / (std::string(name) + ".json");
  std::error_code status;
  if (!std::filesystem::is_regular_file(file, status)) return std::nullopt;
  std::ifstream input(file, std::ios::binary);
  if (!input) return std::nullopt;
  std::ostringstream content;
  content << input.rdbuf();
  if (input.bad()) return std::nullopt;
  return content.str();
}

}  // namespace

Json VNLEVASParse::dataFromJsonFile(std::string_view fileName) {
  const std::optional<std::string> content = resourceContent(fileName);
  if (!content) return Json::object();
  JsonParse decoded = parseJson(*content);
  if (!decoded) {
    KTVCPrintUtility::debugPrint("Failed to load json file",
                                 LogSite{std::string(kEVASSource), "dataFromJsonFile(fileName:)", __LINE__});
    return Json::object();
  }
  return std::move(*decoded.value);
}

std::optional<ENTMAnyList> VNLEVASParse::parseEvasJson(std::string_view jsonFileName) {
  return ENTMParseTicketsAndAPs().parse(dataFromJsonFile(jsonFileName));
}

}  // namespace varnel
