#pragma once
// The product entries of a create-order body, made from the canned
// entitlement data (the resource "mockEVAS2") when testers mock product data.

#include <string_view>
#include <vector>

#include "varnel/platform/Json.h"

namespace varnel {

class DebugProductsClass {
 public:
  DebugProductsClass() = delete;

  /// The canned resource's name (extension "json").
  static constexpr std::string_view kMockResourceName = "mockEVAS2";

  /// One entry per canned entitlement, in order, that has a product instance
  /// identifier, a barcode and an owner: "id", "contextId" ("progenstr"),
  /// "categoryId" ("AnnualPassRenewal"), "quantity" (1), "entitlementId" (the
  /// barcode), "guestIdType" ("kuid"), "guestId" (the owner) and "avatarImage"
  /// (the avatar URL, empty text without one). No resource, or one the
  /// parser cannot read, gives an empty list.
  static std::vector<Json> createProductsArray();
};

}  // namespace varnel
