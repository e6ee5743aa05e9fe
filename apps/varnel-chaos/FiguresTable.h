#pragma once
// The soak's figures as one table for people, or as one JSON object.

#include <ostream>

#include <nlohmann/json.hpp>

#include "Ledger.h"

namespace varnel::chaos {

/// {"seed", "renewals", "kills", "faults": {KIND: n}, "confirmed", "refused",
///  "unknownThenFinished", "doubleCharges", "chargedUnconfirmed", "hangs",
///  "crashes", and the soak's own "leftUnknown", "badInput",
///  "confirmedUncharged", "incomplete", "seconds"}.
nlohmann::ordered_json figuresJson(const Figures& figures);

/// The table; the last four rows are the ones that must read 0.
void printFiguresTable(std::ostream& out, const Figures& figures);

}  // namespace varnel::chaos
