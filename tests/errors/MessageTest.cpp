// Guest-facing texts and banners, over the shipped English string table.

#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "support/Fakes.h"
#include "varnel/errors/APErrorMessage.h"
#include "varnel/errors/APNotificationBanner.h"
#include "varnel/errors/VNLPhoneNumber.h"
#include "varnel/errors/VNLPhoneUtility.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"
#include "varnel/standalone/StringTableLocalization.h"

namespace varnel {
namespace {

const std::filesystem::path kResources = VARNEL_TEST_RESOURCE_DIR;
constexpr KTVCResortChoice kWest = kResortChoiceWest, kEast = kResortChoiceEast;

class MessageTest : public testing::HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    host::Registry::set<ResourceBundle>(std::make_shared<ResourceBundle>(ResourceBundle{kResources}));
    host::Registry::set<KTVRLocalization>(std::make_shared<standalone::StringTableLocalization>());
  }
  static std::string number(KTVCResortChoice park) {
    return VNLPhoneUtility::APPhoneNumber(APError::MissingCVV, park).value_or("");
  }
  const testing::RecordingBanner& show(APError error, KTVCResortChoice resort, KTVRRetryBlock retry = {}) {
    banners->made.clear();
    APNotificationBanner::showNotificationBanner(error, std::make_shared<KTVCParkResortContext>(resort), retry);
    EXPECT_EQ(banners->made.size(), 1u);
    EXPECT_EQ(banners->made.at(0)->shownCount, 1);
    return *banners->made.at(0);
  }
};

TEST_F(MessageTest, MessagesCarryTheResortsNumberAndTheTableOnlyThePlaceholdersCallersFill) {
  std::ifstream input(kResources / "en.lproj" / "Localizable.json");
  const Json table = Json::parse(input, nullptr, /*allow_exceptions=*/false);
  ASSERT_TRUE(isStringDictionary(table));
  EXPECT_TRUE(table.contains("com.varnel.changeYourPass.noBlockOutThroughOutYear"));
  // The pass descriptions' text is the only non-message text with an argument.
  std::set<std::string> withArgument{"com.varnel.changeYourPass.admissionDaysThroughOutYear"};
  // What the guest must fix before anything is sent needs no help number: these
  // texts are finished sentences at every resort, with or without a number.
  const std::set<APError> withoutNumber{
      APError::MissingPaymentMethod,           APError::MissingCVV,
      APError::MissingPhoneNumber,             APError::NoTermsAndConditions,
      APError::MissingCVVAndTermsAndConditions, APError::MissingCCAndTermsAndConditions,
      APError::NoElectronicSignatureTandC,     APError::ContractNotSigned};
  EXPECT_NE(number(kWest), number(kEast));
  for (int value = 0; value < kAPErrorCaseCount; ++value) {
    const APError error = *apErrorFromRawValue(value);
    const bool needsNumber = !withoutNumber.contains(error);
    for (KTVCResortChoice park : {kWest, kEast, kResortChoiceAlternate}) {
      SCOPED_TRACE(::testing::Message() << value << " at " << park);
      const std::string key = APErrorMessage::localizationKey(error, park);
      if (needsNumber) withArgument.insert(key);
      const std::string text = APErrorMessage::message(error, park);
      const bool shown = !(error == APError::ConnectionError || (error == APError::NonFLResident && park != kEast) ||
                           ((error == APError::NonSCAResident || error == APError::NonCAResident) && park != kWest));
      EXPECT_EQ(text.empty(), !shown) << text;
      if (!shown) continue;
      const bool hasNumber = park != kResortChoiceAlternate && needsNumber;
      if (park != kResortChoiceAlternate) {
        EXPECT_EQ(text.find(number(park)) != std::string::npos, needsNumber) << text;
      }
      // No placeholder ever; without a number, whole sentences without the words that introduce it.
      EXPECT_EQ(text.find('%'), std::string::npos) << text;
      if (hasNumber) continue;
      EXPECT_TRUE(text.ends_with('.')) << text;
      for (const char* dangling : {" call", "Call", " at ", " at.", "For help"}) {
        EXPECT_EQ(text.find(dangling), std::string::npos) << text;
      }
      EXPECT_EQ(text, table.value(needsNumber ? key + ".withoutPhoneNumber" : key, "")) << "used as it stands";
    }
  }
  withArgument.erase("");
  for (const auto& key : withArgument) {
    EXPECT_TRUE(table.contains(key)) << key;
    if (key.starts_with("com.varnel.checkout.")) {
      EXPECT_TRUE(table.contains(key + ".withoutPhoneNumber")) << key;
    }
  }
  for (const auto& [key, value] : table.items()) {
    const std::string text = value.get<std::string>();
    const long expected = withArgument.contains(key) ? 1 : 0;
    // One "%@" where the caller fills one, and no other directive or stray percent sign.
    EXPECT_EQ(std::count(text.begin(), text.end(), '%'), expected) << key << ": " << text;
    EXPECT_EQ(text.find("%@") != std::string::npos, expected == 1) << key << ": " << text;
  }
  const std::string noRetry = APErrorMessage::message(APError::ServiceErrorNoRetry, kEast);
  EXPECT_NE(noRetry, APErrorMessage::message(APError::SYSTEM_ERROR, kEast));
  EXPECT_EQ(noRetry, APErrorMessage::message(APError::GeneralTransactionalError, kEast));
  // An unknown resort has no number either; a table without the companion text loses the sentence.
  EXPECT_EQ(APErrorMessage::message(APError::SYSTEM_ERROR, 3),
            APErrorMessage::message(APError::SYSTEM_ERROR, kResortChoiceAlternate));
  EXPECT_EQ(log->lines().back().site.function, "APPhoneNumber(for:for:)");
  EXPECT_EQ(APErrorMessage::textWithoutPhoneNumber("no.such.key", "Sorry. Call %@ now. Try later."),
            "Sorry. Try later.");
  EXPECT_EQ(APErrorMessage::textWithoutPhoneNumber("no.such.key", "Call %@."), "");
  // Help numbers must format as they are: a short one would stop the process.
  for (KTVCResortChoice park : {kWest, kEast}) EXPECT_EQ(VNLPhoneNumber(number(park)).formattedString(), number(park));
}

