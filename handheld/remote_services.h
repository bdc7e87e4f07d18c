#pragma once

#include "everybody_engine.h"
#include "gui_manager.h"
#include "hw_enumerate.h"

// The unit's remote services, found by their naming paths. A failing lookup writes one line to standard error and keeps
// the holder's last value; it throws nothing. If the object has another type, the holder becomes nil. Called on the
// power-supply driver's thread.

/// @name Holders, nil until found
/// @{
extern Varnok::HwEnumerate_Able_var EnumEngPtr;
extern Halcyra::gui::GUIManager_var GuiManagerPtr;
extern Varnok::EverybodyEng::Interfaces_ptr EverBdyPtr;
/// @}

/// Looks the GUI manager up, into `GuiManagerPtr`.
void FindGuiManagerInstance();

namespace handheld {

/// Looks the everybody engine up, into `EverBdyPtr`.
void find_everybody_engine();
/// Looks the hardware enumeration engine up, into `EnumEngPtr`.
void find_hw_enumeration_engine();

}  // namespace handheld
