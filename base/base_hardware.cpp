#include "base/base_hardware.h"

#include <iostream>

// Unused here, but kept: it makes the start-up calls of TAO and OpenDDS part of this file's initialiser.
#include "varnok_dds.h"

namespace {

void error_line(const char* text) {
  std::cerr << text << std::endl;
}

/// Always decimal, even if the host has set another base on the stream.
void error_line(const char* text, int value) {
  std::cerr << text << std::to_string(value) << std::endl;
}

void error_line(const char* text, double value) {
  std::cerr << text << value << std::endl;
}

int output_line(const char* text) {
  std::cout << text << std::endl;
  return 0;
}

}  // namespace

BASE_HARDWARE::BASE_HARDWARE(int fan_count) {
  std::cout << "BASE_HARDWARE::BASE_HARDWARE1 " << static_cast<const void*>(this) << std::endl;
  for (int fan = 0; fan < fan_count; ++fan) {
    fan_states.push_back(FAN_UNKNOWN);
  }
}

BASE_HARDWARE::~BASE_HARDWARE() = default;

// The line names the operation without its "List". Kept: diagnostics are part of the interface.
int BASE_HARDWARE::GetVersionList(std::vector<VERSIONSDATA>&) {
  error_line("BASE_HARDWARE::GetVersion err");
  return 0;
}

int BASE_HARDWARE::GetBacklight(int&) {
  error_line("BASE_HARDWARE::GetBacklight err");
  return 0;
}

int BASE_HARDWARE::GetTemperature(std::vector<TEMPERATUREDATA>&) {
  error_line("BASE_HARDWARE::GetTemperature err");
  return 0;
}

void BASE_HARDWARE::Get_PowerDown_HomeButton(std::string&, std::string&) {
  error_line("BASE_HARDWARE::Get_PowerDown_HomeButton err");
}

void BASE_HARDWARE::SetRefOscillator(int setting) {
  error_line("BASE_HARDWARE::SetRefOscillator err ", setting);
}

void BASE_HARDWARE::AlarmAnnunciatorState(bool on) {
  std::cout << "BASE_HARDWARE::AlarmAnnunciatorState : " << (on ? "1" : "0") << std::endl;
}

void BASE_HARDWARE::SetQM2760LoopBandwidth(int setting) {
  error_line("BASE_HARDWARE::SetQM2760LoopBandwidth err ", setting);
}

void BASE_HARDWARE::ReadBusVoltages() {
  error_line("BASE_HARDWARE::ReadBusVoltages err ");
}

void BASE_HARDWARE::SetAutoTuneThreshold(double threshold) {
  error_line("BASE_HARDWARE::SetAutoTuneThreshold err ", threshold);
}

void BASE_HARDWARE::SetAutoTuneChannelSpacing(double spacing) {
  error_line("BASE_HARDWARE::SetAutoTuneChannelSpacing err ", spacing);
}

void BASE_HARDWARE::SetAutoTuneStartFreq(double frequency) {
  error_line("BASE_HARDWARE::SetAutoTuneStartFreq err ", frequency);
}

void BASE_HARDWARE::SetAutoTuneStopFreq(double frequency) {
  error_line("BASE_HARDWARE::SetAutoTuneStopFreq err ", frequency);
}

void BASE_HARDWARE::CopyScreenSettings(const std::string&, bool, Varnok::EngineReadingString_i&) {
  error_line("BASE_HARDWARE::CopyScreenSettings err ");
}

void BASE_HARDWARE::CopyScripts(const std::string&, bool, Varnok::EngineReadingString_i&) {
  error_line("BASE_HARDWARE::CopyScripts err ");
}

void BASE_HARDWARE::SetCurrentlyActive(int) {
  error_line("BASE_HARDWARE::SetCurrentlyActive err ");
}
void BASE_HARDWARE::SetRs232BaudRate(int) {
  error_line("BASE_HARDWARE::SetRs232BaudRate err ");
}
void BASE_HARDWARE::SetRs232Parity(int) {
  error_line("BASE_HARDWARE::SetRs232Parity err ");
}
void BASE_HARDWARE::SetRs232DataBits(int) {
  error_line("BASE_HARDWARE::SetRs232DataBits err ");
}
void BASE_HARDWARE::SetRs232StopBits(int) {
  error_line("BASE_HARDWARE::SetRs232StopBits err ");
}
void BASE_HARDWARE::SetRs232FlowControl(int) {
  error_line("BASE_HARDWARE::SetRs232FlowControl err ");
}
void BASE_HARDWARE::SetRs232Echo(int) {
  error_line("BASE_HARDWARE::SetRs232Echo err ");
}
void BASE_HARDWARE::SetCpuUsageAttr(Varnok::EngineReadingValueLong_i*) {}
void BASE_HARDWARE::SetTime() {}
double BASE_HARDWARE::GetThreshold() {
  return 0.0;
}
double BASE_HARDWARE::GetStartFreq() {
  return 0.0;
}
double BASE_HARDWARE::GetStopFreq() {
  return 0.0;
}
double BASE_HARDWARE::GetBW() {
  return 0.0;
}

// These four write to standard output, the other queries to standard error. Kept: the stream is part of the interface.
int BASE_HARDWARE::PsTemperature() {
  return output_line("BASE_HARDWARE::PsTemperature");
}
int BASE_HARDWARE::BatteryTemperature() {
  return output_line("BASE_HARDWARE::BatteryTemperature");
}
int BASE_HARDWARE::Slot1MIC284Temperature() {
  return output_line("BASE_HARDWARE::Slot1MIC284Temperature");
}
int BASE_HARDWARE::BatteryPresent() {
  return output_line("BASE_HARDWARE::BatteryPresent");
}
