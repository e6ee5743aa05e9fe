#pragma once
// The guest data file: one signed-in guest's profile, entitlements and
// affiliations, as the stand-alone entitlements manager serves them.
//
// A UTF-8 JSON object:
//
//   {
//     "description": "free text, ignored",                       (optional)
//     "profile": { "kuid": "...", "avatarId": "...",             (optional; no kuid = nobody signed in)
//                  "accessToken": "...", "email": "..." },     (the guest's bearer token and e-mail)
//     "entitlements": [ <entitlement>, ... ],                    (required, may be empty)
//     "affiliations": [ <affiliation>, ... ],                    (optional; absent stays absent)
//     "theaterTickets": [ { ...any JSON object... }, ... ],      (optional)
//     "paymentAccounts": [ { ...stored card... }, ... ]          (optional; the payment-accounts
//                                                                  answer's records, resources/environments)
//   }
//
// <entitlement> is an object whose keys are the field names of ENTMEntitlement
// (include/varnel/host/ENTMEntitlement.h), every one optional:
//   text       productInstanceId passTypeName ticketAgeGroupTitle guestType avatarURL
//              avatarId barcodeString categoryId categoryName productType
//              shortEntitlementName benefits profileId holderName firstName lastName
//              middleName nickname ownerKuid ownerXid ownerGuid ageGroup status
//              exchangeStatus calendarId admissionDays currency downpayment discount
//              address state postalCode country city policyTitle policyLink
//              calculatedPolicyText orderConfirmationNumber seatName rowName
//              sectionName defaultRenewableProductId
//   flags      isShared isSellable isRenewable monthlyPaymentEligible govIdLinked
//              (booleans; false when left out)
//   dates      passExpirationDate passValidityStartDate startDate endDate, and
//              blockoutDates (a list): RFC 3339 texts, "2031-06-01T00:00:00Z" or
//              "2031-06-01T08:30:00.250-04:00"
//   numbers    totalPrice pricePerMonth subTotalPrice tax currentTicketValue
//              daysRemaining; numberOfDays (a whole number)
//   lists      guestIdentifierArray (texts)
//   any JSON   optionTypeAndValueArray policyArray
//   nested     apRenewalOptions: a list of <entitlement>
//              apUpgradeOptions: an object from affiliation identifier to a list of <entitlement>
//              affiliationInfo: a list of <affiliation>
// null stands for "left out" wherever an optional field is allowed.
//
// <affiliation> is { "affiliationId": "STD_GST", "sortOrder": 0 } (sortOrder a
// whole number, 0 when left out).
//
// "theaterTickets" are kept as raw JSON objects: theater tickets are made only
// from JSON, so the file carries the very dictionaries a ticket is built from.
//
// Unknown keys, and keys named twice in one object, are rejected so that a
// misspelt or repeated field is noticed rather than silently dropped. The file
// is read as the tools read every input file (a regular file of at most
// 16 MiB, varnel/standalone/InputFile.h) and parsed within the JSON limits
// (nesting at most 128 levels, varnel/platform/Json.h). Reading never throws:
// every failure is an Error.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "varnel/host/ENTMEntitlement.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/platform/Error.h"
#include "varnel/platform/Json.h"
#include "varnel/platform/Result.h"

namespace varnel::standalone {

/// Domain of the errors of reading a guest data file.
inline constexpr const char* kGuestDataErrorDomain = "Varnel.GuestDataFile";

enum class GuestDataErrorCode : long {
  /// The file could not be opened or read: missing, not a regular file, too large.
  unreadable = 1,
  /// The text is not JSON, or not in the format above.
  malformed = 2,
};

/// User-information keys of those errors.
inline constexpr const char* kGuestDataErrorPathKey = "path";
inline constexpr const char* kGuestDataErrorReasonKey = "reason";

/// Everything one guest data file holds.
struct GuestData {
  std::optional<std::string> kuid;
  std::optional<ENTMUserProfile> userProfile;
  std::vector<ENTMEntitlementRef> entitlements;
  std::optional<std::vector<ENTMAffiliation>> affiliations;
  std::vector<Json> theaterTickets;
  /// The signed-in guest's bearer token and e-mail address.
  std::optional<std::string> accessToken;
  std::optional<std::string> email;
  /// The stored cards, as the payment-accounts answer carries them.
  std::vector<Json> paymentAccounts;
};

/// Parses the text of a guest data file. `origin` names the file in errors.
Result<GuestData> parseGuestData(std::string_view text, const std::string& origin = "guest data");

/// Reads and parses a guest data file.
Result<GuestData> readGuestDataFile(const std::filesystem::path& file);

/// Reads a JSON list of entitlement objects (the "entitlements" of a guest
/// data file). `origin` names the list in errors.
Result<std::vector<ENTMEntitlementRef>> parseEntitlementList(const Json& list,
                                                             const std::string& origin = "entitlements");

/// One readable line for an error of this domain ("cannot read x: reason");
/// other errors print their domain and code.
std::string describeGuestDataError(const Error& error);

/// An RFC 3339 date-time: date, "T" (or "t"), time with optional fraction,
/// then "Z" (or "z") or an offset, in the proleptic Gregorian calendar that
/// rfc3339() prints in. None for anything else, including impossible dates
/// (02-30).
std::optional<Date> parseRfc3339(std::string_view text);

}  // namespace varnel::standalone
