#include "tests/unit/host/fake_hardware.h"

#include <stdexcept>

namespace host_test {

int FakeHardware::GetVersionList(std::vector<VERSIONSDATA>& list) {
  calls.push_back("GetVersionList of " + std::to_string(list.size()));
  list.push_back({"1.02.03", "Firmware"});
  return 1;
}

int FakeHardware::GetBacklight(int& level) {
  level += 100;
  return 1;
}

int FakeHardware::GetTemperature(std::vector<TEMPERATUREDATA>& list) {
  list.push_back({25.3F, "Power Supply Temperature"});
  return 1;
}

void FakeHardware::Get_PowerDown_HomeButton(std::string& power_down, std::string& home_button) {
  power_down += "!";
  home_button += "?";
}

void FakeHardware::shutdown() {
  throw std::runtime_error("no shutdown today");
}

bool FakeHardware::GetBatteryChargeStatus(int& charge) {
  charge = 57;
  return true;
}

bool FakeHardware::GetChargerStatus() {
  throw 42;
}

void FakeHardware::StartDHCP(std::string interface) {
  calls.push_back("StartDHCP " + interface);
}

void FakeHardware::SetupStaticIP(std::string interface) {
  calls.push_back("SetupStaticIP " + interface);
}

void FakeHardware::NetworkOff(std::string interface) {
  calls.push_back("NetworkOff " + interface);
}

int FakeHardware::GetMaxInterfaces() {
  return 1;
}

void FakeHardware::SetRefOscillator(int setting) {
  calls.push_back("SetRefOscillator " + std::to_string(setting));
}

void FakeHardware::SetAutoTuneThreshold(double threshold) {
  calls.push_back("SetAutoTuneThreshold " + std::to_string(threshold));
}

void FakeHardware::AlarmAnnunciatorState(bool on) {
  calls.push_back(on ? "AlarmAnnunciatorState on" : "AlarmAnnunciatorState off");
}

void FakeHardware::CopyScripts(const std::string& path, bool to_media, Varnok::EngineReadingString_i&) {
  calls.push_back("CopyScripts " + path + (to_media ? " to media" : " from media"));
}

double FakeHardware::GetBW() {
  return 0.5;
}

int FakeHardware::PsTemperature() {
  return 29845;
}

std::string FakeHardware::i2c_command_str() {
  return "/home/radalt/bin/";
}

int FakeHardware::write_hw(int handle, unsigned int space, unsigned int address, unsigned int value) {
  calls.push_back("write_hw " + std::to_string(handle) + " " + std::to_string(space) + " " + std::to_string(address) +
                  " " + std::to_string(value));
  return -5;
}

int FakeHardware::read_hw(int handle, unsigned int space, unsigned int address, unsigned int* value) {
  *value += static_cast<unsigned int>(handle) + space + address;
  return 7;
}

TEMPERATUREDATA FakeHardware::rftemp() {
  return {-0.1F, "RF Temperature"};
}

unsigned int FakeHardware::get_RFAdc(unsigned int channel) {
  return channel + 4294967290U;
}

float FakeHardware::getDigitalBoardTemp(float scale) {
  return scale * 2;
}

}  // namespace host_test
