#pragma once

#include <string>

namespace host {

/// The answer to one request.
struct Answer {
  std::string line;    ///< without line terminator
  bool leave = false;  ///< the host exits after sending the answer
};

}  // namespace host
