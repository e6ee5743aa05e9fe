// varnel cards: payment-card support.
//
//   varnel cards type NUMBER   the brand the number is recognised as, by case name

#include <iostream>
#include <memory>
#include <string>

#include "Command.h"
#include "varnel/purchase/CreditCardUtility.h"

namespace varnel::cli {
namespace {

void registerCardsCommand(CLI::App& app) {
  CLI::App* cards = app.add_subcommand("cards", "Payment cards");
  cards->require_subcommand(1);

  auto number = std::make_shared<std::string>();
  CLI::App* typeCommand =
      cards->add_subcommand("type", "The card brand a number is recognised as (exactly as written)");
  typeCommand->add_option("number", *number, "The card number")->required();
  typeCommand->callback([number] {
    std::cout << CreditCardUtility::caseName(CreditCardUtility::cardType(*number)) << '\n';
  });
}

const CommandRegistration cardsRegistration{"cards", &registerCardsCommand};

}  // namespace
}  // namespace varnel::cli
