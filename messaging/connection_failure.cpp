#include "messaging/connection_failure.h"

#include <iostream>

#include "varnok_errors.h"

namespace messaging {

void fail_to_connect(const std::string& text) {
  std::cerr << text << std::endl;
  throw Varnok::Connection_errors::Not_Connected(text);
}

}  // namespace messaging
