#include "ParserTestSupport.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"

namespace varnel {

using testing::kRemoved;

const std::string kFile = "Classes/Parser/VNLParseCreateOrderResponse";
const std::string kNoTerms = "parseCreateOrder(result:) WARNING: Could not retrieve terms & conditions policies";
const std::string kNoPolicies = "termsAndConditionsPolicies(_:) No terms & conditions policies found in renewal order";
const std::string kBadPolicy = "termsAndConditionsPolicies(_:) Unable to parse renewal order terms and conditions";
const std::string kNoTexts =
    "descriptionsFromPolicy(_:) No htmltex found in terms & conditions policies for a renewal order";
const std::string kBadText = "descriptionsFromPolicy(_:) Unable to parse terms & condition text";
const std::string kEntry = "/orderItems/entries/";
const std::string kPolicy = "/termsAndConditions/policies/0";
const std::string kPolicies = "/termsAndConditionsPolicies";

static RenewalOrder parse(const Json& answer) { return VNLParseCreateOrderResponse().parseCreateOrder(answer); }

using CreateOrderParserTest = testing::ParserFixture;

TEST_F(CreateOrderParserTest, SampleAnswerBecomesTheWholeOrder) {
  const RenewalOrder order = parse(sample("create-order.json"));
  EXPECT_EQ(order.bookingTermsAndConditions, "Renewal passes are non-transferable and non-refundable.");
  EXPECT_EQ(order.pricing, (RenewalPricing{"1398.00", "0.00", "1490.27", "USD", false, "92.27", "111.77", "149.03",
                                           "149.03"}));
  EXPECT_EQ(order.guests.at(0).toJson(),
            (Json{{"isMe", false}, {"avatarID", "avatar-castle-07"}, {"guestFirstName", "Mira"},
                  {"guestLastName", "Okafor"}, {"guestFullName", "Mira Okafor"}, {"guestPassName", "Sunset Premier Pass"},
                  {"dob", "1986-04-19"}, {"streetAddress", "410 Lantern Way\nUnit 3"}, {"city", "Hollowmere"},
                  {"state", "QZ"}, {"country", "US"}, {"zipCode", "00043"}, {"phoneNumber", "5925550142"},
                  {"emailId", "mira.okafor@example.test"}, {"participantId", "guest-101"},
                  {"guestKuid", "{A1B2C3D4-0001}"}, {"phoneNumberType", "MOBILE"}}));
  EXPECT_EQ(order.termsAndConditionsPolicies.at(0).descriptions.at(1),
            (VNLRenewalPolicyDescription{"d-2", "payment", "<p>Monthly payments are charged to the card on file.</p>"}));
  EXPECT_THAT(log->lines(), ::testing::IsEmpty());
}

TEST_F(CreateOrderParserTest, PricingTakesTextAmountsAndOrderIdTheLastComponentOfTheSelfLink) {
  expectDamage("create-order.json", kFile, parse, {
      {"/pricing/subtotal", 100, "/pricing/subtotal", nullptr},
      {"/pricing/taxIncluded", "true", "/pricing/taxIncluded", false},
      {"/pricing/taxIncluded", true, "/pricing/taxIncluded", true},
      {"/totalDepositDue/count", 3, "/pricing/depositDue", "149.03"},  // any object holds the deposit
      {"/monthlyPaymentAmount/cents", 900, "/pricing/monthlyPaymentAmount", nullptr},  // only all-text objects
      {"/links/self/href", "https://x.test/orders/ABC123/?expand=all#top", "/orderId", "ABC123"},
      {"/links/self/href", "/orders/ORD%2D9", "/orderId", "ORD-9"},
      {"/links/self/href", "https://x.test", "/orderId", ""},
      {"/links/self/href", "https://x.test/orders/AB C", "/orderId", ""},  // not a URL
      {"/links/self/templated", false, "/orderId", ""},                   // self holds only text
  });
}

TEST_F(CreateOrderParserTest, ProductsCarryTheLastReadableNameAndGuestsTakeTheFirstListingProduct) {
  const std::string secondName = kEntry + "1/components/annualpass/names/KTVRO Cart Plus Ticket Only";
  const std::string firstIds = kEntry + "0/entitlementAssignment/guestReferenceIds/-";
  expectDamage("create-order.json", kFile, parse, {
      {"/orderItems/limit", 1, "/products/1/passName", "Harbor Select Pass"},  // the page size is ignored
      {kEntry + "1", 7, "/products", Json::array()},                          // entries are all objects
      {kEntry + "0/components", kRemoved, "/products/0/passName", ""},
      {kEntry + "1/components", kRemoved, "/guests/1/guestPassName", "Sunset Premier Pass"},
      {secondName + "/text", 5, "/products/1/passName", "Sunset Premier Pass"},
      {secondName + "/order", 2, "/products/1/passName", "Sunset Premier Pass"},  // name table all text
      {firstIds, 4, "/products/0/participantId", Json::array()},
      {firstIds, "guest-102", "/guests/1/guestPassName", "Sunset Premier Pass"},
      {"/guests/0/participantId", "guest-999", "/guests/0/guestPassName", ""},
      {"/orderItems", kRemoved, "/guests/0/guestFullName", "Mira Okafor"},  // guests need no products
      {"/guests/0/name/middle", 1, "/guests/0/guestFullName", " "},  // name table all text
      {"/guests/0/address/line2", "", "/guests/0/streetAddress", "410 Lantern Way"},
  });
}

TEST_F(CreateOrderParserTest, UnreadableTermsAreLoggedAndLeftOutButTheOrderIsStillAPlan) {
  expectDamage("create-order.json", kFile, parse, {
      {"", Json::array({1, 2}), "/paymentPlan", true, {kNoTerms}},
      {"/termsAndConditions", Json::array({"p1"}), kPolicies, Json::array(), {kNoTerms}},
      {"/termsAndConditions/policies/1", "pol-privacy", kPolicies, Json::array(), {kNoPolicies}},
      {kPolicy + "/name", kRemoved, kPolicies + "/0/id", "pol-privacy", {kBadPolicy}},
      // Without an id the texts are never read.
      {kPolicy, Json{{"name", "n"}, {"descriptions", "x"}}, kPolicies + "/0/id", "pol-privacy", {kBadPolicy}},
      {kPolicy + "/descriptions", kRemoved, kPolicies + "/0/id", "pol-privacy", {kNoTexts, kBadPolicy}},
      {kPolicy + "/descriptions/1", 3, kPolicies + "/0/id", "pol-privacy", {kNoTexts, kBadPolicy}},
      {kPolicy + "/descriptions/0/key", kRemoved, kPolicies + "/0/descriptions/0/id", "d-2", {kBadText}},
      {kPolicy + "/descriptions", Json::array(), kPolicies + "/0/descriptions", Json::array()},  // still counts
  });
}

TEST_F(CreateOrderParserTest, IsMeComparesTheGuestsKuidWithTheSignedInOne) {
  Json answer = sample("create-order.json");
  answer["guests"][0].erase("kuid");
  const auto isMe = [&answer](std::size_t guest) { return parse(answer).guests.at(guest).isMe(); };
  signIn("{A1B2C3D4-0002}");
  EXPECT_TRUE(!isMe(0) && isMe(1));
  signIn(std::nullopt);
  EXPECT_FALSE(isMe(0) || isMe(1));
  signIn("");
  EXPECT_TRUE(isMe(0) && !isMe(1)) << "a guest without kuid has the empty one";
  host::Registry::set<KTVRAuthenticationService>(nullptr);
  EXPECT_FALSE(isMe(0) || isMe(1));
}

}  // namespace varnel
