#include <string>

#include "handheld/board_registers.h"
#include "handheld/handheld_hardware.h"
#include "handheld/precise_wait.h"
#include "varnok_errors.h"

namespace {

constexpr int MOST_STATUS_READS = 100;

void require_rf_register(unsigned int address) {
  using handheld::FIRST_RF_REGISTER;
  using handheld::LAST_RF_REGISTER;
  using Varnok::Operation_errors::DataOutOfRangeException;
  using Varnok::Operation_errors::RangeValue;
  if (address >= FIRST_RF_REGISTER && address <= LAST_RF_REGISTER && address % 4 == 0) {
    return;
  }
  const auto integer = [](unsigned int number) { return RangeValue::of(static_cast<std::int32_t>(number)); };
  throw DataOutOfRangeException({std::string("Attribute : ") + "Invalid RF board address", integer(FIRST_RF_REGISTER),
                                 integer(LAST_RF_REGISTER), integer(address)});
}

}  // namespace

int Handheld_Hardware::Poke(unsigned int address, unsigned int value) {
  return Poke(1, address, value);
}

int Handheld_Hardware::Poke(unsigned int space, unsigned int address, unsigned int value) {
  return write_hw(board_handle_, space, address, value);
}

unsigned int Handheld_Hardware::Peek(unsigned int address) {
  return Peek(1, address);
}

unsigned int Handheld_Hardware::Peek(unsigned int space, unsigned int address) {
  unsigned int value = 0;
  read_hw(board_handle_, space, address, &value);
  return value;
}

unsigned int Handheld_Hardware::Peek_RFregister(unsigned int address) {
  require_rf_register(address);
  Poke(handheld::RF_REQUEST, address);
  handheld::wait_for(boost::posix_time::microseconds(50));
  const unsigned int pending = 1U << (address / 4 - 32);
  for (int reads = 0; reads < MOST_STATUS_READS; ++reads) {
    if ((Peek(handheld::RF_REQUEST) & pending) == 0) {
      return Peek(address);
    }
  }
  return 0;
}
