#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "EntitlementTestSupport.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"
#include "varnel/entitlements/VNLEntitlementParkTicket.h"

namespace varnel {
namespace {

using namespace testing;
using OptionalText = std::optional<std::string>;
using OptionalNumber = std::optional<std::int64_t>;

// An entitlement class adopting the protocols no shipped class combines; one
// storage per property, read by value when scalar, as the protocols declare.
template <typename Type>
using Getter = std::conditional_t<std::is_scalar_v<Type>, Type, const Type&>;
#define TEST_PROPERTY(Type, name, Setter) \
  Getter<Type> name() const override { return name##_; } \
  void Setter(Type value) override { name##_ = std::move(value); } \
  Type name##_{};

class GuestTicket : public VNLEntitlement,
                    public VNLEntitlementTypeProtocol,
                    public VNLEntitlementStatusProtocol,
                    public VNLEntitlementAgeGroupProtocol,
                    public VNLEntitlementLinkableProtocol,
                    public VNLEntitlementMultiDayProtocol,
                    public VNLEntitlementAssignedSeatProtocol,
                    public VNLEntitlementGovernmentIDProtocol,
                    public VNLEntitlementGuestProfileProtocol {
 public:
  bool isRenewable() const override { return VNLEntitlement::isRenewable(); }
  void setIsRenewable(bool value) override { VNLEntitlement::setIsRenewable(value); }
  const std::string& avatarId() const override { return VNLEntitlement::avatarId(); }
  void setAvatarId(std::string value) override { VNLEntitlement::setAvatarId(std::move(value)); }
  TEST_PROPERTY(std::string, productTypeID, setProductTypeID)
  TEST_PROPERTY(OptionalText, status, setStatus)
  TEST_PROPERTY(OptionalText, exchangeStatus, setExchangeStatus)
  TEST_PROPERTY(bool, isShared, setIsShared)
  TEST_PROPERTY(std::string, ageGroup, setAgeGroup)
  TEST_PROPERTY(OptionalText, ownerName, setOwnerName)
  TEST_PROPERTY(OptionalText, ownerFirstName, setOwnerFirstName)
  TEST_PROPERTY(OptionalText, ownerLastName, setOwnerLastName)
  TEST_PROPERTY(OptionalText, ownerMiddleName, setOwnerMiddleName)
  TEST_PROPERTY(OptionalText, ownerNickName, setOwnerNickName)
  TEST_PROPERTY(OptionalText, ownerKUID, setOwnerKUID)
  TEST_PROPERTY(OptionalText, ownerXID, setOwnerXID)
  TEST_PROPERTY(OptionalText, ownerGUID, setOwnerGUID)
  TEST_PROPERTY(std::int64_t, multiDayPassesRemaining, setMultiDayPassesRemaining)
  TEST_PROPERTY(OptionalText, seatName, setSeatName)
  TEST_PROPERTY(OptionalText, seatRowName, setSeatRowName)
  TEST_PROPERTY(OptionalText, seatSectionName, setSeatSectionName)
  TEST_PROPERTY(bool, isGovIDLinked, setIsGovIDLinked)
  TEST_PROPERTY(OptionalNumber, govIDConfirmationNumber, setGovIDConfirmationNumber)
  TEST_PROPERTY(OptionalText, guestType, setGuestType)
  TEST_PROPERTY(std::optional<std::vector<std::string>>, guestIdentifierArray, setGuestIdentifierArray)
  TEST_PROPERTY(std::optional<Json>, optionTypeAndValueArray, setOptionTypeAndValueArray)
  TEST_PROPERTY(OptionalText, avatarURL, setAvatarURL)
};

class CapabilityProtocols : public EntitlementFixture {};

TEST_F(CapabilityProtocols, AnAnnualPassGetsEveryBaseAndProtocolFieldFromTheOneInitialiser) {
  const Json source = R"({
      "productInstanceId": "PI-1", "passTypeName": "Cobalt Pass", "ticketAgeGroupTitle": "Cobalt - Adult",
      "guestType": "RESIDENT", "avatarURL": "https://img.example/a.png", "avatarId": "own-avatar",
      "barcodeString": "BC-9", "categoryId": "AnnualPass", "categoryName": "Annual Pass", "profileId": "someone",
      "holderName": "Ada Byron", "nickname": "Ada", "shortEntitlementName": "Cobalt", "benefits": "Parking",
      "productType": "cobalt-annual-pass", "defaultRenewableProductId": "next", "ageGroup": "adult",
      "calendarId": "CAL-1", "admissionDays": "Mon-Thu", "currency": "USD", "downpayment": "99.00",
      "discount": "15%", "address": "1 Quill Row", "state": "QZ", "postalCode": "00043", "country": "US",
      "city": "Wrenfield", "policyTitle": "Terms", "policyLink": "https://terms.example",
      "calculatedPolicyText": "Full text", "policyArray": ["a", "b"], "seatName": "A1",
      "isShared": true, "isSellable": true, "isRenewable": true, "monthlyPaymentEligible": true,
      "passExpirationDate": "2026-02-28T15:00:00Z", "passValidityStartDate": "2025-03-01T15:00:00Z",
      "startDate": "2025-03-02T00:00:00Z", "endDate": "2026-03-02T00:00:00Z",
      "blockoutDates": ["2025-07-04T12:00:00Z"], "numberOfDays": 365, "totalPrice": 899,
      "pricePerMonth": 74.1, "subTotalPrice": 837.75, "tax": 61.2, "currentTicketValue": 40.5})"_json;
  const auto pass = VNLEntitlement::initWith<VNLEntitlementAnnualPass>(entry(source.dump()));
  expectCopied(pass->toJson(), VNLEntitlementAnnualPass().toJson(), source, R"({
      "productInstanceID": "PI-1", "passDisplayName": "Cobalt Pass", "passNameAndAge": "Cobalt - Adult",
      "guestIDType": "RESIDENT", "avatarImageURL": "https://img.example/a.png", "barcodeID": "BC-9",
      "categoryID": "AnnualPass", "productTypeID": "cobalt-annual-pass", "productType": 1,
      "savingPercentage": "15%", "stateProvince": "QZ", "policyText": "Full text", "shared": true,
      "sellable": true, "entitlementRenewable": true, "isMonthlyPaymentEligible": true, "isSpecialPass": true,
      "endValidityDate": "2026-02-28T15:00:00Z", "annualPayment": 899})"_json);
}

TEST_F(CapabilityProtocols, EveryOtherProtocolIsFilledAndTheGuestProfileRunsAfterTheType) {
  manager->profile = ENTMUserProfile{ENTMAvatar{"profile-avatar"}};
  const Json source = R"({
      "profileId": "guest-kuid", "avatarId": "own-avatar", "avatarURL": "https://img.example/a.png",
      "ageGroup": "child", "guestType": "CHILD", "status": "ACTIVE", "exchangeStatus": "NONE", "isShared": true,
      "holderName": "Ada Byron", "firstName": "Ada", "lastName": "Byron", "middleName": "K", "nickname": "Ad",
      "ownerKuid": "K-1", "ownerXid": "X-1", "ownerGuid": "G-1", "daysRemaining": 3, "seatName": "A1",
      "rowName": "K", "sectionName": "Balcony", "govIdLinked": true, "orderConfirmationNumber": "123",
      "guestIdentifierArray": ["id-1", "id-2"], "optionTypeAndValueArray": [{"type": "meal"}]})"_json;
  const auto ticket = VNLEntitlement::initWith<GuestTicket>(entry(source.dump()));
  expectCopied(ticket->toJson(), GuestTicket().toJson(), source, R"({
      "avatarImageURL": "https://img.example/a.png", "guestIDType": "CHILD", "shared": true,
      "ownerName": "Ada Byron", "ownerFirstName": "Ada", "ownerLastName": "Byron", "ownerMiddleName": "K",
      "ownerNickName": "Ad", "ownerKUID": "K-1", "ownerXID": "X-1", "ownerGUID": "G-1",
      "multiDayPassesRemaining": 3, "seatRowName": "K", "seatSectionName": "Balcony",
      "isGovIDLinked": true, "govIDConfirmationNumber": 123})"_json);
}

