// Diagnostic access to the board.

#include "host/board_operations.h"

#include "host/operation.h"

namespace host {
namespace {

using nlohmann::json;

BoardOperations& board(BASE_HARDWARE& hardware) {
  return static_cast<BoardOperations&>(hardware);
}

json i2c_command_str(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(0);
  return {{"result", board(hardware).i2c_command_str()}};
}

json write_hw(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(4);
  const int handle = arguments.number(0, "handle");
  const unsigned int space = arguments.word(1, "space");
  const unsigned int address = arguments.word(2, "address");
  return {{"result", board(hardware).write_hw(handle, space, address, arguments.word(3, "value"))}};
}

json read_hw(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(4);
  const int handle = arguments.number(0, "handle");
  const unsigned int space = arguments.word(1, "space");
  const unsigned int address = arguments.word(2, "address");
  unsigned int value = arguments.count() > 3 ? arguments.word(3, "value before the call") : 0;
  const int result = board(hardware).read_hw(handle, space, address, &value);
  return {{"result", result}, {"value", value}};
}

json rftemp(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(0);
  return {{"result", as_json(board(hardware).rftemp())}};
}

json get_rf_adc(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  return {{"result", board(hardware).get_RFAdc(arguments.word(0, "channel"))}};
}

json get_digital_board_temp(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  const float scale = static_cast<float>(arguments.real(0, "scale"));
  return {{"result", shortest(board(hardware).getDigitalBoardTemp(scale))}};
}

}  // namespace

const std::vector<Operation>& board_operations() {
  static const std::vector<Operation> operations = {
      {"i2c_command_str", "", i2c_command_str},
      {"write_hw", "handle: number, space: number, address: number, value: number", write_hw},
      {"read_hw", "handle: number, space: number, address: number, [value before the call: number]", read_hw},
      {"rftemp", "", rftemp},
      {"get_RFAdc", "channel: number", get_rf_adc},
      {"getDigitalBoardTemp", "scale: real", get_digital_board_temp},
  };
  return operations;
}

}  // namespace host
