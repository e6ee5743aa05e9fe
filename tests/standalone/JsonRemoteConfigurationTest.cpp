#include <unistd.h>

#include <fstream>

#include <gtest/gtest.h>

#include "varnel/standalone/JsonRemoteConfiguration.h"

namespace varnel::standalone {
namespace {

namespace fs = std::filesystem;

class JsonRemoteConfigurationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "varnel-remote-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    directory = pattern;
  }
  void TearDown() override { fs::remove_all(directory); }

  fs::path write(const std::string& name, const std::string& text) {
    const auto file = directory / name;
    std::ofstream(file, std::ios::binary) << text;
    return file;
  }

  fs::path directory;
};

TEST_F(JsonRemoteConfigurationTest, ValuesComeBackAsConfiguredWhateverTheirType) {
  const auto loaded = JsonRemoteConfiguration::load(
      write("remote.json", R"({"enableAnnualPassportCommerce": true, "enableRideslot": "true",
                              "count": 3, "nothing": null})"));
  ASSERT_TRUE(loaded.ok());
  const auto& configuration = *loaded.value();
  EXPECT_EQ(configuration.configurationValueByKey("enableAnnualPassportCommerce"), Json(true));
  EXPECT_EQ(configuration.configurationValueByKey("enableRideslot"), Json("true"));
  EXPECT_EQ(configuration.configurationValueByKey("count"), Json(3));
  EXPECT_EQ(configuration.configurationValueByKey("nothing"), Json(nullptr));
  EXPECT_EQ(configuration.configurationValueByKey("enableAnnualPassportSales"), std::nullopt);
}

TEST_F(JsonRemoteConfigurationTest, UnusableFilesAreErrorsNamingTheFile) {
  const std::vector<fs::path> unusable = {
      directory / "missing.json",
      directory,
      write("malformed.json", R"({"enableAnnualPassportCommerce": tru)"),
      write("empty.json", ""),
      write("array.json", "[true, false]"),
      write("binary.json", std::string("\xff\xfe{\x00}", 5)),
  };
  for (const auto& file : unusable) {
    const auto loaded = JsonRemoteConfiguration::load(file);
    ASSERT_FALSE(loaded.ok()) << file;
    EXPECT_EQ(loaded.error().domain, kJsonRemoteConfigurationErrorDomain);
    const auto* message = jsonString(loaded.error().userInfo, "message");
    ASSERT_TRUE(message);
    EXPECT_NE(message->find(file.string()), std::string::npos) << *message;
  }
}

}  // namespace
}  // namespace varnel::standalone
