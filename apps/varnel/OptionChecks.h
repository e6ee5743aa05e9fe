#pragma once
// The checks of the tool's arguments, in one place. They run while the
// command line is parsed, before any command runs, so a bad argument is
// refused (exit status 2, a message on stderr) before the settings store is
// opened or anything is sent.
//
//   renew->add_option("--cvv", options->cvv, "...")->check(securityCode());

#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

namespace varnel::cli {

/// Bad values shown in messages are cut to this many characters.
inline constexpr std::size_t kEchoedValueMaxLength = 40;

/// `value` in double quotes for a message: cut to kEchoedValueMaxLength
/// characters (then "..."), control characters shown as "?".
std::string echoed(std::string_view value);

/// Makes every option and positional argument of `app` and of its
/// subcommands that takes a value refuse an empty one, except those marked
/// with allowEmpty(). addRegisteredCommands() applies it to every command.
void refuseEmptyValues(CLI::App& app);

/// Marks an argument whose value may be empty text (a settings value).
CLI::Option* allowEmpty(CLI::Option* option);

/// A pass's product instance ID or a stored card's reference: 1 to
/// kReferenceMaxLength printable ASCII characters, no spaces.
inline constexpr std::size_t kReferenceMaxLength = 128;
CLI::Validator reference();

/// A card's security code: 3 or 4 ASCII digits. The code is never echoed.
CLI::Validator securityCode();

/// The base URL of a commerce server: http or https (in any case; written
/// back in lower case), a host, a port from 1 to 65535 when one is given, no
/// user name, query or fragment.
CLI::Validator serverUrl();

/// A resort value at which the commerce commands place orders: 1 (west) or
/// 2 (east), the two the park context's stores know.
CLI::Validator commercePark();

/// A resort value the guest's messages know: 1, 2, or 7 (the third value the
/// host defines for messages, a resort without a help phone number).
CLI::Validator messagePark();

/// A guest data file that reads and parses (varnel/standalone/GuestDataFile.h).
CLI::Validator guestFile();

}  // namespace varnel::cli
