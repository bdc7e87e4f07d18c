#pragma once

#include <sys/types.h>

namespace simulator::sysroot {

/// Makes the loopback interface of this network namespace carry multicast too, for engines that discover by it.
/// Failures are left to those engines to report.
void prepare_loopback();

/// Makes the interface eth0, up and without address. Its far end, srv0 with address 10.77.0.1/24, lies in a network
/// namespace of its own that a child process keeps; with `dhcp_server` that process is a DHCP server, which answers
/// when this returns. Throws std::runtime_error where the machine gives no such interface or the server does not start.
void make_eth0(bool dhcp_server);

}  // namespace simulator::sysroot
