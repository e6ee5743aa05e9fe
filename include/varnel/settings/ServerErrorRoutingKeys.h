#pragma once
// The user-defaults keys of the tester's server-error routing: the tester
// screen writes them, the networking reads them before every request.

#include <string_view>

namespace varnel {

/// Whether requests carry the routing header.
inline constexpr std::string_view kServerErrorRoutingUseFeatureKey = "ServerErrorRoutingUseFeature";
/// A dictionary from header name to header value, sent while the switch is on.
inline constexpr std::string_view kServerErrorRoutingHeaderKey = "ServiceErrorRoutingHeader";

}  // namespace varnel
