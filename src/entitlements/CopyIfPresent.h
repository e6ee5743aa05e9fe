#pragma once
// The copy rule shared by the entitlement copy operations: a manager value
// that is absent leaves the property as it was.

#include <optional>
#include <utility>

namespace varnel {

template <typename T, typename Setter>
void copyIfPresent(const std::optional<T>& value, Setter&& set) {
  if (value) std::forward<Setter>(set)(*value);
}

}  // namespace varnel
