#pragma once

namespace simulator::sysroot {

/// Starts the naming service on the loopback interface and waits until it answers on that port. Throws
/// std::runtime_error if it does not.
void start_naming(int port);

/// Starts the unit's services and waits until they are registered in the naming service. Throws std::runtime_error if
/// that fails.
void start_services();

}  // namespace simulator::sysroot
