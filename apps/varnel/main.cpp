// varnel: the stand-alone host of the commerce module and its support tool.

#include <cstring>
#include <iostream>

#include "Command.h"
#include "varnel/standalone/StandaloneHost.h"

int main(int argc, char** argv) {
  using namespace varnel;
  bool verbose = false;
  for (int i = 1; i < argc; ++i) verbose = verbose || std::strcmp(argv[i], "--verbose") == 0;

  CLI::App app{"varnel: entitlements, renewals, commerce errors and settings of the guest app's commerce module"};
  app.set_version_flag("--version", "varnel 0.1.0");
  app.add_flag("--verbose", verbose, "Show the module's debug lines on stderr");
  app.require_subcommand(1);
  cli::addRegisteredCommands(app);

  try {
    standalone::installStandaloneHost({.verbose = verbose});
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    app.exit(e);
    return 2;
  } catch (const cli::CommandExit& exit) {
    return exit.status;
  } catch (const cli::UsageError& e) {
    std::cerr << "varnel: " << e.what() << '\n';
    return 2;
  } catch (const std::exception& e) {
    std::cerr << "varnel: internal error: " << e.what() << '\n';
    return 1;
  }
  return 0;
}
