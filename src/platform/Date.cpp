#include "varnel/platform/Date.h"

#include <chrono>

namespace varnel {

Date Date::now() {
  using namespace std::chrono;
  const auto since = system_clock::now().time_since_epoch();
  return Date{duration<double>(since).count()};
}

}  // namespace varnel
