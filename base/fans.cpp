#include <iostream>
#include <string>

#include "base/base_hardware.h"

int BASE_HARDWARE::GetFanStatesList(std::vector<FANDATA>& list) {
  std::cerr << "BASE_HARDWARE::GetFanStatesList err" << std::endl;
  // Assigned to itself. Kept: the caller's list comes back neither cleared nor filled.
  std::vector<FANDATA>& same = list;
  list = same;
  return 0;
}

BASE_HARDWARE::FAN_STATES BASE_HARDWARE::GetFanState(unsigned int index) {
  std::cout << "BASE_HARDWARE::GetFanState " << std::to_string(index) << std::endl;
  if (index < fan_states.size()) {
    return fan_states[index];
  }
  std::cerr << "BASE_HARDWARE::GetFanState index err" << std::endl;
  return FAN_UNKNOWN;
}

int BASE_HARDWARE::SetFanState(unsigned int, BASE_HARDWARE::FAN_STATES) {
  std::cerr << "BASE_HARDWARE::SetFanState err" << std::endl;
  return 0;
}

void BASE_HARDWARE::AdjustFanSpeeds(std::vector<FANDATA>&) {
  std::cerr << "BASE_HARDWARE::AdjustFanSpeeds err" << std::endl;
}

int BASE_HARDWARE::GetFansList(std::vector<FANDATA>&) {
  std::cerr << "BASE_HARDWARE::GetFansList err" << std::endl;
  return 0;
}
