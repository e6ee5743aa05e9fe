#pragma once
// The host profile library's postal address, as it comes with a stored card
// (the card holder's billing address). Every part may be missing.

#include <optional>
#include <string>

namespace varnel {

struct KTVRAddress {
  /// A state, province or country: its display name and its code ("QZ", "US").
  struct Region {
    std::optional<std::string> name;
    std::optional<std::string> code;

    friend bool operator==(const Region&, const Region&) = default;
  };

  /// A telephone number with its kind ("HOME", "MOBILE", ...).
  struct Phone {
    std::optional<std::string> type;
    std::optional<std::string> number;

    friend bool operator==(const Phone&, const Phone&) = default;
  };

  std::optional<std::string> line1;
  std::optional<std::string> line2;
  std::optional<std::string> city;
  std::optional<Region> state;
  std::optional<Region> country;
  std::optional<std::string> zipCode;
  std::optional<Phone> phoneNumber;
  std::optional<Phone> mobilePhone;

  friend bool operator==(const KTVRAddress&, const KTVRAddress&) = default;
};

}  // namespace varnel
