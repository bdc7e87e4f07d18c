#pragma once

#include <chrono>
#include <memory>
#include <mutex>

namespace host {

/// What the rest of the unit knows of the external voltage: the last value published on its topic. Any thread.
class ExternalVoltage {
public:
  ExternalVoltage();
  ~ExternalVoltage();

  /// The last value published, false before there is one. As long as there is none, waits up to `patience` for it. The
  /// first call starts to listen; a value published earlier reaches it too. Throws std::runtime_error where the process
  /// has no DDS.
  bool value(std::chrono::milliseconds patience);

private:
  class Reader;
  std::mutex mutex_;
  std::unique_ptr<Reader> reader_;
};

}  // namespace host
