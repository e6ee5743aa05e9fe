#include <gmock/gmock.h>

#include "TemporaryDirectory.h"
#include "varnel/standalone/JsonRemoteConfiguration.h"

namespace varnel::standalone {
namespace {

using ::testing::HasSubstr, ::testing::Pointee;

TEST(JsonRemoteConfigurationTest, ValuesKeepTheirTypeAndUnusableFilesAreErrorsNamingTheFile) {
  const testing::TemporaryDirectory directory;
  const std::filesystem::path unusable[] = {
      directory.path / "missing.json",
      directory.path,
      directory.write("malformed.json", R"({"enableAnnualPassportCommerce": tru)"),
      directory.write("empty.json", ""),
      directory.write("array.json", "[true, false]"),
      directory.write("binary.json", std::string("\xff\xfe{\x00}", 5)),
      directory.write("twice.json", R"({"enableAnnualPassportSales": true, "enableAnnualPassportSales": false})"),
      directory.write("deep.json", R"({"enableRideslot": )" + std::string(200, '[') + std::string(200, ']') + "}"),
      "/dev/zero",
  };
  for (const auto& file : unusable) {
    const auto loaded = JsonRemoteConfiguration::load(file);
    ASSERT_FALSE(loaded.ok()) << file;
    EXPECT_EQ(loaded.error().domain, kJsonRemoteConfigurationErrorDomain);
    EXPECT_THAT(jsonString(loaded.error().userInfo, "message"), Pointee(HasSubstr(file.string())));
  }
  const auto loaded = JsonRemoteConfiguration::load(directory.write("remote.json", R"({"on": true, "text": "true"})"));
  ASSERT_TRUE(loaded.ok());
  EXPECT_EQ(loaded.value()->configurationValueByKey("on"), Json(true));
  EXPECT_EQ(loaded.value()->configurationValueByKey("text"), Json("true"));
  EXPECT_EQ(loaded.value()->configurationValueByKey("enableAnnualPassportSales"), std::nullopt);
}

}  // namespace
}  // namespace varnel::standalone
