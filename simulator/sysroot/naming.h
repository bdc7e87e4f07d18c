#pragma once

namespace simulator::sysroot {

/// Starts the naming service on the loopback interface and waits until it answers on that port.
/// Throws std::runtime_error where it does not.
void start_naming(int port);

/// Starts the unit's services and waits until the naming service shows them. Throws std::runtime_error where it does
/// not.
void start_services();

}  // namespace simulator::sysroot
