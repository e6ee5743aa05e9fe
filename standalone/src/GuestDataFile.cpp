#include "varnel/standalone/GuestDataFile.h"

#include <cmath>
#include <limits>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>

#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include "varnel/standalone/InputFile.h"

namespace varnel::standalone {
namespace {

/// Renewal options nest entitlements in entitlements; real data goes one or
/// two levels deep, so anything deeper is a broken file.
constexpr int kMaxNesting = 8;

/// A format violation at a place in the document ("entitlements[2].tax").
struct FormatViolation : std::runtime_error {
  using std::runtime_error::runtime_error;
};

[[noreturn]] void violation(const std::string& path, const std::string& what) {
  throw FormatViolation(path + ": " + what);
}

Error guestDataError(GuestDataErrorCode code, const std::string& origin, const std::string& reason) {
  return Error{kGuestDataErrorDomain, static_cast<long>(code),
               Json{{kGuestDataErrorPathKey, origin}, {kGuestDataErrorReasonKey, reason}}};
}

// ---- typed readers: one overload per kind of field ----------------------

std::int64_t readWholeNumber(const Json& value, const std::string& path) {
  if (!value.is_number_integer()) violation(path, "expected a whole number");
  if (value.is_number_unsigned() &&
      value.get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    violation(path, "number out of range");
  }
  return value.get<std::int64_t>();
}

void read(const Json& value, const std::string& path, std::optional<std::string>& out) {
  if (value.is_null()) return;
  if (!value.is_string()) violation(path, "expected a text");
  out = value.get<std::string>();
}

void read(const Json& value, const std::string& path, bool& out) {
  if (!value.is_boolean()) violation(path, "expected true or false");
  out = value.get<bool>();
}

void read(const Json& value, const std::string& path, std::optional<float>& out) {
  if (value.is_null()) return;
  if (!value.is_number()) violation(path, "expected a number");
  const double number = value.get<double>();
  if (!(std::fabs(number) <= std::numeric_limits<float>::max())) violation(path, "number out of range");
  out = static_cast<float>(number);
}

void read(const Json& value, const std::string& path, std::optional<double>& out) {
  if (value.is_null()) return;
  if (!value.is_number()) violation(path, "expected a number");
  out = value.get<double>();
}

void read(const Json& value, const std::string& path, std::optional<std::int64_t>& out) {
  if (value.is_null()) return;
  out = readWholeNumber(value, path);
}

void read(const Json& value, const std::string&, std::optional<Json>& out) {
  if (value.is_null()) return;
  out = value;
}

Date readDate(const Json& value, const std::string& path) {
  if (!value.is_string()) violation(path, "expected an RFC 3339 date text");
  auto date = parseRfc3339(value.get_ref<const std::string&>());
  if (!date) violation(path, "not an RFC 3339 date: " + value.get<std::string>());
  return *date;
}

void read(const Json& value, const std::string& path, std::optional<Date>& out) {
  if (value.is_null()) return;
  out = readDate(value, path);
}

const Json& requireArray(const Json& value, const std::string& path) {
  if (!value.is_array()) violation(path, "expected a list");
  return value;
}

std::string at(const std::string& path, std::size_t index) { return path + "[" + std::to_string(index) + "]"; }

void read(const Json& value, const std::string& path, std::optional<std::vector<Date>>& out) {
  if (value.is_null()) return;
  std::vector<Date> dates;
  for (std::size_t i = 0; const auto& element : requireArray(value, path)) dates.push_back(readDate(element, at(path, i++)));
  out = std::move(dates);
}

void read(const Json& value, const std::string& path, std::optional<std::vector<std::string>>& out) {
  if (value.is_null()) return;
  std::vector<std::string> texts;
  for (std::size_t i = 0; const auto& element : requireArray(value, path)) {
    if (!element.is_string()) violation(at(path, i), "expected a text");
    texts.push_back(element.get<std::string>());
    ++i;
  }
  out = std::move(texts);
}

ENTMAffiliation readAffiliation(const Json& value, const std::string& path) {
  if (!value.is_object()) violation(path, "expected an affiliation object");
  ENTMAffiliation affiliation;
  bool hasIdentifier = false;
  for (const auto& [key, member] : value.items()) {
    const std::string memberPath = path + "." + key;
    if (key == "affiliationId") {
      if (!member.is_string()) violation(memberPath, "expected a text");
      affiliation.affiliationId = member.get<std::string>();
      hasIdentifier = true;
    } else if (key == "sortOrder") {
      affiliation.sortOrder = readWholeNumber(member, memberPath);
    } else {
      violation(memberPath, "unknown key");
    }
  }
  if (!hasIdentifier) violation(path, "an affiliation needs an affiliationId");
  return affiliation;
}

void read(const Json& value, const std::string& path, std::optional<std::vector<ENTMAffiliation>>& out) {
  if (value.is_null()) return;
  std::vector<ENTMAffiliation> affiliations;
  for (std::size_t i = 0; const auto& element : requireArray(value, path)) {
    affiliations.push_back(readAffiliation(element, at(path, i++)));
  }
  out = std::move(affiliations);
}

// ---- entitlements ----------------------------------------------------------

ENTMEntitlementRef readEntitlement(const Json& value, const std::string& path, int depth);

std::vector<ENTMEntitlementRef> readEntitlementList(const Json& value, const std::string& path, int depth) {
  std::vector<ENTMEntitlementRef> entitlements;
  entitlements.reserve(requireArray(value, path).size());
  for (std::size_t i = 0; const auto& element : value) entitlements.push_back(readEntitlement(element, at(path, i++), depth));
  return entitlements;
}

using FieldReader = std::function<void(const Json&, const std::string&, ENTMEntitlement&, int depth)>;

template <typename Field>
FieldReader field(Field ENTMEntitlement::*member) {
  return [member](const Json& value, const std::string& path, ENTMEntitlement& entitlement, int) {
    read(value, path, entitlement.*member);
  };
}

/// Every key of an entitlement object and how it is read.
const std::map<std::string, FieldReader, std::less<>>& entitlementFields() {
  using E = ENTMEntitlement;
  static const std::map<std::string, FieldReader, std::less<>> fields = {
      {"productInstanceId", field(&E::productInstanceId)},
      {"passTypeName", field(&E::passTypeName)},
      {"ticketAgeGroupTitle", field(&E::ticketAgeGroupTitle)},
      {"guestType", field(&E::guestType)},
      {"avatarURL", field(&E::avatarURL)},
      {"avatarId", field(&E::avatarId)},
      {"barcodeString", field(&E::barcodeString)},
      {"categoryId", field(&E::categoryId)},
      {"categoryName", field(&E::categoryName)},
      {"productType", field(&E::productType)},
      {"shortEntitlementName", field(&E::shortEntitlementName)},
      {"benefits", field(&E::benefits)},
      {"profileId", field(&E::profileId)},
      {"holderName", field(&E::holderName)},
      {"firstName", field(&E::firstName)},
      {"lastName", field(&E::lastName)},
      {"middleName", field(&E::middleName)},
      {"nickname", field(&E::nickname)},
      {"ownerKuid", field(&E::ownerKuid)},
      {"ownerXid", field(&E::ownerXid)},
      {"ownerGuid", field(&E::ownerGuid)},
      {"guestIdentifierArray", field(&E::guestIdentifierArray)},
      {"optionTypeAndValueArray", field(&E::optionTypeAndValueArray)},
      {"ageGroup", field(&E::ageGroup)},
      {"status", field(&E::status)},
      {"exchangeStatus", field(&E::exchangeStatus)},
      {"isShared", field(&E::isShared)},
      {"isSellable", field(&E::isSellable)},
      {"isRenewable", field(&E::isRenewable)},
      {"passExpirationDate", field(&E::passExpirationDate)},
      {"passValidityStartDate", field(&E::passValidityStartDate)},
      {"startDate", field(&E::startDate)},
      {"endDate", field(&E::endDate)},
      {"numberOfDays", field(&E::numberOfDays)},
      {"daysRemaining", field(&E::daysRemaining)},
      {"calendarId", field(&E::calendarId)},
      {"admissionDays", field(&E::admissionDays)},
      {"blockoutDates", field(&E::blockoutDates)},
      {"monthlyPaymentEligible", field(&E::monthlyPaymentEligible)},
      {"currency", field(&E::currency)},
      {"totalPrice", field(&E::totalPrice)},
      {"pricePerMonth", field(&E::pricePerMonth)},
      {"subTotalPrice", field(&E::subTotalPrice)},
      {"tax", field(&E::tax)},
      {"currentTicketValue", field(&E::currentTicketValue)},
      {"downpayment", field(&E::downpayment)},
      {"discount", field(&E::discount)},
      {"address", field(&E::address)},
      {"state", field(&E::state)},
      {"postalCode", field(&E::postalCode)},
      {"country", field(&E::country)},
      {"city", field(&E::city)},
      {"policyTitle", field(&E::policyTitle)},
      {"policyArray", field(&E::policyArray)},
      {"policyLink", field(&E::policyLink)},
      {"calculatedPolicyText", field(&E::calculatedPolicyText)},
      {"govIdLinked", field(&E::govIdLinked)},
      {"orderConfirmationNumber", field(&E::orderConfirmationNumber)},
      {"seatName", field(&E::seatName)},
      {"rowName", field(&E::rowName)},
      {"sectionName", field(&E::sectionName)},
      {"defaultRenewableProductId", field(&E::defaultRenewableProductId)},
      {"affiliationInfo", field(&E::affiliationInfo)},
      {"apRenewalOptions",
       [](const Json& value, const std::string& path, E& entitlement, int depth) {
         if (value.is_null()) return;
         ENTMAnyList options;
         for (auto& option : readEntitlementList(value, path, depth + 1)) options.emplace_back(std::move(option));
         entitlement.apRenewalOptions = std::move(options);
       }},
      {"apUpgradeOptions",
       [](const Json& value, const std::string& path, E& entitlement, int depth) {
         if (value.is_null()) return;
         if (!value.is_object()) violation(path, "expected an object from affiliation identifier to a list");
         std::map<std::string, std::vector<ENTMEntitlementRef>> options;
         for (const auto& [affiliation, passes] : value.items()) {
           options[affiliation] = readEntitlementList(passes, path + "." + affiliation, depth + 1);
         }
         entitlement.apUpgradeOptions = std::move(options);
       }},
  };
  return fields;
}

ENTMEntitlementRef readEntitlement(const Json& value, const std::string& path, int depth) {
  if (depth > kMaxNesting) violation(path, "entitlements nested too deeply");
  if (!value.is_object()) violation(path, "expected an entitlement object");
  auto entitlement = std::make_shared<ENTMEntitlement>();
  const auto& fields = entitlementFields();
  for (const auto& [key, member] : value.items()) {
    auto reader = fields.find(key);
    if (reader == fields.end()) violation(path + "." + key, "unknown key");
    reader->second(member, path + "." + key, *entitlement, depth);
  }
  return entitlement;
}

// ---- the document ----------------------------------------------------------

void readProfile(const Json& value, GuestData& guest) {
  if (value.is_null()) return;
  if (!value.is_object()) violation("profile", "expected an object");
  ENTMUserProfile profile;
  for (const auto& [key, member] : value.items()) {
    if (key == "kuid") {
      read(member, "profile.kuid", guest.kuid);
    } else if (key == "accessToken") {
      read(member, "profile.accessToken", guest.accessToken);
    } else if (key == "email") {
      read(member, "profile.email", guest.email);
    } else if (key == "avatarId") {
      std::optional<std::string> avatarId;
      read(member, "profile.avatarId", avatarId);
      if (avatarId) profile.avatar = ENTMAvatar{std::move(avatarId)};
    } else {
      violation("profile." + key, "unknown key");
    }
  }
  guest.userProfile = std::move(profile);
}

GuestData readDocument(const Json& document) {
  if (!document.is_object()) violation("document", "expected a JSON object");
  GuestData guest;
  bool hasEntitlements = false;
  for (const auto& [key, value] : document.items()) {
    if (key == "description") {
      if (!value.is_string()) violation(key, "expected a text");
    } else if (key == "profile") {
      readProfile(value, guest);
    } else if (key == "entitlements") {
      guest.entitlements = readEntitlementList(value, key, 0);
      hasEntitlements = true;
    } else if (key == "affiliations") {
      read(value, key, guest.affiliations);
    } else if (key == "paymentAccounts") {
      for (std::size_t i = 0; const auto& account : requireArray(value, key)) {
        if (!account.is_object()) violation(at(key, i), "expected a JSON object");
        guest.paymentAccounts.push_back(account);
        ++i;
      }
    } else if (key == "theaterTickets") {
      for (std::size_t i = 0; const auto& ticket : requireArray(value, key)) {
        if (!ticket.is_object()) violation(at(key, i), "expected a JSON object");
        guest.theaterTickets.push_back(ticket);
        ++i;
      }
    } else {
      violation(key, "unknown key");
    }
  }
  if (!hasEntitlements) violation("document", "missing \"entitlements\"");
  return guest;
}

}  // namespace

Result<GuestData> parseGuestData(std::string_view text, const std::string& origin) {
  const JsonParse document = parseJson(text, kJsonLimitsUniqueKeys);
  if (!document) return guestDataError(GuestDataErrorCode::malformed, origin, document.refusal);
  try {
    return readDocument(*document.value);
  } catch (const FormatViolation& failure) {
    return guestDataError(GuestDataErrorCode::malformed, origin, failure.what());
  } catch (const std::exception& failure) {
    // A library failure inside a reader (a number out of range, say).
    return guestDataError(GuestDataErrorCode::malformed, origin, failure.what());
  }
}

Result<std::vector<ENTMEntitlementRef>> parseEntitlementList(const Json& list, const std::string& origin) {
  try {
    return readEntitlementList(list, origin, 0);
  } catch (const std::exception& failure) {
    return guestDataError(GuestDataErrorCode::malformed, origin, failure.what());
  }
}

Result<GuestData> readGuestDataFile(const std::filesystem::path& file) {
  const auto content = readInputFile(file);
  if (!content) {
    const std::string* reason = jsonString(content.error().userInfo, "reason");
    return guestDataError(GuestDataErrorCode::unreadable, file.string(), reason ? *reason : "cannot be read");
  }
  return parseGuestData(content.value(), file.string());
}

std::string describeGuestDataError(const Error& error) {
  if (error.domain != kGuestDataErrorDomain) return error.domain + " error " + std::to_string(error.code);
  const std::string* path = jsonString(error.userInfo, kGuestDataErrorPathKey);
  const std::string* reason = jsonString(error.userInfo, kGuestDataErrorReasonKey);
  const std::string verb =
      error.code == static_cast<long>(GuestDataErrorCode::unreadable) ? "cannot read " : "malformed guest data in ";
  return verb + (path ? *path : std::string("guest data")) + (reason ? ": " + *reason : std::string());
}

std::optional<Date> parseRfc3339(std::string_view text) {
  // ICU checks the fields (month 13, 30 February, second 60); the fixed
  // positions keep out what it would otherwise accept, such as a 5-digit year.
  if (text.size() < 20 || text[4] != '-' || text[7] != '-' || (text[10] != 'T' && text[10] != 't')) {
    return std::nullopt;
  }
  // The separator and the zone letter may be lower case.
  std::string upper(text);
  upper[10] = 'T';
  if (upper.back() == 'z') upper.back() = 'Z';
  // Formatters are costly to make and not safe to share: one pair per thread.
  thread_local const auto formats = [] {
    std::vector<std::unique_ptr<icu::SimpleDateFormat>> made;
    for (const char* pattern : {"yyyy-MM-dd'T'HH:mm:ssXXX", "yyyy-MM-dd'T'HH:mm:ss.SXXX"}) {
      UErrorCode status = U_ZERO_ERROR;
      auto format = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString(pattern), icu::Locale("en_US_POSIX"), status);
      // Dates print in the proleptic Gregorian calendar (rfc3339): read them in
      // it too, not in the Julian calendar before 1582.
      auto calendar = std::make_unique<icu::GregorianCalendar>(*icu::TimeZone::getGMT(), status);
      if (calendar) calendar->setGregorianChange(U_DATE_MIN, status);
      if (U_FAILURE(status)) continue;
      format->adoptCalendar(calendar.release());
      format->setLenient(false);
      format->setTimeZone(*icu::TimeZone::getGMT());
      made.push_back(std::move(format));
    }
    return made;
  }();
  const icu::UnicodeString input =
      icu::UnicodeString::fromUTF8(icu::StringPiece(upper.data(), static_cast<int32_t>(upper.size())));
  for (const auto& format : formats) {
    icu::ParsePosition position(0);
    const UDate milliseconds = format->parse(input, position);
    if (position.getErrorIndex() < 0 && position.getIndex() == input.length()) {
      return Date::fromTimeIntervalSince1970(milliseconds / 1000.0);
    }
  }
  return std::nullopt;
}

}  // namespace varnel::standalone
