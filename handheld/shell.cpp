#include "handheld/shell.h"

#include <cstdlib>

namespace handheld {

void run(const std::string& command) {
  [[maybe_unused]] const int status = std::system(command.c_str());
}

}  // namespace handheld
