#include "Command.h"

#include <map>

#include "OptionChecks.h"
#include "varnel/standalone/InputFile.h"

namespace varnel::cli {
namespace {

std::map<std::string, CommandRegistrar>& registrars() {
  static std::map<std::string, CommandRegistrar> instance;
  return instance;
}

}  // namespace

CommandRegistration::CommandRegistration(const char* name, CommandRegistrar registrar) {
  registrars().emplace(name, registrar);
}

void addRegisteredCommands(CLI::App& app) {
  for (const auto& [name, registrar] : registrars()) registrar(app);
  refuseEmptyValues(app);
}

std::string readInput(const std::string& path) {
  auto content = path == "-" ? standalone::readStandardInput() : standalone::readInputFile(path);
  if (!content) throw UsageError(localizedDescription(content.error()));
  return std::move(content.value());
}

}  // namespace varnel::cli
