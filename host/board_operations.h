#pragma once

#include <string>

#include "base/base_hardware.h"

namespace host {

/// The six board operations that follow those of BASE_HARDWARE in the table of virtual operations. A host that knows
/// only the interface calls them by their position; no object of this class is ever created.
class BoardOperations : public BASE_HARDWARE {
public:
  /// Directory of the I2C command-line tools, with its trailing slash.
  virtual std::string i2c_command_str() = 0;
  /// Writes a board register; returns the driver's status (0: success).
  virtual int write_hw(int handle, unsigned int space, unsigned int address, unsigned int value) = 0;
  /// Reads a board register into `*value`; returns the driver's status (0: success).
  virtual int read_hw(int handle, unsigned int space, unsigned int address, unsigned int* value) = 0;
  /// The RF board's temperature row.
  virtual TEMPERATUREDATA rftemp() = 0;
  /// Converts an RF ADC channel once.
  virtual unsigned int get_RFAdc(unsigned int channel) = 0;
  /// The digital board's temperature: raw count times `scale`.
  virtual float getDigitalBoardTemp(float scale) = 0;
};

}  // namespace host
