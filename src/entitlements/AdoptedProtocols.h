#pragma once
// The capability protocols that one class of entitlement adopts, with their
// copy operations in the order init(with:) runs them: type, status, sunset,
// payment, age group, linkable, location, multi-day, renewable, time window,
// assigned seat, government ID, guest profile, policy.
//
// A class's table is made once, by testing an object of that class with
// dynamic_cast, and kept for the life of the process; filling another object
// of the same class then runs the copy operations without casting again.

#include <cstddef>
#include <vector>

#include "varnel/host/ENTMEntitlement.h"

namespace varnel {

class VNLEntitlement;

class AdoptedProtocols {
 public:
  /// The table of `object`'s own (dynamic) class, made on the first call for
  /// that class. Safe to call from several threads.
  static const AdoptedProtocols& of(const VNLEntitlement& object);

  /// Runs the copy operation of every protocol in the table on `object`, with
  /// `from`. `object` must be of the class the table was made for.
  void populate(VNLEntitlement& object, const ENTMEntitlement& from) const;

 private:
  explicit AdoptedProtocols(const VNLEntitlement& object);

  struct Copy {
    /// Where the protocol's part of an object of the class lies, in bytes
    /// from its VNLEntitlement part: the same for every object of one class.
    std::ptrdiff_t offset;
    void (*run)(void* protocol, const ENTMEntitlement& from);
  };

  template <typename Protocol, void (Protocol::*copy)(const ENTMEntitlement&)>
  void addIfAdopted(const VNLEntitlement& object);

  std::vector<Copy> copies_;
};

}  // namespace varnel
