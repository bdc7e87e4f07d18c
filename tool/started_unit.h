#pragma once

#include <filesystem>

#include <nlohmann/json.hpp>

#include "control/client/units.h"

namespace tool {

/// A unit that this program has started and that ends with it. One thread.
class StartedUnit {
public:
  /// Starts it and waits until it is ready. Throws control::client::LaunchError.
  explicit StartedUnit(const nlohmann::json& launch);
  /// As stop(), errors ignored.
  ~StartedUnit();
  StartedUnit(const StartedUnit&) = delete;
  StartedUnit& operator=(const StartedUnit&) = delete;

  const control::client::FoundUnit& unit() const { return launched_.unit; }
  std::filesystem::path socket() const { return launched_.unit.socket(); }
  /// Lets it run on by itself.
  void detach();
  /// Stops it and waits until it has gone. Does nothing if it has been stopped or detached.
  void stop();

private:
  control::client::Launched launched_;
  bool running_ = true;
};

/// Asks the unit to stop and waits until its supervisor has ended. Throws CommandError if it has not after 10 s.
void stop_unit(const control::client::FoundUnit& unit);

}  // namespace tool
