#include "varnel/errors/VarnelLocalizedString.h"

#include "varnel/host/KTVRLocalization.h"
#include "varnel/host/Registry.h"
#include "varnel/host/ResourceBundle.h"

namespace varnel {

std::string VarnelLocalizedStringForKey(std::string_view key) {
  const auto localization = host::Registry::get<KTVRLocalization>();
  if (!localization) return std::string(key);
  return localization->localizedStringForKey(key, "Localizable", varnelResourceDirectory());
}

}  // namespace varnel
