// Any bytes, as the stored text of a settings value: read back as the store
// reads it, written again, and used as the module and the tool use values
// (typed reads, the configuration presets, the displayed form).

#include "FuzzHost.h"
#include "varnel/platform/DefaultsValue.h"
#include "varnel/settings/VNLCommerceSettings.h"
#include "varnel/testing/Fakes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace varnel;
  fuzz::installHostOnce();
  static const auto store = [] {
    auto made = std::make_shared<testing::InMemoryUserDefaults>();
    host::Registry::set<UserDefaults>(made);
    return made;
  }();
  const auto read = parseDefaultsValueText(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!read.value) {
    if (read.problem.empty()) __builtin_trap();  // a refusal always says why
    return 0;
  }

  // What was read is written back as the same text form and reads back equal.
  const auto text = defaultsValueText(*read.value);
  if (text && parseDefaultsValueText(*text).value != read.value) __builtin_trap();
  (void)fuzz::printedSize(toDisplayJson(*read.value));

  const std::string_view key = VNLCommerceSettings::UserDefaultKey::useEVAS;
  store->setObject(key, *read.value);
  (void)store->boolForKey(key);
  (void)store->integerForKey(key);
  (void)store->doubleForKey(key);
  (void)store->stringForKey(key);
  (void)VNLCommerceSettings::current().size();
  (void)VNLCommerceSettings::currentConfiguration();
  store->removeObjectForKey(key);
  return 0;
}
