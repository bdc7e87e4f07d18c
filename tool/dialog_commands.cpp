#include <cstdio>
#include <memory>

#include "commands.h"
#include "dialog_text.h"
#include "errors.h"
#include "running_unit.h"

namespace tool {
namespace {

using simulator::model::Dialog;

struct DialogOptions {
  RunningUnit unit;
  std::string title;
  std::string label;
  bool json = false;
};

void show(const DialogOptions& options) {
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

void answer(const DialogOptions& options) {
  if (!options.unit.model().gui().answer(options.title, options.label)) {
    throw CommandError(STATUS_FAILED,
                       "no unanswered dialog \"" + options.title + "\" has a button \"" + options.label + "\"");
  }
}

}  // namespace

void add_dialogs(CLI::App& app) {
  const auto options = std::make_shared<DialogOptions>();

  CLI::App* show_command = app.add_subcommand("dialogs", "Prints the dialogs on the screen of a running unit.");
  options->unit.add_option(*show_command);
  show_command->add_flag("--json", options->json, "print JSON");
  show_command->callback([options] { show(*options); });

  CLI::App* answer_command = app.add_subcommand("answer", "Presses a button of a dialog of a running unit.");
  options->unit.add_option(*answer_command);
  answer_command->add_option("title", options->title, "the dialog's title")->required();
  answer_command->add_option("label", options->label, "the button's label")->required();
  answer_command->callback([options] { answer(*options); });
}

}  // namespace tool
