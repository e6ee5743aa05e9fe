#include "varnel/purchase/CreditCard.h"

#include <utility>

namespace varnel {

CreditCard::CreditCard(std::optional<bool> isActive, std::optional<bool> chargingPrivileges,
                       std::optional<std::string> cardNumber,
                       std::optional<std::string> expirationDate,
                       std::optional<std::string> expirationMonth,
                       std::optional<std::string> expirationYear,
                       std::optional<std::string> paymentMethod,
                       std::optional<std::string> paymentMethodType,
                       std::optional<std::string> retrievalReferenceNumber,
                       std::optional<std::string> retrievalReferenceKey,
                       std::optional<std::string> securityCode, std::optional<bool> isScanned)
    : isActive_(isActive.value_or(false)),
      chargingPrivileges_(chargingPrivileges.value_or(false)),
      cardNumber_(std::move(cardNumber).value_or("")),
      expirationDate_(std::move(expirationDate).value_or("")),
      expirationMonth_(std::move(expirationMonth).value_or("")),
      expirationYear_(std::move(expirationYear).value_or("")),
      paymentMethod_(std::move(paymentMethod).value_or("")),
      paymentMethodType_(std::move(paymentMethodType).value_or("")),
      retrievalReferenceNumber_(std::move(retrievalReferenceNumber).value_or("")),
      retrievalReferenceKey_(std::move(retrievalReferenceKey).value_or("")),
      securityCode_(std::move(securityCode).value_or("")),
      isScanned_(isScanned.value_or(false)) {}

}  // namespace varnel
