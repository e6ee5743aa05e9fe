// varnel errors: what a guest is shown for a failed commerce request.
//
//   varnel errors explain [FILE|-] --service booking|evas --park N
//   [--connection] [--json] varnel errors list [--park N] [--json]

#include <fmt/format.h>

#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "Command.h"
#include "OptionChecks.h"
#include "commands/ErrorReport.h"
#include "varnel/errors/ErrorConstants.h"
#include "varnel/errors/ErrorMapping.h"
#include "varnel/platform/Json.h"

namespace varnel::cli {
namespace {

struct ExplainOptions {
  std::string file = "-";
  std::string service;
  std::string park;
  bool connection = false;
  bool json = false;
};

struct ListOptions {
  std::string park = std::to_string(kResortChoiceEast);
  bool json = false;
};

void explain(const ExplainOptions& options) {
  const KTVCResortChoice park = parsePark(options.park);
  JsonParse body = parseJson(readInput(options.file));
  if (!body) {
    throw UsageError("the error body in " + (options.file == "-" ? std::string("standard input") : options.file) +
                     " is not usable: " + body.refusal);
  }

  // The platform error as the service layer hands it over for a failed request.
  const Error failure{std::string(ErrorConstants::errorDomain), 0,
                      Json{{kErrorJsonResponseKey, std::move(*body.value)}, {kErrorIsConnectionErrorKey, options.connection}}};
  const std::optional<APError> error =
      options.service == "booking" ? APBookingServiceError(failure) : APEvasError(failure);

  if (!error) {
    if (options.json) {
      const OrderedJson none{{"case", nullptr},      {"rawValue", nullptr}, {"kind", nullptr},
                             {"errorCode", nullptr}, {"message", nullptr},  {"phone", nullptr}};
      std::cout << dumpJson(none) << '\n';
    } else {
      std::cout << "The booking error body maps to no commerce error.\n";
    }
    return;
  }
  const OrderedJson described = describeError(*error, park);
  if (options.json) {
    std::cout << dumpJson(described) << '\n';
  } else {
    printDescription(described);
  }
}

void list(const ListOptions& options) {
  const KTVCResortChoice park = parsePark(options.park);
  OrderedJson all = OrderedJson::array();
  for (int value = 0; value < kAPErrorCaseCount; ++value)
    all.push_back(describeError(*apErrorFromRawValue(value), park));

  if (options.json) {
    std::cout << dumpJson(all) << '\n';
    return;
  }
  for (const OrderedJson& described : all) {
    std::string row =
        fmt::format("{:>2}  {:<32} {:<13} {}", described["rawValue"].get<int>(), described["case"].get<std::string>(),
                    described["kind"].get<std::string>(), described["message"].get<std::string>());
    row.erase(row.find_last_not_of(' ') + 1);
    std::cout << row << '\n';
  }
}

void registerErrorsCommand(CLI::App& app) {
  CLI::App* errors = app.add_subcommand("errors", "Commerce errors and the messages guests are shown");
  errors->require_subcommand(1);

  auto explainOptions = std::make_shared<ExplainOptions>();
  CLI::App* explainCommand =
      errors->add_subcommand("explain", "Map a service error body to its commerce error and guest message");
  explainCommand->add_option("file", explainOptions->file, "JSON error body of the failed request ('-' for stdin)");
  explainCommand->add_option("--service", explainOptions->service, "Service that answered: booking or evas")
      ->required()
      ->check(CLI::IsMember({"booking", "evas"}));
  explainCommand->add_option("--park", explainOptions->park, "Resort value of the park context (1 west, 2 east, 7)")
      ->required()
      ->check(messagePark());
  explainCommand->add_flag("--connection", explainOptions->connection, "The request failed in transport");
  explainCommand->add_flag("--json", explainOptions->json, "Print one JSON object");
  explainCommand->callback([explainOptions] { explain(*explainOptions); });

  auto listOptions = std::make_shared<ListOptions>();
  CLI::App* listCommand = errors->add_subcommand("list", "Every commerce error with its kind and guest message");
  listCommand->add_option("--park", listOptions->park, "Resort value of the park context (default 2, east)")
      ->check(messagePark());
  listCommand->add_flag("--json", listOptions->json, "Print a JSON array");
  listCommand->callback([listOptions] { list(*listOptions); });
}

const CommandRegistration errorsRegistration{"errors", &registerErrorsCommand};

}  // namespace
}  // namespace varnel::cli
