#pragma once

#include <iostream>
#include <streambuf>

#include "tests/doubles/fake_services.h"
#include "tests/doubles/fake_shell.h"
#include "tests/doubles/fixed_files.h"
#include "tests/unit/handheld/handheld_under_test.h"

inline const char POWER_FILE[] = "/sys/class/backlight/omap-bl/bl_power";
inline const char MAXIMUM_FILE[] = "/sys/class/backlight/omap-bl/max_brightness";
inline const char BRIGHTNESS_FILE[] = "/sys/class/backlight/omap-bl/brightness";

/// Steps of a shutdown as logged.
inline const char TAKE_LOCK[] = "take framework lock";
inline const char GIVE_LOCK_BACK[] = "give framework lock back";
inline const char FIND_GUI_MANAGER[] = "lookup Halcyra/local/GUIManager";
inline const char FIND_EVERYBODY_ENGINE[] = "lookup Halcyra/local/EVERYBODYENG/1";
inline const char FIND_HW_ENUMERATION[] = "lookup Halcyra/local/HWENUM_ABLE/1";
inline const char QUESTION[] = "ShowDialog [System Prompt] [Do you want to shutdown?] [Cancel,1|Ok,0] 1";
inline const char SCREEN[] =
    "ShowDialog [Shutdown] [\r\n\r\n\r\n\r\n\r\n                                 Shutting Down\r\n\r\n"
    "                                  Please Wait] [] 0";
inline const char SCREEN_SIZE[] = "SetDialogSize [Shutdown] [Max]";
inline const char GET_SHUTDOWN[] = "GetShutdown";
inline const char MAKE_CORE[] = "make locker core";
inline const char SHUTDOWN_HW_ENUMERATION[] = "ShutdownEngine SYSTEM_ENGINE1";
inline const char SCRIPT[] = "system /root/.shutdown";
inline const char USER_INTERFACE_GONE[] = "SetUserInterface_CommunicationStatus 256 0";

/// During its lifetime, logs standard output line by line as "out <line>". One at a time.
class OutputInLog : private std::streambuf {
public:
  OutputInLog() : kept_(std::cout.rdbuf(this)) {}
  ~OutputInLog() override { std::cout.rdbuf(kept_); }
  OutputInLog(const OutputInLog&) = delete;
  OutputInLog& operator=(const OutputInLog&) = delete;

private:
  int_type overflow(int_type character) override {
    if (character == '\n') {
      doubles::calls().record("out " + line_);
      line_.clear();
    } else {
      line_ += static_cast<char>(character);
    }
    return character;
  }

  std::streambuf* kept_;
  std::string line_;
};

/// The everybody engine's shutdown with the core made last.
inline std::string shutdown_all() {
  return "ShutdownAll 4711 " + std::to_string(doubles::last_core_serial());
}

/// A handheld object that is the process's hardware, three services that can be found, and commands that are only
/// logged.
class PowerSwitchSurroundings : public HandheldTest {
protected:
  PowerSwitchSurroundings() {
    services_.bind();
    Hardware = unit_.get();
    doubles::put_file(POWER_FILE, "before");
    doubles::put_file(MAXIMUM_FILE, "255\n");
    doubles::put_file(BRIGHTNESS_FILE, "before");
  }
  ~PowerSwitchSurroundings() override {
    Hardware = nullptr;
    reset_driver_link();
  }

  /// The steps after the lookups if all services exist and the user has agreed.
  static doubles::Calls whole_shutdown() {
    return {TAKE_LOCK,
            FIND_GUI_MANAGER,
            FIND_EVERYBODY_ENGINE,
            FIND_HW_ENUMERATION,
            QUESTION,
            SCREEN,
            SCREEN_SIZE,
            GET_SHUTDOWN,
            MAKE_CORE,
            shutdown_all(),
            SHUTDOWN_HW_ENUMERATION,
            SCRIPT,
            USER_INTERFACE_GONE,
            GIVE_LOCK_BACK};
  }
  static std::string trace(int value) {
    return "PowerSwitch:Comm status interrupt value" + std::to_string(value) + "\n";
  }

  doubles::FakeServices services_;
  std::function<int(const std::string&)> command_ = [](const std::string&) { return 0; };
  doubles::FakeShell shell_{[this](const std::string& command) { return command_(command); }};
  doubles::CapturedOutput output_;
};

inline const char PROGRESS[] = "Shutting down everybody engine\nShutting down hardware enum\nHardware shutdown\n";
