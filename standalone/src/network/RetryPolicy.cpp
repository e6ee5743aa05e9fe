#include "varnel/standalone/network/RetryPolicy.h"

#include <curl/curl.h>

#include <algorithm>

namespace varnel::standalone {

std::chrono::milliseconds RetryPolicy::backoff(int retry, std::mt19937_64& random) const {
  auto delay = initialBackoff;
  for (int i = 1; i < retry && delay < maxBackoff; ++i) delay *= 2;
  delay = std::min(delay, maxBackoff);
  std::uniform_real_distribution<double> jitter(0.5, 1.0);
  return std::chrono::milliseconds(static_cast<long long>(static_cast<double>(delay.count()) * jitter(random)));
}

bool RetryPolicy::retries(const TransportFailure& failure) {
  switch (failure.code) {
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_URL_MALFORMAT:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_ABORTED_BY_CALLBACK:
      return false;
    default:
      return true;
  }
}

}  // namespace varnel::standalone
