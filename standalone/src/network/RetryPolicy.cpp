#include "varnel/standalone/network/RetryPolicy.h"

#include <algorithm>

namespace varnel::standalone {

std::chrono::milliseconds RetryPolicy::backoff(int retry, std::mt19937_64& random) const {
  auto delay = initialBackoff;
  for (int i = 1; i < retry && delay < maxBackoff; ++i) delay *= 2;
  delay = std::min(delay, maxBackoff);
  std::uniform_real_distribution<double> jitter(0.5, 1.0);
  return std::chrono::milliseconds(static_cast<long long>(static_cast<double>(delay.count()) * jitter(random)));
}

}  // namespace varnel::standalone
