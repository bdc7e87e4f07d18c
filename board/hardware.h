#pragma once

#include <string>
#include <vector>

#include "handheld/handheld_hardware.h"
#include "varnok_events.h"

/// The radar-altimeter unit: the handheld unit with the radar-altimeter board in it.
///
/// All processes that use the driver share the board lock. Each board sequence takes it once and holds it until the
/// sequence ends. If the lock cannot be taken, a line on standard output reports it and the sequence continues.
class __attribute__((visibility("default"))) HARDWARE : public Handheld_Hardware {
public:
  /// Makes the unit without fans and opens its board. Throws what the handheld layer throws.
  HARDWARE();
  ~HARDWARE();

  /// Opens the board driver, then registers with the power-supply driver. If the board cannot be opened, the process
  /// exits with status 1 once the done-loading subscription has started.
  void Init();

  /// Takes the board lock.
  void Lock();
  /// Gives the board lock back.
  void UnLock();

  /// Replaces `list` by the unit's ten versions; always 1. If a part cannot be read, its row's text says so.
  int GetVersionList(std::vector<VERSIONSDATA>& list) override;

  std::string i2c_command_str() override;
  int write_hw(int handle, unsigned int space, unsigned int address, unsigned int value) override;
  int read_hw(int handle, unsigned int space, unsigned int address, unsigned int* value) override;
  /// -49.99 to 150.02 degrees Celsius; else the row says that the reading is not valid.
  TEMPERATUREDATA rftemp() override;
  /// The low 3 bits of `channel` count. Takes at least 450 microseconds under the board lock.
  unsigned int get_RFAdc(unsigned int channel) override;
  float getDigitalBoardTemp(float scale) override;

private:
  /// Unused: failures go through `Attr_EventMessage`. It is part of the object's layout.
  Varnok::EngineEventMessage_i event_message_;
};
