#pragma once

#include "gui_managerS.h"
#include "simulator/services/conduct.h"

namespace simulator::services {

/// The GUI manager: shows its dialogs in the unit's model and reads the answers there. A waiting dialog blocks only its
/// own call.
class GuiManager : public POA_Halcyra::gui::GUIManager {
public:
  /// A new user interface starts with an empty screen.
  GuiManager(model::UnitModel& model, Ending& ending);

  CORBA::Long ShowDialog(const char* title, const char* text, const char* buttons, CORBA::Long wait) override;
  void SetDialogSize(const char* title, const char* size) override;

private:
  model::UnitModel& model_;
  Conduct conduct_;
};

}  // namespace simulator::services
