#pragma once

#include <string>
#include <vector>

#include "base/base_hardware.h"

namespace host_test {

/// A unit whose operations record their calls and arguments. Its board operations are declared after those of the
/// interface, in the order of the unit class.
class FakeHardware : public BASE_HARDWARE {
public:
  FakeHardware() : BASE_HARDWARE(2) {}

  int GetVersionList(std::vector<VERSIONSDATA>& list) override;
  int GetBacklight(int& level) override;
  int GetTemperature(std::vector<TEMPERATUREDATA>& list) override;
  void Get_PowerDown_HomeButton(std::string& power_down, std::string& home_button) override;
  void shutdown() override;
  bool GetBatteryChargeStatus(int& charge) override;
  bool GetChargerStatus() override;
  void StartDHCP(std::string interface) override;
  void SetupStaticIP(std::string interface) override;
  void NetworkOff(std::string interface) override;
  int GetMaxInterfaces() override;
  void SetRefOscillator(int setting) override;
  void SetAutoTuneThreshold(double threshold) override;
  void AlarmAnnunciatorState(bool on) override;
  void CopyScripts(const std::string& path, bool to_media, Varnok::EngineReadingString_i& status) override;
  double GetBW() override;
  int PsTemperature() override;

  virtual std::string i2c_command_str();
  virtual int write_hw(int handle, unsigned int space, unsigned int address, unsigned int value);
  virtual int read_hw(int handle, unsigned int space, unsigned int address, unsigned int* value);
  virtual TEMPERATUREDATA rftemp();
  virtual unsigned int get_RFAdc(unsigned int channel);
  virtual float getDigitalBoardTemp(float scale);

  std::vector<std::string> calls;  ///< "StartDHCP eth0"
};

}  // namespace host_test
