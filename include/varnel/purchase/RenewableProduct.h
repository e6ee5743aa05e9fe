#pragma once
// One product line of a renewal order.

#include <string>
#include <vector>

#include "varnel/platform/Json.h"

namespace varnel {

struct RenewableProduct {
  /// Display name of the pass product.
  std::string passName;
  /// Participant identifiers of the guests this product applies to
  /// (matched against RenewableGuest::participantId()).
  std::vector<std::string> participantId;

  /// "Pass Name: <name> \n ParticipantId: ["a", "b"]"
  std::string debugDescription() const;
  /// The fields by name.
  Json toJson() const;

  friend bool operator==(const RenewableProduct&, const RenewableProduct&) = default;
};

}  // namespace varnel
