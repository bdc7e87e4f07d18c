#pragma once

namespace simulator::agent {

/// Starts the naming service on the loopback interface and waits until it answers on that port. `log`: descriptor that
/// receives its output. Throws std::runtime_error if it does not answer.
void start_naming(int port, int log);

/// Starts the unit's services and waits until they are registered in the naming service. `log`: descriptor that
/// receives their output. Throws std::runtime_error if that fails.
void start_services(int log);

}  // namespace simulator::agent
