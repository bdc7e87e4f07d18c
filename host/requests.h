#pragma once

#include <string>

#include "base/base_hardware.h"
#include "host/answer.h"
#include "host/external_voltage.h"

namespace host {

/// Serves requests: one line of JSON each, answered by one line of JSON (docs/host-protocol.md). Any thread. A call
/// runs on the thread that serves it, so a blocking call does not delay others.
class Requests {
public:
  /// `preset`: `Hardware` is the host's own dummy, on which no operation can be called.
  explicit Requests(bool preset) : preset_(preset) {}

  /// The answer to one request.
  Answer serve(const std::string& line);

private:
  bool preset_;
  ExternalVoltage external_voltage_;
};

}  // namespace host
