#include "handheld/power_switch.h"

#include <fstream>
#include <iostream>
#include <new>
#include <string>

#include "handheld/driver_link.h"
#include "handheld/handheld_hardware.h"
#include "handheld/remote_services.h"
#include "handheld/shell.h"
#include "varnok_locker.h"

bool cover_closed = false;
std::int32_t CommunicationStatusInterruptValue = 0;

namespace handheld {
std::atomic<Handheld_Hardware*> switch_owner{nullptr};
}

namespace {

/// Bits of the interrupt's value.
enum InterruptBits : int {
  BACKLIGHT_GROUP = 0x38,
  BACKLIGHT_TO_MAXIMUM = 0x20,
  COVER_CLOSED = 0x40,
  SHUTDOWN_REQUEST = 0x107
};

/// The user's possible answers to the question.
constexpr CORBA::Long ANSWER_OK = 0;
/// Tells the power supply that the user interface has gone.
constexpr int USER_INTERFACE_GONE = 0x100;

const char BACKLIGHT_POWER_FILE[] = "/sys/class/backlight/omap-bl/bl_power";

const char SHUTDOWN_SCREEN_TEXT[] =
    "\r\n\r\n\r\n\r\n\r\n"
    "                                 Shutting Down\r\n\r\n"
    "                                  Please Wait";

/// The object that handles an interrupt: the process's hardware object, or the one that registered the handler if the
/// host's pointer is not set yet. Null once the object that registered the handler has been destroyed.
BASE_HARDWARE* hardware_object() {
  Handheld_Hardware* const owner = handheld::switch_owner;
  return owner && Hardware ? Hardware : owner;
}

/// Runs one step of the handler. A failing step is skipped: the service that it calls is already gone, and shutting
/// down the hardware anyway is safest for the unit.
template <typename Step>
void attempt(const Step& step) {
  try {
    step();
  } catch (...) {
  }
}

/// A copy for a service. Throws std::bad_alloc; TAO itself returns null when memory runs out.
CORBA::String_var copy_of(const char* text) {
  char* const copy = CORBA::string_dup(text);
  if (copy == nullptr) {
    throw std::bad_alloc();
  }
  return copy;
}

/// False if the user declined. If the user cannot be asked, the shutdown counts as confirmed.
bool user_agrees() {
  if (CORBA::is_nil(GuiManagerPtr.in())) {
    return true;
  }
  CORBA::Long answer = ANSWER_OK;
  attempt([&answer] {
    const CORBA::String_var title = copy_of("System Prompt");
    const CORBA::String_var text = copy_of("Do you want to shutdown?");
    const CORBA::String_var buttons = copy_of("Cancel,1|Ok,0");
    answer = GuiManagerPtr->ShowDialog(title.in(), text.in(), buttons.in(), 1);
  });
  return answer == ANSWER_OK;
}

void show_shutdown_screen() {
  if (CORBA::is_nil(GuiManagerPtr.in())) {
    return;
  }
  attempt([] {
    const CORBA::String_var title = copy_of("Shutdown");
    const CORBA::String_var text = copy_of(SHUTDOWN_SCREEN_TEXT);
    const CORBA::String_var no_buttons = copy_of("");
    GuiManagerPtr->ShowDialog(title.in(), text.in(), no_buttons.in(), 0);
  });
  attempt([] {
    const CORBA::String_var title = copy_of("Shutdown");
    const CORBA::String_var size = copy_of("Max");
    GuiManagerPtr->SetDialogSize(title.in(), size.in());
  });
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

void shut_down_hardware_engines() {
  std::cout << "Shutting down hardware enum" << std::endl;
  if (CORBA::is_nil(EnumEngPtr.in())) {
    return;
  }
  attempt([] {
    const CORBA::String_var engine = copy_of("SYSTEM_ENGINE1");
    EnumEngPtr->ShutdownEngine(engine.in());
  });
}

void shut_down_hardware() {
  std::cout << "Hardware shutdown" << std::endl;
  if (BASE_HARDWARE* const hardware = hardware_object()) {
    attempt([hardware] { hardware->shutdown(); });
  }
}

void handle_shutdown_request(const Varnok::Locker& locker) {
  FindGuiManagerInstance();
  handheld::find_everybody_engine();
  handheld::find_hw_enumeration_engine();
  if (!user_agrees()) {
    return;
  }
  show_shutdown_screen();
  shut_down_everybody_engine(locker);
  shut_down_hardware_engines();
  shut_down_hardware();
}

void raise_backlight() {
  if (auto* const unit = dynamic_cast<Handheld_Hardware*>(hardware_object())) {
    attempt([unit] { unit->setMaxBacklight(); });
  }
}

void write_backlight_power(int power) {
  std::ofstream file(BACKLIGHT_POWER_FILE, std::ios::out | std::ios::trunc);
  file << power;
}

/// Writes 0 if the cover is closed, even if it was closed before; writes 1 only when the cover opens.
void follow_cover(bool closed) {
  const bool was_closed = cover_closed;
  cover_closed = closed;
  if (closed || was_closed) {
    attempt([closed] { write_backlight_power(closed ? 0 : 1); });
  }
}

}  // namespace

void Handheld_Hardware::PowerSwitch(int value) {
  const Varnok::Locker locker;
  CommunicationStatusInterruptValue = value;
  std::cout << "PowerSwitch:Comm status interrupt value" << std::to_string(value) << std::endl;
  // The bit belongs to the group, so the group's test is redundant. Both are kept: the value is decoded by group, then
  // by bit.
  if ((value & BACKLIGHT_GROUP) != 0 && (value & BACKLIGHT_TO_MAXIMUM) != 0) {
    raise_backlight();
  }
  if ((value & SHUTDOWN_REQUEST) != 0) {
    handle_shutdown_request(locker);
  }
  follow_cover((value & COVER_CLOSED) != 0);
}

void Handheld_Hardware::shutdown() {
  handheld::run("/root/.shutdown");
  int status = USER_INTERFACE_GONE;
  try {
    PSdriver->SetUserInterface_CommunicationStatus(status, false);
  } catch (const psdriverError&) {
    handheld::report_failure("Handheld_Hardware::shutdown()", "Power Supply Driver Failure: Shutdown");
  }
}
