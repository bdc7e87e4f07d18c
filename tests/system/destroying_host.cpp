// A host that is linked to the library and uses its non-virtual functions: writes the three attribute texts, one per
// line, destroys the object, writes "destroyed", and exits on SIGTERM.

#include <signal.h>

#include <chrono>
#include <iostream>
#include <memory>
#include <thread>

#include "board/hardware.h"

__attribute__((visibility("default"))) BASE_HARDWARE* Hardware = nullptr;

namespace {

volatile sig_atomic_t leaving = 0;

void use_attribute_texts(BASE_HARDWARE& hardware) {
  const std::unique_ptr<char[]> texts[] = {
      std::unique_ptr<char[]>(hardware.attrib_enum_str_helper("Mode", "Auto")),
      std::unique_ptr<char[]>(hardware.attrib_enum_str_helper("Mode", 255)),
      std::unique_ptr<char[]>(hardware.attrib_enum_str_helper("Reference: external")),
  };
  for (const auto& text : texts) {
    std::cout << text.get() << std::endl;
  }
}

}  // namespace

int main() {
  signal(SIGTERM, [](int) { leaving = 1; });
  if (!Hardware) {
    return 1;
  }
  use_attribute_texts(*Hardware);
  delete static_cast<HARDWARE*>(Hardware);
  std::cout << "destroyed" << std::endl;
  while (leaving == 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return 0;
}
