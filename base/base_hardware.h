#pragma once

#include <string>
#include <vector>

#include "base/records.h"
#include "varnok_readings.h"

/// The hardware services of a unit: one object per process, reached through the global `Hardware` and called only
/// through the virtual operations below.
///
/// The order of the virtual operations is part of the binary interface and never changes. The library never destroys
/// its object; a host that destroys it needs the concrete class, because the destructor is not virtual.
///
/// An operation that a unit does not provide keeps the default of this class: it returns a neutral value (0: nothing
/// was done) and writes at most one diagnostic line, GetFanState() up to two. A default throws only what the standard
/// streams throw. Defaults may be called from any thread; they take no lock, so the lines of two callers may
/// interleave.
class __attribute__((visibility("default"))) BASE_HARDWARE {
public:
  /// State of one fan. Only `FAN_UNKNOWN` is set here; 0 to 3 are for units that drive fans.
  enum FAN_STATES : int { FAN_STATE_0, FAN_STATE_1, FAN_STATE_2, FAN_STATE_3, FAN_UNKNOWN };

  /// Makes `fan_count` fans in the unknown state (none for counts below 1) and writes a trace line with the object's
  /// address. Throws std::bad_alloc.
  explicit BASE_HARDWARE(int fan_count);
  ~BASE_HARDWARE();
  BASE_HARDWARE(const BASE_HARDWARE&) = delete;
  BASE_HARDWARE& operator=(const BASE_HARDWARE&) = delete;

  /// @name Lists and display
  /// @{

  /// Replaces `list` by the versions of boards, firmware and power supply. 1: filled.
  virtual int GetVersionList(std::vector<VERSIONSDATA>& list);
  /// Sets `level` to the display brightness in the device's raw steps. 1: set.
  virtual int GetBacklight(int& level);
  /// Replaces `list` by the unit's temperatures in degrees Celsius. 1: filled.
  virtual int GetTemperature(std::vector<TEMPERATUREDATA>& list);
  virtual void Get_PowerDown_HomeButton(std::string& power_down, std::string& home_button);
  /// @}

  /// @name Fans
  /// @{

  /// Does not change `list`; returns 0.
  virtual int GetFanStatesList(std::vector<FANDATA>& list);
  /// The state of the fan with that index, counted from 0; unknown if there is no such fan.
  virtual FAN_STATES GetFanState(unsigned int index);
  /// Changes nothing; returns 0.
  virtual int SetFanState(unsigned int index, BASE_HARDWARE::FAN_STATES state);
  virtual void AdjustFanSpeeds(std::vector<FANDATA>& list);
  /// @}

  /// @name Power and network
  /// @{

  /// Shuts the unit down.
  virtual void shutdown() = 0;
  /// Sets `charge` to the battery's relative state of charge in per cent. False after a driver failure.
  virtual bool GetBatteryChargeStatus(int& charge) = 0;
  /// Refreshes the charger status; a change of external voltage is published. False after a driver failure.
  virtual bool GetChargerStatus() = 0;
  virtual void StartDHCP(std::string interface) = 0;
  virtual void SetupStaticIP(std::string interface) = 0;
  virtual void NetworkOff(std::string interface) = 0;
  /// Number of network interfaces of the unit.
  virtual int GetMaxInterfaces() = 0;
  /// @}

  /// @name Settings that units may provide
  /// @{
  virtual int GetFansList(std::vector<FANDATA>& list);
  virtual void SetRefOscillator(int setting);
  virtual void AlarmAnnunciatorState(bool on);
  virtual void SetQM2760LoopBandwidth(int setting);
  virtual void ReadBusVoltages();
  virtual void SetAutoTuneThreshold(double threshold);
  virtual void SetAutoTuneChannelSpacing(double spacing);
  virtual void SetAutoTuneStartFreq(double frequency);
  virtual void SetAutoTuneStopFreq(double frequency);
  virtual void CopyScreenSettings(const std::string&, bool, Varnok::EngineReadingString_i&);
  virtual void CopyScripts(const std::string&, bool, Varnok::EngineReadingString_i&);
  virtual void SetCurrentlyActive(int active);
  virtual void SetRs232BaudRate(int setting);
  virtual void SetRs232Parity(int setting);
  virtual void SetRs232DataBits(int setting);
  virtual void SetRs232StopBits(int setting);
  virtual void SetRs232FlowControl(int setting);
  virtual void SetRs232Echo(int setting);
  virtual void SetCpuUsageAttr(Varnok::EngineReadingValueLong_i* usage);
  virtual void SetTime();
  virtual double GetThreshold();
  virtual double GetStartFreq();
  virtual double GetStopFreq();
  virtual double GetBW();
  /// @}

  /// @name Last known temperatures
  /// Hundredths of a kelvin (degrees Celsius x 100 + 27315), or 0 when not valid.
  /// @{
  virtual int PsTemperature();
  virtual int BatteryTemperature();
  virtual int Slot1MIC284Temperature();
  /// 1 if a battery is fitted, else 0.
  virtual int BatteryPresent();
  /// @}

  /// @name Attribute texts
  /// NUL-terminated buffers on the free store; the caller owns the result and releases it with delete[].
  /// @{

  /// "label: value"; the empty text for an empty label.
  char* attrib_enum_str_helper(std::string label, std::string value);
  /// "label: value" with the value in upper-case hexadecimal, padded with blanks to 8 places.
  char* attrib_enum_str_helper(std::string label, int value);
  /// The text as sprintf expands it: callers give plain texts, without '%'.
  char* attrib_enum_str_helper(std::string text);
  /// @}

protected:
  std::vector<FAN_STATES> fan_states;  ///< one entry per fan; sized once, by the constructor
};

/// The process's one hardware object; null until the library has made it. Defined by the host.
extern BASE_HARDWARE* Hardware;
