#pragma once

#include <string>

#include "base/base_hardware.h"
#include "tests/doubles/captured_output.h"

/// A unit that provides only the mandatory operations; all others are the defaults.
class PlainHardware : public BASE_HARDWARE {
public:
  explicit PlainHardware(int fan_count = 0) : BASE_HARDWARE(fan_count) {}

  void shutdown() override {}
  bool GetBatteryChargeStatus(int&) override { return false; }
  bool GetChargerStatus() override { return false; }
  void StartDHCP(std::string) override {}
  void SetupStaticIP(std::string) override {}
  void NetworkOff(std::string) override {}
  int GetMaxInterfaces() override { return 0; }

  std::size_t fan_count() const { return fan_states.size(); }
};

/// Makes a unit, and discards the line that its constructor writes.
inline PlainHardware quiet_unit(int fan_count = 0) {
  const doubles::CapturedOutput unheard;
  return PlainHardware(fan_count);
}
