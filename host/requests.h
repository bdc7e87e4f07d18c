#pragma once

#include <functional>
#include <string>

#include "base_hardware.h"
#include "external_voltage.h"

namespace host {

/// Serves requests: one line of JSON each, answered by one line of JSON. docs/host-protocol.md describes both.
/// Any thread; a call runs on the thread that serves it, so one that blocks blocks nobody else.
class Requests {
public:
  /// What the host has to offer beside the hardware's operations.
  struct Host {
    bool preset = false;          ///< `Hardware` is the host's own stand-in, which no operation can be called on
    std::function<void()> leave;  ///< ends the host in good order once the answer is out
  };

  explicit Requests(Host host) : host_(std::move(host)) {}

  /// The answer to one request, without a line end.
  std::string serve(const std::string& line);

private:
  Host host_;
  ExternalVoltage external_voltage_;
};

}  // namespace host
