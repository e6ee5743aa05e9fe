#pragma once
// The fixture and builders shared by the entitlement tests, over the scripted
// entitlements manager of Varnel::testing.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/Fakes.h"
#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/host/Registry.h"
#include "varnel/testing/ScriptedEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"

namespace varnel::testing {

class EntitlementFixture : public HostFixture {
 protected:
  void SetUp() override {
    HostFixture::SetUp();
    host::Registry::set<ENTMEntitlementsManager>(manager);
  }
  std::shared_ptr<ScriptedEntitlementsManager> manager = std::make_shared<ScriptedEntitlementsManager>();
};

/// A manager entitlement written as in a guest data file (its field names as keys).
inline ENTMEntitlement entry(std::string_view json) {
  auto guest = standalone::parseGuestData(R"({"entitlements": [)" + std::string(json) + "]}");
  EXPECT_TRUE(guest) << standalone::describeGuestDataError(guest.error());
  return guest ? *guest.value().entitlements.front() : ENTMEntitlement{};
}

/// A manager entitlement with the fields `fill` sets.
inline ENTMEntitlement with(const std::function<void(ENTMEntitlement&)>& fill) {
  ENTMEntitlement entitlement;
  fill(entitlement);
  return entitlement;
}

inline ENTMEntitlement withId(std::string id, std::optional<std::string> categoryId = std::nullopt) {
  return with([&](auto& entitlement) { entitlement.productInstanceId = id; entitlement.categoryId = categoryId; });
}

inline ENTMEntitlementRef ref(ENTMEntitlement entitlement) {
  return std::make_shared<const ENTMEntitlement>(std::move(entitlement));
}

using Ids = std::vector<std::string>;

template <typename List>
Ids idsOf(const List& entitlements) {
  Ids ids;
  for (const auto& entitlement : entitlements) ids.push_back(entitlement ? entitlement->productInstanceID() : "null");
  return ids;
}

/// Where a printed line claims to come from: "file function:line".
inline std::string siteOf(const CapturingPrintSink::Line& line) {
  return line.site.file + " " + line.site.function + ":" + std::to_string(line.site.line);
}

/// Compares the named fields one by one, so that a failure names the field.
inline void expectFields(const Json& actual, const Json& expected) {
  for (const auto& [key, value] : expected.items()) EXPECT_EQ(actual.value(key, Json("<absent>")), value) << key;
}

/// Checks every field of a converted entitlement's JSON: the value `renamed`
/// gives it, else the source's value under the same name, else the default.
inline void expectCopied(const Json& made, const Json& defaults, const Json& source, const Json& renamed) {
  for (const auto& [key, value] : made.items()) {
    const Json& expected = renamed.contains(key) ? renamed[key] : source.contains(key) ? source[key] : defaults.at(key);
    EXPECT_EQ(value, expected) << key;
  }
}

}  // namespace varnel::testing
