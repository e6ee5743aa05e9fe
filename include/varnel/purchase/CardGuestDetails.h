#pragma once
// The holder of a stored payment card. Read-only once made.

#include <string>
#include <utility>

namespace varnel {

class CardGuestDetails {
 public:
  CardGuestDetails(std::string firstName, std::string lastName)
      : firstName_(std::move(firstName)), lastName_(std::move(lastName)) {}

  const std::string& firstName() const { return firstName_; }
  const std::string& lastName() const { return lastName_; }

  friend bool operator==(const CardGuestDetails&, const CardGuestDetails&) = default;

 private:
  std::string firstName_;
  std::string lastName_;
};

}  // namespace varnel
