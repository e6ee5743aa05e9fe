#pragma once
// The household of a guest file as the commerce service knows it: who its
// guests are, which passes they hold and what a renewal costs, and the stored
// cards. Built once from the file; read-only afterwards.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "varnel/host/ENTMEntitlement.h"
#include "varnel/platform/Json.h"
#include "varnel/standalone/GuestDataFile.h"

namespace varnel::mock {

/// Money in cents; the answers carry it as "709.00".
using Cents = long long;
Cents centsOf(double amount);
/// "79", "79.5" or "79.00"; none for anything else.
std::optional<Cents> parseAmount(std::string_view text);
/// The text member `key` of `object`; empty when absent or not text.
std::string memberText(const Json& object, std::string_view key);
std::string formatAmount(Cents cents);

struct HouseholdGuest {
  std::string kuid;
  /// The order's reference of the guest ("participant-1", ...).
  std::string participantId;
  std::string firstName;
  std::string lastName;
  std::string avatarId;
  std::string ageGroup;
};

/// What renewing one pass costs: its default renewal option's prices.
struct RenewalPrice {
  std::string passName;
  std::string optionId;
  std::string currency;
  Cents total = 0;
  Cents subtotal = 0;
  Cents tax = 0;
  /// Present when the option can be paid monthly.
  std::optional<Cents> perMonth;
  std::optional<Cents> downPayment;
  /// The option's own terms (policyTitle, policyLink, calculatedPolicyText).
  std::optional<std::string> policyTitle;
  std::optional<std::string> policyLink;
  std::optional<std::string> policyText;
};

class Household {
 public:
  explicit Household(const standalone::GuestData& guest);

  /// The signed-in guest.
  const std::string& kuid() const { return kuid_; }
  const std::string& accessToken() const { return accessToken_; }
  const std::string& email() const { return email_; }

  /// The signed-in guest first, then every other holder of a pass.
  const std::vector<HouseholdGuest>& guests() const { return guests_; }
  const HouseholdGuest* guest(std::string_view kuid) const;

  /// The pass whose productInstanceId or barcodeString is `entitlementId`.
  const ENTMEntitlement* pass(std::string_view entitlementId) const;
  /// The kuid of the pass's holder (ownerKuid, else profileId).
  static std::string holderKuid(const ENTMEntitlement& pass);
  /// The price of renewing `pass`; none when the pass is not renewable (not
  /// an annual pass, not renewable, a sunset pass, no priced default option).
  static std::optional<RenewalPrice> renewalPrice(const ENTMEntitlement& pass);

  /// The stored cards, in the payment-accounts answer's format.
  const std::vector<Json>& paymentAccounts() const { return paymentAccounts_; }
  /// The stored card with this retrieval reference number and key.
  const Json* paymentAccount(std::string_view referenceNumber, std::string_view referenceKey) const;

  /// The guests' address and phone in the order answer's format: the billing
  /// address of the first stored card; null when there is no card.
  const Json& address() const { return address_; }
  const Json& phone() const { return phone_; }
  /// The guest's date of birth; the guest file has none, so a fixed date by
  /// age group (children 2019-05-14, everybody else 1984-09-22).
  static std::string birthDate(const HouseholdGuest& guest);

 private:
  void addHolder(const ENTMEntitlement& pass);

  std::string kuid_;
  std::string accessToken_;
  std::string email_;
  std::vector<HouseholdGuest> guests_;
  std::vector<ENTMEntitlementRef> passes_;
  std::vector<Json> paymentAccounts_;
  Json address_;
  Json phone_;
};

}  // namespace varnel::mock
