#include <iostream>
#include <string>

#include "board/hardware.h"
#include "radalt.h"

std::string HARDWARE::i2c_command_str() {
  return "/home/radalt/bin/";
}

int HARDWARE::write_hw(int handle, unsigned int space, unsigned int address, unsigned int value) {
  return Radalt_Write(handle, space, address, value);
}

int HARDWARE::read_hw(int handle, unsigned int space, unsigned int address, unsigned int* value) {
  return Radalt_Read(handle, space, address, value);
}

void HARDWARE::Lock() {
  const int error = Radalt_LockGet(board_handle_);
  if (error != 0) {
    std::cout << "SysLockfail " << std::to_string(error) << std::endl;
  }
}

void HARDWARE::UnLock() {
  const int error = Radalt_LockPut(board_handle_);
  if (error != 0) {
    std::cout << "SysUnlockfail " << std::to_string(error) << std::endl;
  }
}