TEST_F(MessageTest, BannerKindRetryPhoneAndContext) {
  const std::set<int> service{1, 2, 3, 4, 5, 7, 9, 10, 11}, transactional{23, 24};
  std::set<std::string> titles;
  for (int value = 0; value < kAPErrorCaseCount; ++value) {
    SCOPED_TRACE(value);
    const APError error = *apErrorFromRawValue(value);
    const bool isService = service.contains(value);
    EXPECT_EQ(isValidationError(error), value != 0 && !isService && !transactional.contains(value));
    int retries = 0;
    const auto& banner = show(error, kWest, [&](auto) { ++retries; });
    EXPECT_EQ(banner.kind(), transactional.contains(value) ? KTVRNotificationBannerKind::transactionalError
                             : isService ? KTVRNotificationBannerKind::serviceError
                                         : KTVRNotificationBannerKind::validationError);
    EXPECT_EQ(banner.message(), APErrorMessage::message(error, kWest));
    if (banner.retryBlock()) banner.retryBlock()(nullptr);
    // The guest is told not to retry a no-retry error, so no retry action is offered.
    EXPECT_EQ(retries, isService && error != APError::ServiceErrorNoRetry ? 1 : 0);
    EXPECT_EQ(banner.phoneNumber(), isService ? std::optional(number(kWest)) : std::nullopt);
    const char* domain = isService ? "varnel.error" : transactional.contains(value) ? "Varnel.APError" : nullptr;
    EXPECT_EQ(banner.error(), domain ? std::optional(Error{domain, value, Json()}) : std::nullopt);
    titles.insert(banner.title());
  }
  EXPECT_FALSE(apErrorFromRawValue(kAPErrorCaseCount) || apErrorFromRawValue(-1));
  EXPECT_EQ(titles.size(), 3u);  // one per kind, each from the table
  for (const auto& title : titles) EXPECT_FALSE(title.empty() || title.starts_with("com.varnel.")) << title;

  APNotificationBanner::showNotificationBanner(APError::SYSTEM_ERROR, nullptr);
  EXPECT_EQ(banners->made.size(), 1u);  // only the loop's last banner
  EXPECT_EQ(log->count("KTVCParkResortContext must be supplied!"), 1u);
  EXPECT_EQ(log->lines().back().site.file, "Classes/Errors/APNotificationBanner");
  EXPECT_EQ(log->lines().back().site.function, "showNotificationBanner(error:context:retryBlock:)");
  EXPECT_FALSE(show(APError::SYSTEM_ERROR, kResortChoiceAlternate).phoneNumber());
}

TEST(VNLPhoneNumberDeathTest, FormatsTheAsciiDigitsAndHaltsBelowSeven) {
  const std::pair<const char*, const char*> rows[] = {
      {"592.555.0142", "(592) 555-0142"},          {"1-592-555-0142", "1-(592) 555-0142"},
      {"+44 (099) 555-0142", "44-(099) 555-0142"}, {"5550142", "() 555-0142"},
      {"75550142", "(7) 555-0142"},                {"\xd9\xa1" "5925550142", "(592) 555-0142"},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(VNLPhoneNumber(text).formattedString(), expected);
  EXPECT_EQ(VNLPhoneNumber("12345").phoneNumber(), "123-2345");  // the two parts overlap
  EXPECT_DEATH((void)VNLPhoneNumber("555-014").locationNumber(), "fewer than seven digits");
}

}  // namespace
}  // namespace varnel
