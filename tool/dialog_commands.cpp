#include <cstdio>
#include <memory>

#include "tool/commands.h"
#include "tool/dialog_text.h"
#include "tool/errors.h"
#include "tool/running_unit.h"

namespace tool {

using simulator::model::Dialog;

void show_dialogs(const DialogOptions& options) {
  nlohmann::ordered_json rows = nlohmann::ordered_json::array();
  for (const Dialog& dialog : options.unit.model().gui().dialogs()) {
    if (options.json) {
      rows.push_back(as_json(dialog));
    } else {
      std::printf("%s", as_text(dialog).c_str());
    }
  }
  if (options.json) {
    std::printf("%s\n", rows.dump().c_str());
  }
}

void answer_dialog(const DialogOptions& options) {
  if (!options.unit.model().gui().answer(options.title, options.label)) {
    throw CommandError(STATUS_FAILED,
                       "no unanswered dialog \"" + options.title + "\" has a button \"" + options.label + "\"");
  }
}

}  // namespace tool
