// Checks the shipped English string table against the keys the module looks
// up and the formats it applies to them.

#include <gtest/gtest.h>

#include <algorithm>
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
#include "varnel/platform/Json.h"
#include "varnel/platform/StringFormat.h"
#include "varnel/standalone/StringTableLocalization.h"

namespace varnel {
namespace {

const std::filesystem::path kResources = VARNEL_TEST_RESOURCE_DIR;

// Keys looked up outside this concern (pass descriptions).
constexpr std::string_view kAdmissionDaysKey = "com.varnel.changeYourPass.admissionDaysThroughOutYear";
constexpr std::string_view kNoBlockoutKey = "com.varnel.changeYourPass.noBlockOutThroughOutYear";

Json loadTable() {
  std::ifstream input(kResources / "en.lproj" / "Localizable.json");
  return Json::parse(input, nullptr, /*allow_exceptions=*/false);
}

/// Every key the error concern can look up for some error at a resort that
/// has a help phone number.
std::set<std::string> messageKeys() {
  std::set<std::string> keys;
  for (int value = 0; value < kAPErrorCaseCount; ++value) {
    for (KTVCResortChoice park : {kResortChoiceWest, kResortChoiceEast}) {
      std::string key = APErrorMessage::localizationKey(*apErrorFromRawValue(value), park);
      if (!key.empty()) keys.insert(std::move(key));
    }
  }
  return keys;
}

class StringTableTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    table = loadTable();
    ASSERT_TRUE(isStringDictionary(table)) << "the table must be a JSON object of strings";
    host::Registry::set<ResourceBundle>(std::make_shared<ResourceBundle>(ResourceBundle{kResources}));
    host::Registry::set<KTVRLocalization>(std::make_shared<standalone::StringTableLocalization>());
  }

  bool has(std::string_view key) const { return table.contains(key); }
  Json table;
};

TEST_F(StringTableTest, HoldsEveryKeyTheModuleUses) {
  std::set<std::string> used = messageKeys();
  used.insert(std::string(VNLAPRenewalsHelpPhoneNumberKeys::oqs));
  used.insert(std::string(VNLAPRenewalsHelpPhoneNumberKeys::zlt));
  used.insert(std::string(kAdmissionDaysKey));
  used.insert(std::string(kNoBlockoutKey));
  for (const auto& key : used) EXPECT_TRUE(has(key)) << key;
  for (const auto& [key, text] : table.items()) {
    EXPECT_TRUE(key.starts_with("com.varnel.")) << key;
    EXPECT_FALSE(text.get<std::string>().empty()) << key;
  }
}

TEST_F(StringTableTest, OnlyPhoneMessagesAndAdmissionDaysCarryOnePlaceholder) {
  const std::set<std::string> messages = messageKeys();
  for (const auto& [key, value] : table.items()) {
    const std::string text = value.get<std::string>();
    const bool takesOneArgument = messages.count(key) == 1 || key == kAdmissionDaysKey;
    EXPECT_EQ(placeholderCount(text), takesOneArgument ? 1 : 0) << key << ": " << text;
    // No other format directive (%d, %s, %1$@ ...) and no stray percent sign.
    EXPECT_EQ(std::count(text.begin(), text.end(), '%'), placeholderCount(text)) << key << ": " << text;
    if (takesOneArgument) {
      EXPECT_NE(text.find("%@"), std::string::npos) << key;
    }
  }
}

TEST_F(StringTableTest, HelpNumbersAreFictionalAndAlreadyFormatted) {
  const std::regex fictional(R"(\(\d{3}\) 555-01\d{2})");
  for (std::string_view key : {VNLAPRenewalsHelpPhoneNumberKeys::oqs, VNLAPRenewalsHelpPhoneNumberKeys::zlt}) {
    ASSERT_TRUE(has(key)) << key;
    const std::string number = table[std::string(key)].get<std::string>();
    EXPECT_TRUE(std::regex_match(number, fictional)) << number;
    EXPECT_EQ(VNLPhoneNumber(number).formattedString(), number);
  }
  EXPECT_NE(table[std::string(VNLAPRenewalsHelpPhoneNumberKeys::oqs)],
            table[std::string(VNLAPRenewalsHelpPhoneNumberKeys::zlt)]);
}

TEST_F(StringTableTest, EveryMessageShowsTheResortNumber) {
  for (KTVCResortChoice park : {kResortChoiceWest, kResortChoiceEast}) {
    const std::string phone = *VNLPhoneUtility::APPhoneNumber(APError::MissingCVV, park);
    for (int value = 0; value < kAPErrorCaseCount; ++value) {
      const APError error = *apErrorFromRawValue(value);
      const std::string message = APErrorMessage::message(error, park);
      if (APErrorMessage::localizationKey(error, park).empty()) {
        EXPECT_EQ(message, "") << description(error);
        continue;
      }
      EXPECT_NE(message.find(phone), std::string::npos) << description(error) << ": " << message;
      EXPECT_EQ(message.find("com.varnel."), std::string::npos) << description(error);
    }
  }
}

TEST_F(StringTableTest, BannerTitlesAreInTheTable) {
  const auto context = std::make_shared<KTVCParkResortContext>(kResortChoiceEast);
  for (APError error : {APError::GeneralTransactionalError, APError::SYSTEM_ERROR, APError::MissingCVV}) {
    APNotificationBanner::showNotificationBanner(error, context);
  }
  ASSERT_EQ(banners->made.size(), 3u);
  std::set<std::string> titles;
  for (const auto& banner : banners->made) {
    EXPECT_FALSE(banner->title().empty());
    EXPECT_FALSE(banner->title().starts_with("com.varnel.")) << banner->title();
    titles.insert(banner->title());
  }
  EXPECT_EQ(titles.size(), 3u);
}

}  // namespace
}  // namespace varnel
