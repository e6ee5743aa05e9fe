#include "Command.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>

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
}

std::string readInput(const std::string& path) {
  if (path.empty() || path == "-") {
    return std::string(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) throw UsageError("cannot read " + path);
  std::ostringstream content;
  content << file.rdbuf();
  if (file.bad()) throw UsageError("cannot read " + path);
  return content.str();
}

}  // namespace varnel::cli
