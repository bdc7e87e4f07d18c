#include "handheld/remote_services.h"

#include <iostream>

#include "handheld/driver_link.h"
#include "messaging/service_lookup.h"

void FindGuiManagerInstance() {
  try {
    GuiManagerPtr = FindService<Halcyra::gui::GUIManager>({"Halcyra", "local", "GUIManager"});
  } catch (...) {
    std::cerr << "Handheld_Hardware::FindGuiManagerInstance Missing GuiManager err" << std::endl;
  }
}

// The engines' paths name the instance; there is one GUI manager only.
void FindEverybodyEngine() {
  try {
    const auto found = FindService<Varnok::EverybodyEng::Interfaces>({"Halcyra", "local", "EVERYBODYENG", "1"});
    CORBA::release(EverBdyPtr);
    EverBdyPtr = found;
    if (CORBA::is_nil(EverBdyPtr)) {
      std::cerr << "EveryBdyPtr is null" << std::endl;
    }
  } catch (...) {
    std::cerr << "Handheld_Hardware::Missing Everybody Engine err, please load" << std::endl;
  }
}

void FindHwEnumerationEngine() {
  try {
    EnumEngPtr = FindService<Varnok::HwEnumerate_Able>({"Halcyra", "local", "HWENUM_ABLE", "1"});
    if (CORBA::is_nil(EnumEngPtr.in())) {
      std::cerr << "HwEnumPtr is null" << std::endl;
    }
  } catch (...) {
    std::cerr << "Handheld_Hardware::Missing HW Enumeration Engine err, please load" << std::endl;
  }
}
