#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "EntitlementTestSupport.h"
#include "varnel/entitlements/VNLEntitlementAnnualPass.h"

namespace varnel {
namespace {

using testing::EntitlementFixture;
using OptionalText = std::optional<std::string>;

// An entitlement class that adopts the protocols no shipped class combines,
// holding one storage per property like the shipped classes do.
#define TEST_PROPERTY(Type, name, Setter) \
  const Type& name() const override { return name##_; } \
  void Setter(Type value) override { name##_ = std::move(value); } \
  Type name##_{};
#define TEST_VALUE_PROPERTY(Type, name, Setter) \
  Type name() const override { return name##_; } \
  void Setter(Type value) override { name##_ = value; } \
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
  TEST_VALUE_PROPERTY(bool, isShared, setIsShared)
  TEST_PROPERTY(std::string, ageGroup, setAgeGroup)
  TEST_PROPERTY(OptionalText, ownerName, setOwnerName)
  TEST_PROPERTY(OptionalText, ownerFirstName, setOwnerFirstName)
  TEST_PROPERTY(OptionalText, ownerLastName, setOwnerLastName)
  TEST_PROPERTY(OptionalText, ownerMiddleName, setOwnerMiddleName)
  TEST_PROPERTY(OptionalText, ownerNickName, setOwnerNickName)
  TEST_PROPERTY(OptionalText, ownerKUID, setOwnerKUID)
  TEST_PROPERTY(OptionalText, ownerXID, setOwnerXID)
  TEST_PROPERTY(OptionalText, ownerGUID, setOwnerGUID)
  TEST_VALUE_PROPERTY(std::int64_t, multiDayPassesRemaining, setMultiDayPassesRemaining)
  TEST_PROPERTY(OptionalText, seatName, setSeatName)
  TEST_PROPERTY(OptionalText, seatRowName, setSeatRowName)
  TEST_PROPERTY(OptionalText, seatSectionName, setSeatSectionName)
  TEST_VALUE_PROPERTY(bool, isGovIDLinked, setIsGovIDLinked)
  TEST_PROPERTY(std::optional<std::int64_t>, govIDConfirmationNumber, setGovIDConfirmationNumber)
  TEST_PROPERTY(OptionalText, guestType, setGuestType)
  TEST_PROPERTY(std::optional<std::vector<std::string>>, guestIdentifierArray, setGuestIdentifierArray)
  TEST_PROPERTY(std::optional<Json>, optionTypeAndValueArray, setOptionTypeAndValueArray)
  TEST_PROPERTY(OptionalText, avatarURL, setAvatarURL)
};

class CapabilityProtocols : public EntitlementFixture {};

TEST_F(CapabilityProtocols, TheOneInitialiserFillsEveryAdoptedProtocolInOrder) {
  manager->profile = ENTMUserProfile{ENTMAvatar{"profile-avatar"}};
  ENTMEntitlement source;
  source.profileId = "guest-kuid";
  source.avatarId = "own-avatar";
  source.ageGroup = "child";
  source.status = "ACTIVE";
  source.isShared = true;
  source.holderName = "Ada Byron";
  source.firstName = "Ada";
  source.ownerGuid = "G-1";
  source.daysRemaining = 3.0;
  source.rowName = "K";
  source.sectionName = "Balcony";
  source.govIdLinked = true;
  source.orderConfirmationNumber = "123";
  source.guestIdentifierArray = std::vector<std::string>{"id-1", "id-2"};

  const auto ticket = VNLEntitlement::initWith<GuestTicket>(source);
  // The guest profile runs after the type protocol: its own avatar wins, in the base's storage.
  EXPECT_EQ(ticket->VNLEntitlement::avatarId(), "own-avatar");
  EXPECT_EQ(static_cast<VNLEntitlementAgeGroupProtocol&>(*ticket).ageGroup(), "child");
  EXPECT_EQ(static_cast<VNLEntitlementGuestProfileProtocol&>(*ticket).ageGroup(), "child");
  EXPECT_EQ(ticket->status(), "ACTIVE");
  EXPECT_FALSE(ticket->exchangeStatus().has_value());
  EXPECT_TRUE(ticket->isShared());
  EXPECT_EQ(ticket->ownerName(), "Ada Byron");
  EXPECT_EQ(ticket->ownerFirstName(), "Ada");
  EXPECT_EQ(ticket->ownerGUID(), "G-1");
  EXPECT_FALSE(ticket->ownerLastName().has_value());
  EXPECT_EQ(ticket->multiDayPassesRemaining(), 3);
  EXPECT_FALSE(ticket->seatName().has_value());
  EXPECT_EQ(ticket->seatRowName(), "K");
  EXPECT_EQ(ticket->seatSectionName(), "Balcony");
  EXPECT_TRUE(ticket->isGovIDLinked());
  EXPECT_EQ(ticket->govIDConfirmationNumber(), 123);
  EXPECT_EQ(ticket->guestIdentifierArray(), (std::vector<std::string>{"id-1", "id-2"}));

  const Json json = ticket->toJson();
  EXPECT_EQ(json["avatarId"], "own-avatar");
  EXPECT_EQ(json["seatRowName"], "K");
  EXPECT_EQ(json["govIDConfirmationNumber"], 123);
  EXPECT_TRUE(json["ownerLastName"].is_null());
}

TEST_F(CapabilityProtocols, TheTypeAvatarComesFromTheGuestProfileOnlyForTheGuestsOwnEntitlements) {
  manager->profile = ENTMUserProfile{ENTMAvatar{"profile-avatar"}};
  ENTMEntitlement source;
  source.avatarId = "own-avatar";
  source.profileId = "guest-kuid";
  EXPECT_EQ(VNLEntitlement::initWith<VNLEntitlementAnnualPass>(source)->avatarId(), "profile-avatar");

  source.profileId = "someone-else";
  EXPECT_EQ(VNLEntitlement::initWith<VNLEntitlementAnnualPass>(source)->avatarId(), "own-avatar");

  source.avatarId.reset();
  auto pass = std::make_shared<VNLEntitlementAnnualPass>();
  pass->setAvatarId("stale");
  pass->setProductTypeID("stale");
  pass->populateTypeFields(source);
  EXPECT_EQ(pass->avatarId(), "");
  EXPECT_EQ(pass->productTypeID(), "");

  manager->profile.reset();
  source.profileId = "guest-kuid";
  source.avatarId = "own-avatar";
  EXPECT_EQ(VNLEntitlement::initWith<VNLEntitlementAnnualPass>(source)->avatarId(), "");
}

TEST_F(CapabilityProtocols, SharedPropertiesHaveOneStorage) {
  auto pass = std::make_shared<VNLEntitlementAnnualPass>();
  VNLEntitlement& base = *pass;
  VNLEntitlementPaymentProtocol& payment = *pass;
  VNLEntitlementTypeProtocol& type = *pass;

  payment.setPricePerMonth(74.99f);
  EXPECT_EQ(base.pricePerMonth(), 74.99f);
  base.setPricePerMonth(10.0f);
  EXPECT_EQ(payment.pricePerMonth(), 10.0f);

  type.setIsRenewable(true);
  EXPECT_TRUE(base.entitlementRenewable());
  base.setEntitlementRenewable(false);
  EXPECT_FALSE(type.isRenewable());

  base.setAvatarId("a-1");
  EXPECT_EQ(type.avatarId(), "a-1");
}

TEST_F(CapabilityProtocols, OnlyARenewablePassWithoutADefaultRenewalIsASunsetPass) {
  ENTMEntitlement source;
  source.isRenewable = true;
  EXPECT_TRUE(VNLEntitlement::initWith<VNLEntitlementAnnualPass>(source)->isSunsetPass());
  source.defaultRenewableProductId = "next-year";
  EXPECT_FALSE(VNLEntitlement::initWith<VNLEntitlementAnnualPass>(source)->isSunsetPass());
  source.isRenewable = false;
  source.defaultRenewableProductId.reset();
  EXPECT_FALSE(VNLEntitlement::initWith<VNLEntitlementAnnualPass>(source)->isSunsetPass());
}

TEST_F(CapabilityProtocols, OnlyAWholeDecimalConfirmationNumberIsTaken) {
  struct Case {
    std::string text;
    std::optional<std::int64_t> expected;
  };
  const Case cases[] = {{"123", 123},      {"+7", 7},        {"-5", -5},
                        {"A123", 42},      {"12.0", 42},     {"", 42},
                        {" 1", 42},        {"1 ", 42},       {"+-5", 42},
                        {"99999999999999999999", 42}};
  for (const Case& c : cases) {
    GuestTicket ticket;
    ticket.setGovIDConfirmationNumber(42);
    ENTMEntitlement source;
    source.orderConfirmationNumber = c.text;
    ticket.populateGovernementIDFields(source);
    EXPECT_EQ(ticket.govIDConfirmationNumber(), c.expected) << "\"" << c.text << "\"";
  }
  GuestTicket untouched;
  untouched.populateGovernementIDFields(ENTMEntitlement{});
  EXPECT_FALSE(untouched.govIDConfirmationNumber().has_value());
}

TEST_F(CapabilityProtocols, DaysRemainingIsTakenOnlyWhenPresentAsItsIntegerValue) {
  GuestTicket ticket;
  ticket.setMultiDayPassesRemaining(5);
  ticket.populateMultiDayFields(ENTMEntitlement{});
  EXPECT_EQ(ticket.multiDayPassesRemaining(), 5);

  ENTMEntitlement source;
  source.daysRemaining = 2.9;
  ticket.populateMultiDayFields(source);
  EXPECT_EQ(ticket.multiDayPassesRemaining(), 2);
  source.daysRemaining = std::nan("");
  ticket.populateMultiDayFields(source);
  EXPECT_EQ(ticket.multiDayPassesRemaining(), 0);
  source.daysRemaining = 1e30;
  ticket.populateMultiDayFields(source);
  EXPECT_EQ(ticket.multiDayPassesRemaining(), std::numeric_limits<std::int64_t>::max());
}

TEST_F(CapabilityProtocols, OnlyExactlyUsdSetsThePaymentCurrency) {
  VNLEntitlementAnnualPass pass;
  pass.setCurrencyForPrice(VNLCurrency::gbp);
  ENTMEntitlement source;
  for (const char* other : {"usd", "CAD", "USD "}) {
    source.currency = other;
    pass.populatePaymentFields(source);
    EXPECT_EQ(pass.currencyForPrice(), VNLCurrency::gbp) << other;
  }
  source.currency.reset();
  pass.populatePaymentFields(source);
  EXPECT_EQ(pass.currencyForPrice(), VNLCurrency::gbp);
  source.currency = "USD";
  pass.populatePaymentFields(source);
  EXPECT_EQ(pass.currencyForPrice(), VNLCurrency::usd);
}

TEST_F(CapabilityProtocols, AnAnnualPassIsFilledThroughEveryProtocolItAdopts) {
  ENTMEntitlement source;
  source.productType = "cobalt-annual-pass";
  source.isRenewable = true;
  source.defaultRenewableProductId = "none-matches";
  source.numberOfDays = 365;
  source.startDate = Date{1.70e9};
  source.passExpirationDate = Date{1.73e9};
  source.admissionDays = "Mon-Thu";
  source.totalPrice = 899.0f;
  source.pricePerMonth = 74.5f;
  source.monthlyPaymentEligible = true;
  source.currency = "USD";
  source.discount = "15%";
  source.tax = 61.2f;
  source.address = "1 Main St";
  source.state = "FL";
  source.city = "Bay Lake";
  source.ageGroup = "adult";
  source.policyTitle = "Terms";
  source.policyArray = Json::array({"a", "b"});
  source.calculatedPolicyText = "Full text";
  source.seatName = "A1";  // seats are not an annual-pass capability

  const auto pass = VNLEntitlement::initWith<VNLEntitlementAnnualPass>(source);
  EXPECT_EQ(pass->productTypeID(), "cobalt-annual-pass");
  EXPECT_TRUE(pass->isRenewable());
  EXPECT_FALSE(pass->isSunsetPass());
  EXPECT_EQ(pass->numberOfDays(), 365);
  EXPECT_EQ(pass->startDate(), Date{1.70e9});
  EXPECT_EQ(pass->endDate(), Date::unknownMarker());
  EXPECT_EQ(pass->passExpirationDate(), Date{1.73e9});
  EXPECT_EQ(pass->admissionDays(), "Mon-Thu");
  EXPECT_EQ(pass->annualPayment(), 899.0f);
  EXPECT_EQ(pass->pricePerMonth(), 74.5f);
  EXPECT_TRUE(pass->isMonthlyPaymentEligible());
  EXPECT_EQ(pass->savingPercentage(), "15%");
  EXPECT_EQ(pass->tax(), 61.2f);
  EXPECT_EQ(pass->address(), "1 Main St");
  EXPECT_EQ(pass->stateProvince(), "FL");
  EXPECT_EQ(pass->city(), "Bay Lake");
  EXPECT_EQ(pass->postalCode(), "");
  EXPECT_EQ(pass->ageGroup(), "adult");
  EXPECT_EQ(pass->policyTitle(), "Terms");
  EXPECT_EQ(pass->policyArray(), Json::array({"a", "b"}));
  EXPECT_EQ(pass->policyText(), "Full text");
  EXPECT_EQ(pass->renewableEntitlement(), nullptr);
  EXPECT_EQ(pass->priceMonthly(), 0.0f);
}

}  // namespace
}  // namespace varnel
