#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/dialog_text.h"
#include "tool/errors.h"
#include "tool/output.h"
#include "tool/text.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

/// The dialog that waits: the one with that title, or the only one.
ordered_json waiting_dialog(const ordered_json& dialogs, const std::optional<std::string>& title) {
  std::vector<ordered_json> open;
  for (const ordered_json& dialog : dialogs) {
    if (is_open(dialog) && (!title || lower_case(*title) == lower_case(dialog.at("title")))) {
      open.push_back(dialog);
    }
  }
  if (open.empty()) {
    throw CommandError(STATUS_FAILED, title ? "no dialog \"" + *title + "\" is waiting" : "no dialog is waiting");
  }
  if (open.size() > 1 && !title) {
    std::string titles;
    for (const ordered_json& dialog : open) {
      titles += (titles.empty() ? "" : ", ") + dialog.at("title").get<std::string>();
    }
    throw UsageError("several dialogs are waiting; choose one by its title: " + titles);
  }
  return open.front();
}

int run(const Arguments& arguments) {
  Connection connection(arguments);
  const ordered_json dialog = waiting_dialog(connection.rows("/v1/dialogs", "dialogs"), arguments.value("TITLE"));
  const std::string label = arguments.text("LABEL");
  const std::optional<std::string> button = button_meant(dialog, label);
  if (!button) {
    std::string labels;
    for (const std::string& each : button_labels(dialog)) {
      labels += (labels.empty() ? "" : ", ") + each;
    }
    throw UsageError("no button \"" + label + "\"; buttons: " + labels);
  }
  const ordered_json answer =
      connection.send("POST", "/v1/dialogs/" + dialog.at("id").dump() + "/answer", {{"button", *button}});
  if (arguments.has("json")) {
    print_json(answer);
  }
  return 0;
}

}  // namespace

Command answer_command() {
  return {"answer",
          "Switches and screen",
          "Press a button of a dialog that is waiting",
          {unit_option(), json_option()},
          {{"TITLE", "title of the dialog, in any case (default: the only one that is waiting)", Count::AT_MOST_ONE},
           {"LABEL", "label of the button, in any case, or its number"}},
          run};
}

}  // namespace tool
