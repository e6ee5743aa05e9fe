#pragma once
// A value or the error that prevented it.

#include <utility>
#include <variant>

#include "varnel/platform/Error.h"

namespace varnel {

template <typename T>
class Result {
 public:
  Result(T value) : state_(std::move(value)) {}
  Result(Error error) : state_(std::move(error)) {}

  bool ok() const { return state_.index() == 0; }
  explicit operator bool() const { return ok(); }
  T& value() { return std::get<0>(state_); }
  const T& value() const { return std::get<0>(state_); }
  const Error& error() const { return std::get<1>(state_); }

 private:
  std::variant<T, Error> state_;
};

}  // namespace varnel
