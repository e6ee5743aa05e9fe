#pragma once
// The host's park/resort context: which resort the guest is in.

#include <atomic>

namespace varnel {

/// Resort-choice values the host defines. 1 is the west resort (code zlt),
/// 2 the east resort (code oqs); 7 is the third value the host accepts for
/// messages. Any other value is an unknown park.
using KTVCResortChoice = int;
inline constexpr KTVCResortChoice kResortChoiceWest = 1;
inline constexpr KTVCResortChoice kResortChoiceEast = 2;
inline constexpr KTVCResortChoice kResortChoiceAlternate = 7;

class KTVCParkResortContext {
 public:
  explicit KTVCParkResortContext(KTVCResortChoice resort = kResortChoiceEast) : resort_(resort) {}
  KTVCResortChoice resortChoice() const { return resort_.load(); }
  void setResortChoice(KTVCResortChoice resort) { resort_.store(resort); }

 private:
  std::atomic<KTVCResortChoice> resort_;
};

}  // namespace varnel
