#pragma once

#include <string>

namespace host {

/// The answer to one request.
struct Answer {
  std::string line;    ///< without a line end
  bool leave = false;  ///< the host is to end once the answer is out
};

}  // namespace host
