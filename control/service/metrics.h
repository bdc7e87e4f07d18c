#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "control/service/log_store.h"

namespace control::service {

/// Counts of one service, since its start unless said otherwise.
struct Metrics {
  std::map<int, std::uint64_t> requests;  ///< answered, by HTTP status
  std::uint64_t connections = 0;          ///< open now
  std::uint64_t connections_refused = 0;
  std::uint64_t agent_requests = 0;
  std::uint64_t agent_pending = 0;  ///< without answer now
  std::uint64_t agent_notices = 0;
  std::uint64_t agent_unknown = 0;        ///< answers to no request, or too late
  std::uint64_t agent_dropped_bytes = 0;  ///< of streams that nobody opened
  std::uint64_t commands = 0;
  std::uint64_t streams = 0;  ///< clients of the event stream now
};

/// The metrics as OpenMetrics text. `uptime`: seconds.
std::string metrics_text(const Metrics& metrics, const std::vector<LogSize>& logs, double uptime);

}  // namespace control::service
