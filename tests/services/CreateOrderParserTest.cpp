#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ParserTestSupport.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"

namespace varnel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kNoPoliciesWarning = "WARNING: Could not retrieve terms & conditions policies";

Json entry(std::optional<std::string> name, Json guestIds = Json::array()) {
  Json item = {{"entitlementAssignment", {{"guestReferenceIds", std::move(guestIds)}}}};
  if (name) item["components"]["annualpass"]["names"]["KTVRO Cart Plus Ticket Only"]["text"] = *name;
  return item;
}

Json guestJson(std::string participantId, std::string kuid) {
  return {{"participantId", std::move(participantId)}, {"kuid", std::move(kuid)}};
}

class CreateOrderParserTest : public testing::ParserFixture {
 protected:
  RenewalOrder parse(const Json& answer) const { return VNLParseCreateOrderResponse().parseCreateOrder(answer); }
  std::vector<RenewableProduct> products(Json entries) const {
    return VNLParseCreateOrderResponse().orderItems({{"entries", std::move(entries)}});
  }
  std::vector<std::string> passNames(Json entries) const {
    std::vector<std::string> names;
    for (const auto& product : products(std::move(entries))) names.push_back(product.passName);
    return names;
  }
};

TEST_F(CreateOrderParserTest, SampleAnswerBecomesTheWholeOrder) {
  signIn("{A1B2C3D4-0002}");
  const RenewalOrder order = parse(sample("create-order.json"));

  EXPECT_EQ(order.orderId, "ORD7731A9");
  EXPECT_EQ(order.bookingTermsAndConditions, "Renewal passes are non-transferable and non-refundable.");
  EXPECT_TRUE(order.paymentPlan);
  EXPECT_EQ(order.pricing, (RenewalPricing{"1398.00", "0.00", "1490.27", "USD", false, "92.27", "111.77", "149.03",
                                           "149.03"}));
  EXPECT_THAT(order.products, ElementsAre(RenewableProduct{"Sunset Premier Pass", {"guest-101"}},
                                          RenewableProduct{"Harbor Select Pass", {"guest-102"}}));
  ASSERT_EQ(order.guests.size(), 2u);
  const RenewableGuest& mira = order.guests[0];
  EXPECT_FALSE(mira.isMe());
  EXPECT_EQ(mira.guestFullName(), "Mira Okafor");
  EXPECT_EQ(mira.guestPassName(), "Sunset Premier Pass");
  EXPECT_EQ(mira.streetAddress(), "410 Lantern Way\nUnit 3");
  EXPECT_EQ(mira.state(), "FL");
  EXPECT_EQ(mira.zipCode(), "32830");
  EXPECT_EQ(mira.phoneNumberType(), "MOBILE");
  EXPECT_EQ(mira.avatarID(), "avatar-castle-07");
  EXPECT_TRUE(order.guests[1].isMe());
  EXPECT_EQ(order.guests[1].guestPassName(), "Harbor Select Pass");
  EXPECT_EQ(order.guests[1].streetAddress(), "410 Lantern Way");
  ASSERT_EQ(order.termsAndConditionsPolicies.size(), 2u);
  EXPECT_EQ(order.termsAndConditionsPolicies[0].name, "Annual Pass Renewal Terms");
  EXPECT_EQ(order.termsAndConditionsPolicies[0].descriptions[1],
            (VNLRenewalPolicyDescription{"d-2", "payment", "<p>Monthly payments are charged to the card on file.</p>"}));
  EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(CreateOrderParserTest, AnythingButAnObjectGivesAnEmptyPlanOrderAndOneWarning) {
  for (const Json& answer : {Json::object(), Json::array({1, 2}), Json("text"), Json(nullptr)}) {
    log->clear();
    const RenewalOrder order = parse(answer);
    EXPECT_EQ(order.orderId, "");
    EXPECT_EQ(order.bookingTermsAndConditions, "");
    EXPECT_THAT(order.products, IsEmpty());
    EXPECT_THAT(order.guests, IsEmpty());
    EXPECT_THAT(order.termsAndConditionsPolicies, IsEmpty());
    EXPECT_EQ(order.pricing, RenewalPricing{});
    EXPECT_TRUE(order.paymentPlan);
    ASSERT_THAT(logged(), ElementsAre(kNoPoliciesWarning));
    const LogSite site = log->lines()[0].site;
    EXPECT_EQ(site.file, "Classes/Parser/VNLParseCreateOrderResponse");
    EXPECT_EQ(site.function, "parseCreateOrder(result:)");
  }
  log->clear();
  EXPECT_THAT(parse({{"termsAndConditions", {"p1"}}}).termsAndConditionsPolicies, IsEmpty());
  EXPECT_THAT(logged(), ElementsAre(kNoPoliciesWarning)) << "terms that are not an object";
}

TEST_F(CreateOrderParserTest, PricingTakesOnlyTextAmountsAndRealBooleans) {
  const Json answer = {
      {"pricing", {{"subtotal", 100}, {"tax", "8.00"}, {"total", nullptr}, {"taxIncluded", "true"}, {"currency", 1}}},
      {"totalDepositDue", {{"total", "20.00"}, {"count", 3}}},
      {"monthlyPaymentAmount", {{"value", "9.00"}, {"cents", 900}}},
      {"downPaymentAmount", {{"amount", "5.00"}}}};
  const RenewalPricing pricing = VNLParseCreateOrderResponse().priceAndRemainingBalance(answer);
  EXPECT_EQ(pricing.subtotal, std::nullopt);
  EXPECT_EQ(pricing.taxAmount, "8.00");
  EXPECT_EQ(pricing.total, std::nullopt);
  EXPECT_FALSE(pricing.taxIncluded);
  EXPECT_EQ(pricing.currency, "");
  // The deposit is read from any object; the instalment amounts only from
  // objects holding nothing but text.
  EXPECT_EQ(pricing.depositDue, "20.00");
  EXPECT_EQ(pricing.monthlyPaymentAmount, std::nullopt);
  EXPECT_EQ(pricing.downPaymentAmount, std::nullopt);

  const Json balanceOnly = {{"pricing", "none"}, {"downPaymentAmount", {{"value", "5.00"}}}};
  const RenewalPricing remaining = VNLParseCreateOrderResponse().priceAndRemainingBalance(balanceOnly);
  EXPECT_EQ(remaining.downPaymentAmount, "5.00");
  EXPECT_EQ(remaining.subtotal, std::nullopt);
  EXPECT_TRUE(VNLParseCreateOrderResponse().priceAndRemainingBalance({{"pricing", {{"taxIncluded", true}}}}).taxIncluded);
}

TEST_F(CreateOrderParserTest, OrderIdentifierIsTheLastPathComponentOfTheSelfLink) {
  const auto idOf = [this](Json links) { return parse({{"links", std::move(links)}}).orderId; };
  const auto href = [](Json value) { return Json{{"self", {{"href", std::move(value)}}}}; };
  EXPECT_EQ(idOf(href("https://commerce.example.test/orders/ABC123")), "ABC123");
  EXPECT_EQ(idOf(href("https://commerce.example.test/orders/ABC123/?expand=all#top")), "ABC123");
  EXPECT_EQ(idOf(href("/orders/ORD%2D9")), "ORD-9");
  EXPECT_EQ(idOf(href("ABC123")), "ABC123");
  EXPECT_EQ(idOf(href("https://commerce.example.test")), "");
  EXPECT_EQ(idOf(href("https://commerce.example.test/orders/AB C")), "") << "not a URL";
  EXPECT_EQ(idOf(href(42)), "");
  EXPECT_EQ(idOf({{"self", {{"href", "https://x.test/o/ABC123"}, {"templated", false}}}}), "")
      << "self must hold only text";
  EXPECT_EQ(idOf("https://x.test/o/ABC123"), "");
}

TEST_F(CreateOrderParserTest, EveryEntryIsAProductWhateverThePageSays) {
  const Json orders = {{"limit", 1}, {"total", 5}, {"entries", {entry("Gold"), entry("Silver")}}};
  EXPECT_EQ(VNLParseCreateOrderResponse().orderItems(orders).size(), 2u);
  EXPECT_THAT(VNLParseCreateOrderResponse().orderItems({{"total", 5}}), IsEmpty());
  EXPECT_THAT(products({entry("Gold"), 7}), IsEmpty()) << "entries must all be objects";
  EXPECT_THAT(products("entries"), IsEmpty());
}

TEST_F(CreateOrderParserTest, UnnamedEntriesRepeatThePreviousName) {
  EXPECT_THAT(passNames({entry("Gold"), entry(std::nullopt), entry("Silver")}), ElementsAre("Gold", "Gold", "Silver"));
  EXPECT_THAT(passNames({entry(std::nullopt), entry("Gold")}), ElementsAre("", "Gold"));

  // A name table holding anything but text, or a name that is not text, is unreadable.
  Json mixedTable = entry("Silver");
  mixedTable["components"]["annualpass"]["names"]["KTVRO Cart Plus Ticket Only"]["order"] = 2;
  Json numericName = entry(std::nullopt);
  numericName["components"]["annualpass"]["names"]["KTVRO Cart Plus Ticket Only"]["text"] = 5;
  Json otherTable = entry(std::nullopt);
  otherTable["components"]["annualpass"]["names"]["en"]["text"] = "Bronze";
  EXPECT_THAT(passNames({entry("Gold"), mixedTable, numericName, otherTable}),
              ElementsAre("Gold", "Gold", "Gold", "Gold"));
}

TEST_F(CreateOrderParserTest, ParticipantsStartEmptyForEveryEntry) {
  const auto list = products({entry("Gold", {"g1", "g2"}), entry("Silver"), entry("Bronze", {"g3", 4}),
                              Json{{"entitlementAssignment", "g4"}}});
  ASSERT_EQ(list.size(), 4u);
  EXPECT_THAT(list[0].participantId, ElementsAre("g1", "g2"));
  EXPECT_THAT(list[1].participantId, IsEmpty());
  EXPECT_THAT(list[2].participantId, IsEmpty()) << "identifiers must all be text";
  EXPECT_THAT(list[3].participantId, IsEmpty());
  EXPECT_EQ(list[3].passName, "Bronze");
}

TEST_F(CreateOrderParserTest, GuestsMustBeAnArrayOfObjects) {
  const Json items = {{"entries", {entry("Gold", {"g1"})}}};
  EXPECT_THAT(parse({{"orderItems", items}, {"guests", {guestJson("g1", "k1"), "g2"}}}).guests, IsEmpty());
  EXPECT_THAT(parse({{"orderItems", items}, {"guests", guestJson("g1", "k1")}}).guests, IsEmpty());
  EXPECT_EQ(parse({{"guests", {guestJson("g1", "k1")}}}).guests.size(), 1u) << "guests do not need products";
}

TEST_F(CreateOrderParserTest, GuestPassIsTheFirstProductListingTheGuest) {
  const std::vector<RenewableProduct> products{
      {"Gold", {"g1"}}, {"Silver", {"g2", "g3"}}, {"Bronze", {"g3"}}, {"Blank", {""}}};
  const Json guests = {guestJson("g3", "k3"), guestJson("g1", "k1"), guestJson("g9", "k9")};
  const auto holders = VNLParseCreateOrderResponse().passHolder(guests.get_ref<const Json::array_t&>(), products);
  ASSERT_EQ(holders.size(), 3u);
  EXPECT_EQ(holders[0].guestPassName(), "Silver");
  EXPECT_EQ(holders[1].guestPassName(), "Gold");
  EXPECT_EQ(holders[2].guestPassName(), "");
}

TEST_F(CreateOrderParserTest, MissingOrMistypedGuestPartsGiveEmptyText) {
  const Json guests = {
      {{"name", {{"firstName", "Ada"}, {"middle", 1}}},
       {"phoneNumber", "555"},
       {"address", {{"line1", "1 Main"}, {"line2", ""}, {"city", 3}, {"country", "US"}}},
       {"emailAddress", false},
       {"birthDate", "2001-01-01"},
       {"kuid", 12}},
      {{"name", {{"lastName", "Byron"}}}, {"phoneNumber", {{"number", "555"}, {"type", 1}}}},
      Json::object()};
  const auto holders = VNLParseCreateOrderResponse().passHolder(guests.get_ref<const Json::array_t&>(), {});
  ASSERT_EQ(holders.size(), 3u);
  EXPECT_EQ(holders[0].guestFirstName(), "") << "a name table must hold only text";
  EXPECT_EQ(holders[0].guestFullName(), " ");
  EXPECT_EQ(holders[0].phoneNumber(), "");
  EXPECT_EQ(holders[0].streetAddress(), "1 Main");
  EXPECT_EQ(holders[0].city(), "");
  EXPECT_EQ(holders[0].country(), "US");
  EXPECT_EQ(holders[0].emailId(), "");
  EXPECT_EQ(holders[0].dob(), "2001-01-01");
  EXPECT_EQ(holders[0].guestKuid(), "");
  EXPECT_EQ(holders[1].guestFullName(), " Byron");
  EXPECT_EQ(holders[1].phoneNumber(), "555");
  EXPECT_EQ(holders[1].phoneNumberType(), "");
  RenewableGuest::Fields blank;
  blank.guestFullName = " ";
  EXPECT_EQ(holders[2], RenewableGuest(blank));
}

TEST_F(CreateOrderParserTest, IsMeComparesWithTheSignedInGuest) {
  const Json answer = {{"guests", {guestJson("g1", "k1"), guestJson("g2", "k2"), Json::object()}}};
  const auto isMe = [this, &answer] {
    std::vector<bool> flags;
    for (const auto& guest : parse(answer).guests) flags.push_back(guest.isMe());
    return flags;
  };
  signIn("k2");
  EXPECT_THAT(isMe(), ElementsAre(false, true, false));
  signIn(std::nullopt);
  EXPECT_THAT(isMe(), ElementsAre(false, false, false));
  signIn("");
  EXPECT_THAT(isMe(), ElementsAre(false, false, true)) << "a guest without kuid has the empty one";
  host::Registry::set<KTVRAuthenticationService>(nullptr);
  EXPECT_THAT(isMe(), ElementsAre(false, false, false));
}

}  // namespace
}  // namespace varnel
