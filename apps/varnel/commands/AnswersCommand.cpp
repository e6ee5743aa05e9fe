// varnel answers: read a captured commerce service answer as the module would.
//
//   varnel answers parse --kind order|confirmation|contract [FILE|-] [--kuid KUID] [--json]
//
// --kuid signs that guest in, so that the guest with the same account
// identifier is marked as the signed-in one. --json prints the record as an
// object keyed by its field names.

#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "Command.h"
#include "commands/RecordText.h"
#include "varnel/host/Registry.h"
#include "varnel/platform/Json.h"
#include "varnel/services/VNLParseContractResponse.h"
#include "varnel/services/VNLParseCreateOrderResponse.h"
#include "varnel/services/VNLParseUpdateSubmitResponse.h"
#include "varnel/standalone/StaticAuthenticationService.h"

namespace varnel::cli {
namespace {

struct ParseOptions {
  std::string kind;
  std::string file = "-";
  std::string kuid;
  bool signedIn = false;
  bool json = false;
};

/// The answer as a JSON object, or a usage error saying why it is not one.
Json readAnswer(const std::string& file) {
  const std::string name = file == "-" ? "standard input" : file;
  JsonParse answer = parseJson(readInput(file));
  if (!answer) throw UsageError(name + " does not hold usable JSON: " + answer.refusal);
  if (!answer.value->is_object()) throw UsageError(name + " holds JSON but not an object");
  return std::move(*answer.value);
}

std::string dumpJson(const Json& value) { return value.dump(2, ' ', false, Json::error_handler_t::replace); }

void runParse(const ParseOptions& options, std::ostream& out) {
  const Json answer = readAnswer(options.file);
  host::Registry::set<KTVRAuthenticationService>(std::make_shared<standalone::StaticAuthenticationService>(
      options.signedIn ? std::optional<std::string>(options.kuid) : std::nullopt));

  if (options.kind == "order") {
    const RenewalOrder order = VNLParseCreateOrderResponse().parseCreateOrder(answer);
    out << (options.json ? dumpJson(order.toJson()) + "\n" : readableOrder(order));
  } else if (options.kind == "confirmation") {
    const RenewalConfirmation confirmation = VNLParseUpdateSubmitResponse().parse(answer);
    out << (options.json ? dumpJson(confirmation.toJson()) + "\n" : readableConfirmation(confirmation));
  } else {
    const VNLContractDataModel contract = VNLParseContractResponse().parseContract(answer);
    out << (options.json ? dumpJson(contract.toJson()) : contract.debugDescription()) << "\n";
  }
}

void registerAnswersCommand(CLI::App& app) {
  auto* answers = app.add_subcommand("answers", "Read captured commerce service answers");
  answers->require_subcommand(1);

  auto options = std::make_shared<ParseOptions>();
  auto* parse = answers->add_subcommand("parse", "Parse a captured service answer and print the record");
  parse->add_option("--kind", options->kind, "Which answer: order (create order), confirmation (express checkout) "
                                             "or contract (monthly contract)")
      ->required()
      ->check(CLI::IsMember({"order", "confirmation", "contract"}));
  parse->add_option("file", options->file, "File holding the answer, or - for standard input");
  auto* kuid = parse->add_option("--kuid", options->kuid, "Account identifier of the signed-in guest");
  parse->add_flag("--json", options->json, "Print the record as JSON");
  parse->callback([options, kuid] {
    options->signedIn = kuid->count() > 0;
    runParse(*options, std::cout);
  });
}

const CommandRegistration answersRegistration{"answers", &registerAnswersCommand};

}  // namespace
}  // namespace varnel::cli