TEST_F(CapabilityProtocols, TheTypeAvatarIsTheProfilesOnlyForTheGuestsOwnEntitlements) {
  manager->profile = ENTMUserProfile{ENTMAvatar{"profile-avatar"}};
  const auto avatarOf = [](const char* json) {
    return VNLEntitlement::initWith<VNLEntitlementAnnualPass>(entry(json))->avatarId();
  };
  EXPECT_EQ(avatarOf(R"({"avatarId": "own", "profileId": "guest-kuid"})"), "profile-avatar");
  EXPECT_EQ(avatarOf(R"({"avatarId": "own", "profileId": "someone-else"})"), "own");
  EXPECT_EQ(VNLEntitlement::initWith<VNLEntitlement>(entry(R"({"avatarId": "own"})"))->avatarId(), "")
      << "a class without the type protocol";
  manager->profile.reset();
  EXPECT_EQ(avatarOf(R"({"avatarId": "own", "profileId": "guest-kuid"})"), "");
}

TEST_F(CapabilityProtocols, PropertiesSharedWithTheBaseHaveOneStorage) {
  auto pass = std::make_shared<VNLEntitlementAnnualPass>();
  VNLEntitlement& base = *pass;
  VNLEntitlementPaymentProtocol& payment = *pass;
  VNLEntitlementTypeProtocol& type = *pass;
  payment.setPricePerMonth(74.99f);
  EXPECT_EQ(base.pricePerMonth(), 74.99f);
  type.setIsRenewable(true);
  EXPECT_TRUE(base.entitlementRenewable());
  base.setAvatarId("a-1");
  EXPECT_EQ(type.avatarId(), "a-1");
}

