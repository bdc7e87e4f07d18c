#include "tool/dialog_text.h"

#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/output.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

int run(const Arguments& arguments) {
  Connection connection(arguments);
  const ordered_json dialogs = connection.rows("/v1/dialogs", "dialogs");
  if (arguments.has("json")) {
    print_json(dialogs);
    return 0;
  }
  for (const ordered_json& dialog : dialogs) {
    print(dialog_as_text(dialog));
  }
  return 0;
}

}  // namespace

Command dialogs_command() {
  return {
      "dialogs", "Switches and screen", "Print the dialogs on the screen of a unit", {unit_option(), json_option()}, {},
      run};
}

}  // namespace tool
