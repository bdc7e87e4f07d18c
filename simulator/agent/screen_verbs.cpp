// The dialogs on the unit's screen.

#include <strings.h>

#include <sstream>
#include <vector>

#include "simulator/agent/refusal.h"
#include "simulator/agent/verbs.h"

namespace simulator::agent {
namespace {

using model::Dialog;
using model::UnitModel;

struct Button {
  std::string label;
  std::int32_t answer;
};

/// The buttons in "label,answer|label,answer"; an answer that is no number counts as 0.
std::vector<Button> buttons_of(const Dialog& dialog) {
  std::vector<Button> buttons;
  std::istringstream pairs(dialog.buttons);
  for (std::string pair; std::getline(pairs, pair, '|');) {
    const std::size_t comma = pair.rfind(',');
    std::int32_t answer = 0;
    if (comma != std::string::npos) {
      std::istringstream(pair.substr(comma + 1)) >> answer;
    }
    buttons.push_back({pair.substr(0, comma), answer});
  }
  return buttons;
}

Json described(const Dialog& dialog) {
  Json row = {{"id", dialog.id}, {"title", dialog.title}, {"text", dialog.text}, {"buttons", Json::array()}};
  Json answered;
  for (const Button& button : buttons_of(dialog)) {
    row["buttons"].push_back({{"label", button.label}, {"answer", button.answer}});
    if (dialog.answer == button.answer && answered.is_null()) {
      answered = button.label;
    }
  }
  row["size"] = dialog.size;
  row["waits"] = dialog.waits;
  row["answer"] = dialog.answer ? Json(*dialog.answer) : Json();
  row["answered"] = answered;
  return row;
}

Json list(UnitModel& unit) {
  Json rows = Json::array();
  for (const Dialog& dialog : unit.gui().dialogs()) {
    rows.push_back(described(dialog));
  }
  return {{"dialogs", rows}};
}

Dialog found(UnitModel& unit, std::uint64_t id) {
  for (const Dialog& dialog : unit.gui().dialogs()) {
    if (dialog.id == id) {
      return dialog;
    }
  }
  throw Refusal(UNKNOWN, "no such dialog", "dialogs." + std::to_string(id));
}

/// The button with that label, in any case, or with that number, counted from 1.
Button chosen(const Dialog& dialog, const std::string& wanted) {
  std::string labels;
  const std::vector<Button> buttons = buttons_of(dialog);
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    if (strcasecmp(buttons[i].label.c_str(), wanted.c_str()) == 0 || wanted == std::to_string(i + 1)) {
      return buttons[i];
    }
    labels += (labels.empty() ? "" : ", ") + buttons[i].label;
  }
  throw Refusal(BAD_REQUEST, labels.empty() ? "the dialog has no buttons" : "must be one of " + labels, "button",
                labels);
}

Json answer(const Arguments& with, UnitModel& unit) {
  const auto id = static_cast<std::uint64_t>(with.number("id", 1, INT64_MAX));
  const Dialog dialog = found(unit, id);
  const Button button = chosen(dialog, with.text("button"));
  if (!unit.gui().answer(id, button.label)) {
    throw Refusal(CONFLICT, "the dialog has been answered already", "dialogs." + std::to_string(id));
  }
  return {{"id", id}, {"button", button.label}, {"answer", button.answer}};
}

}  // namespace

void add_screen_verbs(Verbs& verbs, UnitModel& unit, Link& link) {
  verbs["dialogs.list"] = [&unit](const Arguments&) { return list(unit); };
  verbs["dialogs.answer"] = [&unit, &link](const Arguments& with) {
    Json done = answer(with, unit);
    link.send({{"notice", "dialogs"}});
    return done;
  };
}

}  // namespace simulator::agent
