#include "tool/commands/interrupts.h"
#include "tool/commands/table.h"
#include "tool/errors.h"
#include "tool/text.h"

namespace tool {
namespace {

int run(const Arguments& arguments) {
  const std::string position = arguments.text("POSITION");
  if (position != "open" && position != "close") {
    throw UsageError("POSITION: must be open or close, not \"" + printable(position) + "\"");
  }
  raise_interrupt(arguments, position == "close" ? COVER_CLOSED : COVER_OPEN);
  return 0;
}

}  // namespace

Command cover_command() {
  return {"cover",
          "Switches and screen",
          "Open or close the cover of a unit",
          interrupt_options(),
          {{"POSITION", "open or close", Count::ONE, Offer::WORDS, {"open", "close"}}},
          run};
}

}  // namespace tool
