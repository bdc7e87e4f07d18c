#pragma once

#include <chrono>
#include <memory>
#include <mutex>

namespace host {

/// The external voltage as published to the rest of the unit. Any thread.
class ExternalVoltage {
public:
  ExternalVoltage();
  ~ExternalVoltage();

  /// The last published value. Waits up to `patience` until one is published; false if none is in time. The first call
  /// subscribes and also receives a value published earlier. Throws std::runtime_error if the process has no DDS
  /// participant or the subscription fails.
  bool value(std::chrono::milliseconds patience);

private:
  class Reader;
  std::mutex mutex_;
  std::unique_ptr<Reader> reader_;
};

}  // namespace host
