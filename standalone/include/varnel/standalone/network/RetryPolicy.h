#pragma once
// When a request that got no answer is sent again. Only transport failures
// are retried (an HTTP answer of any status never is), at most `maxRetries`
// times, after a jittered exponential backoff. A write is retried only when
// it carries an idempotency key.

#include <chrono>
#include <random>

namespace varnel::standalone {

struct RetryPolicy {
  int maxRetries = 2;
  std::chrono::milliseconds initialBackoff{500};
  std::chrono::milliseconds maxBackoff{5'000};

  /// The wait before retry number `retry` (1 for the first): the doubled
  /// backoff, capped, scaled by a random factor in [0.5, 1].
  std::chrono::milliseconds backoff(int retry, std::mt19937_64& random) const;
};

}  // namespace varnel::standalone
