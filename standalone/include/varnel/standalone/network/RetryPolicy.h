#pragma once
// When a request that got no answer is sent again. Only transport failures
// are retried (an HTTP answer of any status never is), at most `maxRetries`
// times, after a jittered exponential backoff. A write is retried only when
// it carries an idempotency key. Failures that another try cannot mend (a
// certificate that fails verification, a bad CA file, an unusable URL, a
// cancelled request) are never retried.
//
// One request, its retries and the waits between them included, ends within
// `deadline`: no retry starts once the deadline would be passed, and the last
// attempt is cut at the deadline. With the defaults and the transport's
// timeouts a request ends within 20 s whatever the server does, and a refused
// connection is reported after its two retries, within 1.5 s.

#include <chrono>
#include <random>

#include "varnel/standalone/network/HttpExchange.h"

namespace varnel::standalone {

struct RetryPolicy {
  int maxRetries = 2;
  std::chrono::milliseconds initialBackoff{500};
  std::chrono::milliseconds maxBackoff{5'000};
  std::chrono::milliseconds deadline{20'000};

  /// The wait before retry number `retry` (1 for the first): the doubled
  /// backoff, capped, scaled by a random factor in [0.5, 1].
  std::chrono::milliseconds backoff(int retry, std::mt19937_64& random) const;

  /// Whether another attempt may mend `failure`.
  static bool retries(const TransportFailure& failure);
};

}  // namespace varnel::standalone
