#pragma once
// A stored card the guest can pay with: its holder, the card and the billing
// address. Read-only once made; the address is the host's object, shared.

#include <memory>
#include <utility>

#include "varnel/host/KTVRAddress.h"
#include "varnel/purchase/CardGuestDetails.h"
#include "varnel/purchase/CreditCard.h"

namespace varnel {

class PaymentAccount {
 public:
  PaymentAccount(CardGuestDetails guest, CreditCard credit,
                 std::shared_ptr<const KTVRAddress> cardHolderAddress)
      : guestDetails_(std::move(guest)),
        creditCard_(std::move(credit)),
        cardHolderAddress_(std::move(cardHolderAddress)) {}

  const CardGuestDetails& guestDetails() const { return guestDetails_; }
  const CreditCard& creditCard() const { return creditCard_; }
  /// The billing address; null only when whoever made the account had none.
  const std::shared_ptr<const KTVRAddress>& cardHolderAddress() const { return cardHolderAddress_; }

 private:
  CardGuestDetails guestDetails_;
  CreditCard creditCard_;
  std::shared_ptr<const KTVRAddress> cardHolderAddress_;
};

}  // namespace varnel
