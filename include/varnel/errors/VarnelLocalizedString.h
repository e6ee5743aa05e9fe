#pragma once
// The module's string lookup: every guest-facing text is looked up by key in
// the module's table "Localizable".

#include <string>
#include <string_view>

namespace varnel {

/// The text of `key` in the module's "Localizable" table, through the host's
/// localization. Without a registered localization (or for a key the table
/// does not hold) the result is the key itself.
std::string VarnelLocalizedStringForKey(std::string_view key);

}  // namespace varnel
