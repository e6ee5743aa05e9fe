#pragma once
// One guest of a renewal order. Every field is set when the guest is made and
// is read-only afterwards:
//
//   RenewableGuest guest({.isMe = true, .guestFirstName = "Ada", .participantId = "p1"});

#include <string>

#include "varnel/platform/Json.h"

namespace varnel {

class RenewableGuest {
 public:
  struct Fields {
    /// The guest is the signed-in account holder.
    bool isMe = false;
    std::string avatarID;
    std::string guestFirstName;
    std::string guestLastName;
    std::string guestFullName;
    /// Name of the pass this guest holds.
    std::string guestPassName;
    /// Date of birth as the service sends it.
    std::string dob;
    std::string streetAddress;
    std::string city;
    /// State or province of the address.
    std::string state;
    std::string country;
    std::string zipCode;
    std::string phoneNumber;
    std::string emailId;
    /// Ties the guest to RenewableProduct::participantId.
    std::string participantId;
    /// The guest's account identifier.
    std::string guestKuid;
    std::string phoneNumberType;

    friend bool operator==(const Fields&, const Fields&) = default;
  };

  RenewableGuest() = default;
  explicit RenewableGuest(Fields fields) : fields_(std::move(fields)) {}

  bool isMe() const { return fields_.isMe; }
  const std::string& avatarID() const { return fields_.avatarID; }
  const std::string& guestFirstName() const { return fields_.guestFirstName; }
  const std::string& guestLastName() const { return fields_.guestLastName; }
  const std::string& guestFullName() const { return fields_.guestFullName; }
  const std::string& guestPassName() const { return fields_.guestPassName; }
  const std::string& dob() const { return fields_.dob; }
  const std::string& streetAddress() const { return fields_.streetAddress; }
  const std::string& city() const { return fields_.city; }
  const std::string& state() const { return fields_.state; }
  const std::string& country() const { return fields_.country; }
  const std::string& zipCode() const { return fields_.zipCode; }
  const std::string& phoneNumber() const { return fields_.phoneNumber; }
  const std::string& emailId() const { return fields_.emailId; }
  const std::string& participantId() const { return fields_.participantId; }
  const std::string& guestKuid() const { return fields_.guestKuid; }
  const std::string& phoneNumberType() const { return fields_.phoneNumberType; }

  /// Sixteen labelled lines ("isMe: ", " \n AvtarID: ", ...); the state of the
  /// address is not part of it.
  std::string debugDescription() const;
  /// The fields by name.
  Json toJson() const;

  friend bool operator==(const RenewableGuest&, const RenewableGuest&) = default;

 private:
  Fields fields_;
};

}  // namespace varnel
