#include "board/board_lock.h"
#include "handheld/board_registers.h"
#include "handheld/precise_wait.h"

using board::BoardLock;

namespace {

constexpr unsigned int CHANNEL_SHIFT = 12;
constexpr unsigned int TEMPERATURE_CHANNEL = 2;

/// Full scale of the converter: 400 K, starting at 223.15 K.
constexpr unsigned int FULL_SCALE = 16383;
constexpr unsigned int SPAN = 40000;
constexpr unsigned int LOWEST = 22315;

/// Hundredths of a kelvin of a raw count, rounded to the nearest.
unsigned int hundredths_of_a_kelvin(unsigned int raw) {
  return (raw * SPAN + FULL_SCALE / 2) / FULL_SCALE + LOWEST;
}

/// The RF ADC may be addressed during its lifetime: bit 0 of the control register is clear; the destructor restores it.
/// `control` is the register's value.
class RfAdcAddressed {
public:
  RfAdcAddressed(HARDWARE& hardware, unsigned int control)
      : hardware_(hardware), control_(control), to_be_cleared_((control & 1U) != 0) {
    if (to_be_cleared_) {
      hardware_.Poke(handheld::RF_CONTROL, control_ & ~1U);
    }
  }
  ~RfAdcAddressed() {
    if (to_be_cleared_) {
      hardware_.Poke(handheld::RF_CONTROL, control_);
    }
  }
  RfAdcAddressed(const RfAdcAddressed&) = delete;
  RfAdcAddressed& operator=(const RfAdcAddressed&) = delete;

private:
  HARDWARE& hardware_;
  unsigned int control_;
  bool to_be_cleared_;
};

void select_channel(HARDWARE& hardware, unsigned int control, unsigned int channel) {
  {
    const RfAdcAddressed addressed(hardware, control);
    hardware.Poke(handheld::RF_ADC, (channel & 7U) << CHANNEL_SHIFT);
  }
  handheld::wait_for(boost::posix_time::microseconds(200));
}

}  // namespace

unsigned int HARDWARE::get_RFAdc(unsigned int channel) {
  const BoardLock lock(*this);
  const unsigned int control = Peek(handheld::RF_CONTROL);
  if ((Peek(handheld::RF_STATUS) & 1U) == 0) {
    return 0;
  }
  // Selected twice, so that a conversion of the new channel has been finished.
  select_channel(*this, control, channel);
  select_channel(*this, control, channel);
  const RfAdcAddressed addressed(*this, control);
  return Peek_RFregister(handheld::RF_ADC);
}

TEMPERATUREDATA HARDWARE::rftemp() {
  const unsigned int raw = get_RFAdc(TEMPERATURE_CHANNEL);
  const auto kelvin_hundredths = static_cast<float>(static_cast<int>(hundredths_of_a_kelvin(raw)));
  const float celsius = kelvin_hundredths / 100.0F - kelvin_offset_;
  const double widened = celsius;
  if (widened < -49.99 || widened > 150.02) {
    return {0.0F, "RF Temperature Off (Temp Invalid!)"};
  }
  return {celsius, "RF Temperature"};
}

float HARDWARE::getDigitalBoardTemp(float scale) {
  const BoardLock lock(*this);
  return static_cast<float>(Peek(handheld::DIGITAL_TEMPERATURE)) * scale;
}
