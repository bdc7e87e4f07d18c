#include "board/hardware.h"
#include "handheld/precise_wait.h"

namespace {

constexpr unsigned int DIGITAL_BOARD_TEMPERATURE = 40;
/// Channel select on write, conversion result on read through the request register.
constexpr unsigned int RF_ADC = 196;
/// Bit 0: an RF ADC is there.
constexpr unsigned int RF_STATUS = 248;
/// Bit 0 must be clear while the RF ADC is addressed.
constexpr unsigned int RF_CONTROL = 0x20004;
constexpr unsigned int CHANNEL_SHIFT = 12;
constexpr unsigned int TEMPERATURE_CHANNEL = 2;

/// Full scale of the converter, which spans 400 K from 223.15 K on.
constexpr unsigned int FULL_SCALE = 16383;
constexpr unsigned int SPAN = 40000;
constexpr unsigned int LOWEST = 22315;

/// Hundredths of a kelvin of a raw count, rounded to the nearest.
unsigned int hundredths_of_a_kelvin(unsigned int raw) {
  return (raw * SPAN + FULL_SCALE / 2) / FULL_SCALE + LOWEST;
}

void settle() {
  WaitUntil(boost::posix_time::microsec_clock::universal_time() + boost::posix_time::microseconds(200));
}

}  // namespace

void HARDWARE::select_rf_channel(unsigned int control, unsigned int selection) {
  if ((control & 1U) != 0) {
    Poke(RF_CONTROL, control & ~1U);
    Poke(RF_ADC, selection);
    Poke(RF_CONTROL, control);
  } else {
    Poke(RF_ADC, selection);
  }
  settle();
}

unsigned int HARDWARE::get_RFAdc(unsigned int channel) {
  Lock();
  unsigned int result = 0;
  const unsigned int control = Peek(RF_CONTROL);
  if ((Peek(RF_STATUS) & 1U) != 0) {
    const unsigned int selection = (channel & 7U) << CHANNEL_SHIFT;
    // Selected twice, so that a conversion of the new channel has been finished.
    select_rf_channel(control, selection);
    select_rf_channel(control, selection);
    const bool addressed_by_clearing = (control & 1U) != 0;
    if (addressed_by_clearing) {
      Poke(RF_CONTROL, control & ~1U);
    }
    result = Peek_RFregister(RF_ADC);
    if (addressed_by_clearing) {
      Poke(RF_CONTROL, control);
    }
  }
  UnLock();
  return result;
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
  Lock();
  const unsigned int raw = Peek(DIGITAL_BOARD_TEMPERATURE);
  UnLock();
  return static_cast<float>(raw) * scale;
}
