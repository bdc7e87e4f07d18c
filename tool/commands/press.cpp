#include "tool/commands/interrupts.h"
#include "tool/commands/table.h"
#include "tool/errors.h"
#include "tool/text.h"

namespace tool {
namespace {

int run(const Arguments& arguments) {
  const std::string button = arguments.text("BUTTON");
  if (button != "power") {
    throw UsageError("BUTTON: must be power, not \"" + printable(button) + "\"");
  }
  raise_interrupt(arguments, POWER_SWITCH);
  return 0;
}

}  // namespace

Command press_command() {
  return {"press",
          "Switches and screen",
          "Press a button of a unit",
          interrupt_options(),
          {{"BUTTON", "power: the power switch", Count::ONE, Offer::WORDS, {"power"}}},
          run};
}

}  // namespace tool
