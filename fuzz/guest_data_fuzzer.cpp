// Any bytes, as a guest data file; what parses is converted and printed as
// the entitlement commands would.

#include "FuzzHost.h"
#include "varnel/entitlements/ToVNLEntitlement.h"
#include "varnel/entitlements/VNLEntitlementTheaterTicket.h"
#include "varnel/standalone/GuestDataFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace varnel;
  fuzz::installHostOnce();
  const auto guest = standalone::parseGuestData(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!guest) {
    (void)standalone::describeGuestDataError(guest.error()).size();
    return 0;
  }
  for (const auto& entitlement : guest.value().entitlements) {
    const auto converted = toVNLEntitlement(*entitlement);
    (void)converted->debugDescription().size();
    (void)fuzz::printedSize(converted->toJson());
  }
  for (const Json& ticket : guest.value().theaterTickets) {
    (void)fuzz::printedSize(VNLEntitlementTheaterTicket::initWithJsonData(ticket)->toJson());
  }
  return 0;
}
