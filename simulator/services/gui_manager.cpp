#include "simulator/services/gui_manager.h"

#include "simulator/model/json_text.h"

namespace simulator::services {
namespace {

constexpr std::chrono::milliseconds LOOK_UP_INTERVAL{100};

}  // namespace

GuiManager::GuiManager(model::UnitModel& model, Ending& ending)
    : model_(model), conduct_(model, model::Service::GUI_MANAGER, ending) {
  model_.gui().clear();
}

CORBA::Long GuiManager::ShowDialog(const char* title, const char* text, const char* buttons, CORBA::Long wait) {
  const model::Fault fault =
      conduct_.enter(model::Point::GUI_SHOW_DIALOG,
                     "{\"title\":" + model::json_text(title) + ",\"text\":" + model::json_text(text) +
                         ",\"buttons\":" + model::json_text(buttons) + ",\"wait\":" + std::to_string(wait) + "}");
  if (fault.kind == model::FaultKind::GARBAGE) {
    return fault.value;
  }
  const std::uint64_t dialog = model_.gui().show(title, text, buttons, wait != 0);
  if (wait == 0) {
    return 0;
  }
  for (;;) {
    if (const auto answer = model_.gui().wait_answer(dialog, LOOK_UP_INTERVAL)) {
      return *answer;
    }
    conduct_.keep_waiting(std::chrono::milliseconds(1));
  }
}

void GuiManager::SetDialogSize(const char* title, const char* size) {
  conduct_.enter(model::Point::GUI_SET_DIALOG_SIZE,
                 "{\"title\":" + model::json_text(title) + ",\"size\":" + model::json_text(size) + "}");
  model_.gui().set_size(title, size);
}

}  // namespace simulator::services
