#include <cstdlib>
#include <fstream>
#include <iostream>

#include "handheld/driver_link.h"
#include "handheld/handheld_hardware.h"
#include "handheld/remote_services.h"
#include "messaging/failure_event.h"
#include "varnok_locker.h"

namespace {

/// Bits of the interrupt's value.
enum InterruptBits : int {
  BACKLIGHT_GROUP = 0x38,
  BACKLIGHT_TO_MAXIMUM = 0x20,
  COVER_CLOSED = 0x40,
  SHUTDOWN_REQUEST = 0x107
};

/// What the user answers the question with.
constexpr CORBA::Long ANSWER_OK = 0;
/// Tells the power supply that the user interface has gone.
constexpr int USER_INTERFACE_GONE = 0x100;

const char BACKLIGHT_POWER_FILE[] = "/sys/class/backlight/omap-bl/bl_power";

const char SHUTDOWN_SCREEN_TEXT[] =
    "\r\n\r\n\r\n\r\n\r\n"
    "                                 Shutting Down\r\n\r\n"
    "                                  Please Wait";

/// The process's hardware object. An interrupt may come before the host's pointer is set; the object that registered
/// the handler stands in for it then.
BASE_HARDWARE& hardware_object() {
  return Hardware ? *Hardware : *SwitchOwner;
}

/// Runs one step of the handler. A step that fails is passed over: whoever it was to reach is gone already, and the
/// unit is safest when the hardware is shut down all the same.
template <typename Step>
void attempt(const Step& step) {
  try {
    step();
  } catch (...) {
  }
}

/// False when the user said no. A user who cannot be asked is taken to mean the switch that was pressed.
bool user_agrees() {
  if (CORBA::is_nil(GuiManagerPtr.in())) {
    return true;
  }
  CORBA::Long answer = ANSWER_OK;
  attempt([&answer] {
    const CORBA::String_var title = CORBA::string_dup("System Prompt");
    const CORBA::String_var text = CORBA::string_dup("Do you want to shutdown?");
    const CORBA::String_var buttons = CORBA::string_dup("Cancel,1|Ok,0");
    answer = GuiManagerPtr->ShowDialog(title.in(), text.in(), buttons.in(), 1);
  });
  return answer == ANSWER_OK;
}

void show_shutdown_screen(const char* title) {
  if (CORBA::is_nil(GuiManagerPtr.in())) {
    return;
  }
  attempt([title] { GuiManagerPtr->ShowDialog(title, SHUTDOWN_SCREEN_TEXT, "", 0); });
  attempt([title] { GuiManagerPtr->SetDialogSize(title, "Max"); });
}

void shut_down_everybody_engine(const Varnok::Locker& locker) {
  if (CORBA::is_nil(EverBdyPtr)) {
    return;
  }
  std::cout << "Shutting down everybody engine" << std::endl;
  attempt([&locker] {
    const Varnok::EverybodyEng::Shutdown_var engine = EverBdyPtr->GetShutdown();
    if (CORBA::is_nil(engine.in())) {
      return;
    }
    if (!locker.core()) {
      locker.Init_core();
    }
    engine->ShutdownAll(*locker.core());
  });
}

void shut_down_hardware_engines(const char* engine) {
  std::cout << "Shutting down hardware enum" << std::endl;
  if (CORBA::is_nil(EnumEngPtr.in())) {
    return;
  }
  attempt([engine] { EnumEngPtr->ShutdownEngine(engine); });
}

void handle_shutdown_request(const Varnok::Locker& locker) {
  FindGuiManagerInstance();
  FindEverybodyEngine();
  FindHwEnumerationEngine();
  if (!user_agrees()) {
    return;
  }
  const CORBA::String_var title = CORBA::string_dup("Shutdown");
  const CORBA::String_var engine = CORBA::string_dup("SYSTEM_ENGINE1");
  show_shutdown_screen(title.in());
  shut_down_everybody_engine(locker);
  shut_down_hardware_engines(engine.in());
  std::cout << "Hardware shutdown" << std::endl;
  attempt([] { hardware_object().shutdown(); });
}

void write_backlight_power(int power) {
  std::ofstream file(BACKLIGHT_POWER_FILE, std::ios::out | std::ios::trunc);
  file << power;
}

/// Closing the cover writes 0, also when it is closed already; only its opening writes 1.
void follow_cover(bool closed) {
  if (closed) {
    write_backlight_power(0);
  } else if (cover_closed) {
    write_backlight_power(1);
  }
  cover_closed = closed;
}

}  // namespace

void Handheld_Hardware::PowerSwitch(int value) {
  const Varnok::Locker locker;
  CommunicationStatusInterruptValue = value;
  std::cout << "PowerSwitch:Comm status interrupt value" << value << std::endl;
  if ((value & BACKLIGHT_GROUP) != 0 && (value & BACKLIGHT_TO_MAXIMUM) != 0) {
    attempt([] { SwitchOwner->setMaxBacklight(); });
  }
  if ((value & SHUTDOWN_REQUEST) != 0) {
    handle_shutdown_request(locker);
  }
  follow_cover((value & COVER_CLOSED) != 0);
}

void Handheld_Hardware::shutdown() {
  [[maybe_unused]] const int script_status = std::system("/root/.shutdown");
  int status = USER_INTERFACE_GONE;
  try {
    PSdriver->SetUserInterface_CommunicationStatus(status, false);
  } catch (const psdriverError&) {
    SendFailureEvent(Attr_EventMessage, "Handheld_Hardware::shutdown()", "Power Supply Driver Failure: Shutdown");
  }
}
