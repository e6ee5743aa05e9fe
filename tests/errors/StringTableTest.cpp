// Checks the shipped English string table against the keys the module looks
// up and the formats it applies to them.

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>

#include "support/Fakes.h"
#include "varnel/errors/APErrorMessage.h"
#include "varnel/errors/APNotificationBanner.h"
#include "varnel/errors/VNLPhoneNumber.h"
#include "varnel/errors/VNLPhoneUtility.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/platform/StringFormat.h"
#include "varnel/standalone/StringTableLocalization.h"

namespace varnel {
namespace {

const std::filesystem::path kResources = VARNEL_TEST_RESOURCE_DIR;
// Looked up by the pass descriptions; the only non-message text with an argument.
constexpr std::string_view kAdmissionDaysKey = "com.varnel.changeYourPass.admissionDaysThroughOutYear";
constexpr std::string_view kNoBlockoutKey = "com.varnel.changeYourPass.noBlockOutThroughOutYear";

class StringTableTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    std::ifstream input(kResources / "en.lproj" / "Localizable.json");
    table = Json::parse(input, nullptr, /*allow_exceptions=*/false);
    ASSERT_TRUE(isStringDictionary(table)) << "the table must be a JSON object of strings";
    host::Registry::set<ResourceBundle>(std::make_shared<ResourceBundle>(ResourceBundle{kResources}));
    host::Registry::set<KTVRLocalization>(std::make_shared<standalone::StringTableLocalization>());
    for (int value = 0; value < kAPErrorCaseCount; ++value) {
      for (KTVCResortChoice park : {kResortChoiceWest, kResortChoiceEast}) {
        std::string key = APErrorMessage::localizationKey(*apErrorFromRawValue(value), park);
        if (!key.empty()) messageKeys.insert(std::move(key));
      }
    }
  }

  Json table;
  std::set<std::string> messageKeys;  // every message key, each shown with a phone number
};

TEST_F(StringTableTest, HoldsEveryKeyWithOnlyThePlaceholdersItsCallerFills) {
  for (const auto& key : messageKeys) EXPECT_TRUE(table.contains(key)) << key;
  for (std::string_view key : {VNLAPRenewalsHelpPhoneNumberKeys::oqs, VNLAPRenewalsHelpPhoneNumberKeys::zlt,
                               kAdmissionDaysKey, kNoBlockoutKey}) {
    EXPECT_TRUE(table.contains(key)) << key;
  }
  for (const auto& [key, value] : table.items()) {
    const std::string text = value.get<std::string>();
    const int expected = messageKeys.count(key) == 1 || key == kAdmissionDaysKey ? 1 : 0;
    EXPECT_TRUE(key.starts_with("com.varnel.")) << key;
    EXPECT_EQ(placeholderCount(text), expected) << key << ": " << text;
    // No other directive (%d, %1$@ ...) and no stray percent sign.
    EXPECT_EQ(std::count(text.begin(), text.end(), '%'), expected) << key << ": " << text;
    EXPECT_EQ(text.find("%@") != std::string::npos, expected == 1) << key << ": " << text;
  }
}

TEST_F(StringTableTest, HelpNumbersAreFictionalAndAlreadyFormatted) {
  const std::regex fictional(R"(\(\d{3}\) 555-01\d{2})");
  std::set<std::string> numbers;
  for (KTVCResortChoice park : {kResortChoiceWest, kResortChoiceEast}) {
    const std::string number = VNLPhoneUtility::APPhoneNumber(APError::MissingCVV, park).value_or("");
    EXPECT_TRUE(std::regex_match(number, fictional)) << number;
    EXPECT_EQ(VNLPhoneNumber(number).formattedString(), number);
    numbers.insert(number);
  }
  EXPECT_EQ(numbers.size(), 2u);
}

TEST_F(StringTableTest, BannerTitlesAreDistinctTexts) {
  const auto context = std::make_shared<KTVCParkResortContext>(kResortChoiceEast);
  std::set<std::string> titles;
  for (APError error : {APError::GeneralTransactionalError, APError::SYSTEM_ERROR, APError::MissingCVV}) {
    APNotificationBanner::showNotificationBanner(error, context);
    ASSERT_FALSE(banners->made.empty());
    const std::string& title = banners->made.back()->title();
    EXPECT_FALSE(title.empty() || title.starts_with("com.varnel.")) << title;
    titles.insert(title);
  }
  EXPECT_EQ(titles.size(), 3u);
}

}  // namespace
}  // namespace varnel