TEST_F(CapabilityProtocols, OnlyARenewablePassWithoutADefaultRenewalIsASunsetPass) {
  const std::pair<const char*, bool> cases[] = {{R"({"isRenewable": true})", true},
                                                {R"({"isRenewable": true, "defaultRenewableProductId": "n"})", false},
                                                {R"({"defaultRenewableProductId": "n"})", false},
                                                {"{}", false}};
  for (const auto& [json, sunset] : cases) {
    EXPECT_EQ(VNLEntitlement::initWith<VNLEntitlementAnnualPass>(entry(json))->isSunsetPass(), sunset) << json;
  }
}

TEST_F(CapabilityProtocols, NumbersAndTheCurrencyAreTakenOnlyWhenUsableElseTheCurrentValueStays) {
  const std::pair<OptionalText, std::int64_t> confirmations[] = {
      {"123", 123}, {"+7", 7},     {"-5", -5},  {"A123", 42}, {"12.0", 42},   {"", 42},
      {" 1", 42},   {"1 ", 42},    {"+-5", 42}, {"99999999999999999999", 42}, {std::nullopt, 42}};
  for (const auto& [text, expected] : confirmations) {
    GuestTicket ticket;
    ticket.setGovIDConfirmationNumber(42);
    ticket.populateGovernementIDFields(with([&](auto& source) { source.orderConfirmationNumber = text; }));
    EXPECT_EQ(ticket.govIDConfirmationNumber(), expected) << text.value_or("absent");
  }
  using Limits = std::numeric_limits<std::int64_t>;  // days remaining: toward zero, saturating
  const std::pair<std::optional<double>, std::int64_t> days[] = {
      {std::nullopt, 5}, {2.9, 2}, {-2.9, -2}, {std::nan(""), 0}, {1e30, Limits::max()}, {-1e30, Limits::min()}};
  for (const auto& [remaining, expected] : days) {
    GuestTicket ticket;
    ticket.setMultiDayPassesRemaining(5);
    ticket.populateMultiDayFields(with([&](auto& source) { source.daysRemaining = remaining; }));
    EXPECT_EQ(ticket.multiDayPassesRemaining(), expected) << remaining.value_or(-1);
  }
  const std::pair<OptionalText, VNLCurrency> currencies[] = {
      {"USD", VNLCurrency::usd}, {"usd", VNLCurrency::gbp}, {"USD ", VNLCurrency::gbp},
      {"CAD", VNLCurrency::gbp}, {std::nullopt, VNLCurrency::gbp}};
  for (const auto& [currency, expected] : currencies) {
    VNLEntitlementAnnualPass pass;
    pass.setCurrencyForPrice(VNLCurrency::gbp);
    pass.populatePaymentFields(with([&](auto& source) { source.currency = currency; }));
    EXPECT_EQ(pass.currencyForPrice(), expected) << currency.value_or("absent");
  }
}

}  // namespace
}  // namespace varnel
