#pragma once
// One payment card, stored in the guest's profile or scanned with the camera.
// Read-only once made. Whatever is not given when the card is made becomes
// false or empty text; the security code is then empty text too, so it is
// always present on a made card.

#include <optional>
#include <string>

namespace varnel {

class CreditCard {
 public:
  explicit CreditCard(std::optional<bool> isActive = {},
                      std::optional<bool> chargingPrivileges = {},
                      std::optional<std::string> cardNumber = {},
                      std::optional<std::string> expirationDate = {},
                      std::optional<std::string> expirationMonth = {},
                      std::optional<std::string> expirationYear = {},
                      std::optional<std::string> paymentMethod = {},
                      std::optional<std::string> paymentMethodType = {},
                      std::optional<std::string> retrievalReferenceNumber = {},
                      std::optional<std::string> retrievalReferenceKey = {},
                      std::optional<std::string> securityCode = {},
                      std::optional<bool> isScanned = {});

  bool isActive() const { return isActive_; }
  /// The card may be charged.
  bool chargingPrivileges() const { return chargingPrivileges_; }
  /// The number as the profile service gives it (usually masked).
  const std::string& cardNumber() const { return cardNumber_; }
  const std::string& expirationDate() const { return expirationDate_; }
  const std::string& expirationMonth() const { return expirationMonth_; }
  const std::string& expirationYear() const { return expirationYear_; }
  const std::string& paymentMethod() const { return paymentMethod_; }
  const std::string& paymentMethodType() const { return paymentMethodType_; }
  /// The service's reference to the stored card, and its key.
  const std::string& retrievalReferenceNumber() const { return retrievalReferenceNumber_; }
  const std::string& retrievalReferenceKey() const { return retrievalReferenceKey_; }
  /// The verification value the guest entered; empty text when none was.
  const std::optional<std::string>& securityCode() const { return securityCode_; }
  /// Whether the guest entered a security code (an empty one is none).
  bool hasSecurityCode() const { return securityCode_ && !securityCode_->empty(); }
  /// Scanned with the camera rather than taken from the profile.
  bool isScanned() const { return isScanned_; }

  friend bool operator==(const CreditCard&, const CreditCard&) = default;

 private:
  bool isActive_;
  bool chargingPrivileges_;
  std::string cardNumber_;
  std::string expirationDate_;
  std::string expirationMonth_;
  std::string expirationYear_;
  std::string paymentMethod_;
  std::string paymentMethodType_;
  std::string retrievalReferenceNumber_;
  std::string retrievalReferenceKey_;
  std::optional<std::string> securityCode_;
  bool isScanned_;
};

}  // namespace varnel
