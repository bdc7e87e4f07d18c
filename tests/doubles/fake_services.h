#pragma once

#include <functional>
#include <memory>
#include <string>

#include "everybody_engineS.h"
#include "gui_managerS.h"
#include "hw_enumerateS.h"
#include "tests/doubles/call_log.h"

namespace doubles {

/// The unit's three remote services, as real servants of this process's ORB. After bind() the fake framework's lookups
/// find them; each operation can be given an action to run first, which may throw a CORBA exception.
///
/// Calls in the log: "ShowDialog [<title>] [<text>] [<buttons>] <wait>", "SetDialogSize [<title>] [<size>]",
/// "GetShutdown", "ShutdownAll <process> <serial>", "ShutdownEngine <engine>".
class FakeServices {
public:
  static constexpr char GUI_MANAGER[] = "Halcyra/local/GUIManager";
  static constexpr char EVERYBODY_ENGINE[] = "Halcyra/local/EVERYBODYENG/1";
  static constexpr char HW_ENUMERATION[] = "Halcyra/local/HWENUM_ABLE/1";

  FakeServices();
  ~FakeServices();
  FakeServices(const FakeServices&) = delete;
  FakeServices& operator=(const FakeServices&) = delete;

  /// Binds all three services to their paths.
  FakeServices& bind();
  /// The user's answer to a dialog that waits; 0 unless set.
  FakeServices& user_answers(CORBA::Long answer);
  /// The everybody engine has no shutdown interface: it returns nil.
  FakeServices& has_no_shutdown_interface();
  /// From now on every call of the operation runs `action` first; the caller receives its exceptions.
  FakeServices& runs_first(const std::string& operation, std::function<void()> action);

  Halcyra::gui::GUIManager_ptr gui_manager() const;
  Varnok::EverybodyEng::Interfaces_ptr everybody_engine() const;
  Varnok::HwEnumerate_Able_ptr hw_enumeration() const;

private:
  class Servants;
  std::unique_ptr<Servants> servants_;
};

}  // namespace doubles
