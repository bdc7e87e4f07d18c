#include "tool/commands/interrupts.h"
#include "tool/commands/table.h"
#include "tool/numbers.h"

namespace tool {
namespace {

int run(const Arguments& arguments) {
  raise_interrupt(arguments, number_of_32_bits("VALUE", arguments.text("VALUE")));
  return 0;
}

}  // namespace

Command interrupt_command() {
  return {"interrupt",
          "Switches and screen",
          "Raise a switch interrupt of the power-supply controller",
          interrupt_options(),
          {{"VALUE", "communication status, decimal or 0x…: 0x100 power switch, 0x40 cover closed"}},
          run};
}

}  // namespace tool
