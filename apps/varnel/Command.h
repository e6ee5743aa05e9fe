#pragma once
// Subcommands of the varnel tool. Each command file registers itself:
//
//   static const varnel::cli::CommandRegistration registration{"errors", &registerErrorsCommand};
//
// A command reports bad input by throwing UsageError (exit status 2 with its
// message on stderr); it writes its results to the stream it is given.

#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

namespace varnel::cli {

/// Bad input from the user: unreadable file, malformed data, unknown value.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Ends the tool with `status` once the command has printed what it had to
/// say (1: a commerce failure the guest would be shown).
struct CommandExit {
  int status;
};

using CommandRegistrar = void (*)(CLI::App& app);

struct CommandRegistration {
  CommandRegistration(const char* name, CommandRegistrar registrar);
};

/// Adds every registered command to `app`, in name order. Every option that
/// takes a value then refuses an empty one (OptionChecks.h).
void addRegisteredCommands(CLI::App& app);

/// Reads a whole input file, or standard input when `path` is "-", as every
/// input file is read (varnel/standalone/InputFile.h: regular files up to
/// 16 MiB). Throws UsageError naming the file and the reason otherwise.
std::string readInput(const std::string& path);

}  // namespace varnel::cli
