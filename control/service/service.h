#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "control/service/limits.h"

namespace control::service {

/// What a service works on. The descriptors are the service's from then on.
struct ServiceOptions {
  int agent = -1;     ///< stream socket connected to the unit's agent
  int listener = -1;  ///< bound UNIX stream socket on which clients connect; they need no token
  int logs = -1;      ///< folder of the logs, which the unit cannot reach

  /// The members of GET /v1/unit that do not change: name, version, started_at, process (supervisor, root), library,
  /// services, network, limits. host.program, if not null, is the host asked for: the unit is ready once that host runs
  /// or has exited.
  nlohmann::ordered_json unit;

  int tcp_listener = -1;  ///< bound TCP socket of a loopback address; -1: none
  std::string token;      ///< required on TCP by every request except GET

  /// Called once, when the unit is ready.
  std::function<void()> on_ready;
  Limits limits;
};

/// Why a service has ended.
struct Ended {
  enum Why {
    STOPPED,      ///< as ordered
    AGENT_GONE,   ///< the agent closed its end
    AGENT_FAILED  ///< the agent broke the protocol, or could not set the unit up
  } why;
  std::string what;  ///< reason, for people
};

/// The control service of one unit: HTTP/1.1 with JSON on a UNIX socket and, if asked, on loopback TCP. It takes the
/// agent's words as a stranger's and opens nothing that the unit can write.
class Service {
public:
  /// Raises the limit of open files as far as it may. Throws std::invalid_argument if the TCP socket is not bound to a
  /// loopback address or has no token, std::system_error if a descriptor cannot be used.
  explicit Service(ServiceOptions options);
  ~Service();
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;

  /// Serves on this thread until a client stops the unit, stop() is called or the agent ends. Closes all descriptors.
  Ended run();
  /// Stops the unit. Any thread; not from a signal handler.
  void stop();

private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace control::service
