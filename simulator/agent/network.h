#pragma once

#include <sys/types.h>

namespace simulator::agent {

/// Enables multicast on the loopback interface of this network namespace, for engines that use it for discovery.
/// Failures are left for those engines to report.
void prepare_loopback();

/// Creates the interface eth0, up and without address. Its far end, srv0 with address 10.77.0.1/24, is in its own
/// network namespace, kept by a child process; with `dhcp_server` that process is a DHCP server, ready when this
/// returns. `log`: descriptor that receives its output. Throws std::runtime_error if the interface cannot be created or
/// the server does not start.
void make_eth0(bool dhcp_server, int log);

}  // namespace simulator::agent
