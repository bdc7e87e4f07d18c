#pragma once

#include <string>

#include "base/base_hardware.h"

namespace host {

/// The six operations of the board that follow those of BASE_HARDWARE in the table of virtual operations. A host that
/// knows only the interface reaches them by their place there; no object is ever made of this class.
class BoardOperations : public BASE_HARDWARE {
public:
  /// Directory of the I2C command-line tools, with its trailing slash.
  virtual std::string i2c_command_str() = 0;
  /// Writes a board register; the driver's status (0: done).
  virtual int write_hw(int handle, unsigned int space, unsigned int address, unsigned int value) = 0;
  /// Reads a board register into `*value`; the driver's status (0: done).
  virtual int read_hw(int handle, unsigned int space, unsigned int address, unsigned int* value) = 0;
  /// The RF board's temperature row.
  virtual TEMPERATUREDATA rftemp() = 0;
  /// One conversion of an RF ADC channel.
  virtual unsigned int get_RFAdc(unsigned int channel) = 0;
  /// The digital board's temperature: raw count times `scale`.
  virtual float getDigitalBoardTemp(float scale) = 0;
};

}  // namespace host
