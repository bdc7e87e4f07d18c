#include "handheld/remote_services.h"

#include <iostream>

#include "messaging/service_lookup.h"

// Constructed directly after the objects of the driver link and before the hardware object.
[[gnu::init_priority(1002)]] Varnok::HwEnumerate_Able_var EnumEngPtr;
[[gnu::init_priority(1002)]] Halcyra::gui::GUIManager_var GuiManagerPtr;

Varnok::EverybodyEng::Interfaces_ptr EverBdyPtr = nullptr;

using messaging::find_service;

void FindGuiManagerInstance() {
  try {
    GuiManagerPtr = find_service<Halcyra::gui::GUIManager>({"Halcyra", "local", "GUIManager"});
  } catch (...) {
    std::cerr << "Handheld_Hardware::FindGuiManagerInstance Missing GuiManager err" << std::endl;
  }
}

namespace handheld {

// The engines' paths end in the instance; the GUI manager has only one instance.
void find_everybody_engine() {
  try {
    const auto found = find_service<Varnok::EverybodyEng::Interfaces>({"Halcyra", "local", "EVERYBODYENG", "1"});
    CORBA::release(EverBdyPtr);
    EverBdyPtr = found;
    if (CORBA::is_nil(EverBdyPtr)) {
      std::cerr << "EveryBdyPtr is null" << std::endl;
    }
  } catch (...) {
    std::cerr << "Handheld_Hardware::Missing Everybody Engine err, please load" << std::endl;
  }
}

void find_hw_enumeration_engine() {
  try {
    EnumEngPtr = find_service<Varnok::HwEnumerate_Able>({"Halcyra", "local", "HWENUM_ABLE", "1"});
    if (CORBA::is_nil(EnumEngPtr.in())) {
      std::cerr << "HwEnumPtr is null" << std::endl;
    }
  } catch (...) {
    std::cerr << "Handheld_Hardware::Missing HW Enumeration Engine err, please load" << std::endl;
  }
}

}  // namespace handheld
