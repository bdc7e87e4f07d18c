#pragma once

#include <optional>
#include <string>
#include <vector>

namespace simulator::sysroot {

/// The orders of a private root's first process.
struct Orders {
  int lifeline = -1;    ///< readable when everything must end
  int naming_port = 0;  ///< 0: neither naming service nor services
  bool network = false;
  bool dhcp_server = false;
  std::vector<std::string> command;
};

/// The orders in the arguments of unit-init; none if they are not as its usage says.
std::optional<Orders> read_orders(const std::vector<std::string>& arguments);

}  // namespace simulator::sysroot
