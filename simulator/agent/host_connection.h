#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "simulator/agent/link.h"

namespace simulator::agent {

/// Where a unit's host serves requests.
inline constexpr const char* HOST_SOCKET = "/run/unit/host.sock";

/// Whether a host accepts connections. Any thread.
bool host_listens();

/// Sends one request to the unit's host on a connection of its own and returns the answer without its id. Blocks until
/// the answer has come, or the limit has passed. Throws Refusal: CONFLICT if no host serves requests or it exits during
/// the request, TIMED_OUT, BAD_REQUEST if the host refuses the request. Any thread.
Json call_host(const std::string& operation, const Json& arguments,
               std::optional<std::chrono::milliseconds> limit = std::nullopt);

}  // namespace simulator::agent
