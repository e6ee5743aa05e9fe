#include "Ledger.h"

namespace varnel::chaos {

void Ledger::settleBatch(const std::vector<RenewalRecord>& records, const std::map<std::string, int>& charges,
                         std::vector<std::string>& problems) {
  Figures& f = figures_;
  std::set<std::string> attributed;
  std::set<std::string> confirmedAnywhere;
  // Who an order belongs to: the renewal during which it appeared on the
  // server (a --resume run may also finish an earlier renewal's order).
  std::map<std::string, int> owner;
  for (const auto& record : records) {
    for (const auto& [order, number] : record.confirmedOrders) confirmedAnywhere.insert(order);
    for (const auto& order : record.orders) owner[order] = record.index;
  }
  const auto ownOrToldOnly = [&owner](const std::string& order, int index) {
    const auto found = owner.find(order);
    return found == owner.end() || found->second == index;
  };
  for (const auto& record : records) {
    const std::string who = "renewal #" + std::to_string(record.index) + " (" + record.passId + ", fault " +
                            record.faultKind + (record.killed ? ", killed" : "") + ")";
    ++f.renewals;
    ++f.faults[record.faultKind];
    if (record.killed) ++f.kills;
    switch (record.told) {
      case Told::confirmed: ++f.confirmed; break;
      case Told::refused: ++f.refused; break;
      case Told::unknown:
      case Told::nothing: ++f.leftUnknown; break;
    }
    if (record.toldUnknown && (record.told == Told::confirmed || record.told == Told::refused)) {
      ++f.unknownThenFinished;
    }
    f.hangs += record.hangs;
    f.crashes += record.crashes;
    f.badInput += record.badInput;
    for (const auto& note : record.notes) problems.push_back(who + ": " + note);

    // The orders of this pass: those that appeared while it ran, and those
    // the guest was told about.
    std::set<std::string> orders = record.orders;
    for (const auto& [order, number] : record.confirmedOrders) {
      if (ownOrToldOnly(order, record.index)) orders.insert(order);
    }
    for (const auto& order : record.refusedOrders) {
      if (ownOrToldOnly(order, record.index)) orders.insert(order);
    }
    int chargedOrders = 0;
    bool doubled = false;
    for (const auto& order : orders) {
      attributed.insert(order);
      const auto found = charges.find(order);
      const int charged = found == charges.end() ? 0 : found->second;
      if (charged > 0) ++chargedOrders;
      if (charged > 1) {
        doubled = true;
        problems.push_back(who + ": order " + order + " charged " + std::to_string(charged) + " times");
      }
      const bool confirmed = confirmedAnywhere.contains(order);
      if (charged > 0 && !confirmed) {
        ++f.chargedUnconfirmed;
        problems.push_back(who + ": order " + order + " charged, never confirmed to the guest");
      }
      if (charged == 0 && record.confirmedOrders.contains(order)) {
        ++f.confirmedUncharged;
        problems.push_back(who + ": order " + order + " confirmed to the guest, never charged");
      }
      if (charged > 0 && record.refusedOrders.contains(order) && !confirmed) {
        problems.push_back(who + ": order " + order + " charged, the guest was told it was refused");
      }
    }
    if (chargedOrders > 1) {
      doubled = true;
      problems.push_back(who + ": the pass was charged on " + std::to_string(chargedOrders) + " orders");
    }
    if (doubled) ++f.doubleCharges;
  }
  // Orders that appeared after the last renewal was looked at.
  for (const auto& [order, charged] : charges) {
    if (attributed.contains(order) || charged == 0) continue;
    if (charged > 1) ++f.doubleCharges;
    if (!confirmedAnywhere.contains(order)) ++f.chargedUnconfirmed;
    problems.push_back("order " + order + " of no renewal charged " + std::to_string(charged) + " time(s)");
  }
}

}  // namespace varnel::chaos
