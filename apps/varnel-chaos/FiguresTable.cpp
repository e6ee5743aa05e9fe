#include "FiguresTable.h"

#include <iomanip>
#include <string>

#include "Scenario.h"

namespace varnel::chaos {
namespace {

int faultCount(const Figures& figures, std::string_view kind) {
  const auto found = figures.faults.find(std::string(kind));
  return found == figures.faults.end() ? 0 : found->second;
}

void row(std::ostream& out, const std::string& label, const std::string& value) {
  out << "  " << std::left << std::setw(44) << label << std::right << std::setw(10) << value << '\n';
}

void row(std::ostream& out, const std::string& label, long long value) { row(out, label, std::to_string(value)); }

}  // namespace

nlohmann::ordered_json figuresJson(const Figures& figures) {
  nlohmann::ordered_json faults = nlohmann::ordered_json::object();
  faults["none"] = faultCount(figures, "none");
  for (const auto kind : kFaultKinds) faults[std::string(kind)] = faultCount(figures, kind);
  return {{"seed", figures.seed},
          {"renewals", figures.renewals},
          {"kills", figures.kills},
          {"faults", faults},
          {"confirmed", figures.confirmed},
          {"refused", figures.refused},
          {"unknownThenFinished", figures.unknownThenFinished},
          {"doubleCharges", figures.doubleCharges},
          {"chargedUnconfirmed", figures.chargedUnconfirmed},
          {"hangs", figures.hangs},
          {"crashes", figures.crashes},
          {"leftUnknown", figures.leftUnknown},
          {"badInput", figures.badInput},
          {"confirmedUncharged", figures.confirmedUncharged},
          {"incomplete", figures.incomplete},
          {"seconds", static_cast<long long>(figures.seconds)}};
}

void printFiguresTable(std::ostream& out, const Figures& figures) {
  out << "varnel-chaos, seed " << figures.seed << (figures.incomplete ? " (stopped by the deadline)" : "") << ", "
      << static_cast<long long>(figures.seconds) << " s\n";
  row(out, "renewals", figures.renewals);
  out << "  faults by kind\n";
  row(out, "  none", faultCount(figures, "none"));
  for (const auto kind : kFaultKinds) row(out, "  " + std::string(kind), faultCount(figures, kind));
  row(out, "kills (SIGKILL, then the next run)", figures.kills);
  row(out, "confirmed", figures.confirmed);
  row(out, "refused (nothing charged)", figures.refused);
  row(out, "unknown, then finished", figures.unknownThenFinished);
  row(out, "left unknown after the finishing runs", figures.leftUnknown);
  row(out, "bad input (exit 2)", figures.badInput);
  row(out, "confirmed, never charged", figures.confirmedUncharged);
  row(out, "double charges", figures.doubleCharges);
  row(out, "charged, never confirmed to the guest", figures.chargedUnconfirmed);
  row(out, "hangs", figures.hangs);
  row(out, "crashes", figures.crashes);
}

}  // namespace varnel::chaos
