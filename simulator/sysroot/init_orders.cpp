#include "simulator/sysroot/init_orders.h"

#include <algorithm>
#include <charconv>

namespace simulator::sysroot {
namespace {

/// Parses a number from 0 to `most`; false if the text is not one.
bool take_number(const std::string& text, int most, int& number) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc{} && stop == end && number >= 0 && number <= most;
}

}  // namespace

std::optional<Orders> read_orders(const std::vector<std::string>& arguments) {
  constexpr int HIGHEST_DESCRIPTOR = 65535;
  constexpr int HIGHEST_PORT = 65535;
  Orders orders;
  const auto command = std::find(arguments.begin(), arguments.end(), "--");
  for (auto at = arguments.begin(); at != command; ++at) {
    const bool has_value = at + 1 != command;
    if (*at == "--network") {
      orders.network = true;
    } else if (*at == "--dhcp-server") {
      orders.dhcp_server = true;
    } else if (has_value && ((*at == "--lifeline" && take_number(at[1], HIGHEST_DESCRIPTOR, orders.lifeline)) ||
                             (*at == "--services" && take_number(at[1], HIGHEST_PORT, orders.naming_port)))) {
      ++at;
    } else {
      return std::nullopt;
    }
  }
  if (arguments.end() - command < 2 || orders.lifeline < 0) {
    return std::nullopt;
  }
  orders.command.assign(command + 1, arguments.end());
  return orders;
}

}  // namespace simulator::sysroot
