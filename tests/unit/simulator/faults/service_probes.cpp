#include <future>

#include "tests/unit/simulator/faults/pairs_unit.h"
#include "tests/unit/simulator/faults/probe.h"

namespace fault_pairs {
namespace {

using simulator::model::FaultKind;
using simulator::model::Point;

/// A call of a service, in a thread.
class RunningServiceCall final : public RunningCall {
public:
  RunningServiceCall(PairsUnit& unit, std::function<void()> call)
      : unit_(unit), call_(std::async(std::launch::async, std::move(call))) {}
  ~RunningServiceCall() override { unit_.restart_services(); }

  bool has_ended() override { return call_.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }

private:
  PairsUnit& unit_;
  std::future<void> call_;
};

class ServiceProbe final : public Probe {
public:
  /// `operation` returns what the call delivers.
  ServiceProbe(PairsUnit& unit, std::function<std::string(PairsUnit&)> operation)
      : unit_(unit), operation_(std::move(operation)) {}

  std::string text_of(int value) const override { return garbage_.empty() ? Probe::text_of(value) : garbage_; }

  Outcome call(FaultKind) override {
    try {
      return {false, {operation_(unit_)}};
    } catch (const CORBA::SystemException&) {
      return {true, {}};
    }
  }

  std::unique_ptr<RunningCall> start() override {
    return std::make_unique<RunningServiceCall>(unit_, [this] { call(FaultKind::NO_REPLY); });
  }

  std::string garbage_;  ///< the text of every wrong value; empty: the value itself

private:
  PairsUnit& unit_;
  std::function<std::string(PairsUnit&)> operation_;
};

std::string get_shutdown(PairsUnit& unit) {
  const Varnok::EverybodyEng::Shutdown_var shutdown = unit.everybody_engine()->GetShutdown();
  return CORBA::is_nil(shutdown.in()) ? "nil" : "object";
}

std::string shut_down_all(PairsUnit& unit) {
  const Varnok::EverybodyEng::Shutdown_var shutdown = unit.everybody_engine()->GetShutdown();
  shutdown->ShutdownAll(Varnok::Locker_Core());
  return "done";
}

std::string show_dialog(PairsUnit& unit) {
  return std::to_string(unit.gui_manager()->ShowDialog("Shutdown", "", "", 0));
}

std::string set_dialog_size(PairsUnit& unit) {
  unit.gui_manager()->SetDialogSize("Shutdown", "Max");
  return "done";
}

std::string shut_down_engine(PairsUnit& unit) {
  unit.hw_enumerate()->ShutdownEngine("SYSTEM_ENGINE1");
  return "done";
}

}  // namespace

std::unique_ptr<Probe> make_service_probe(PairsUnit& unit, Point point) {
  switch (point) {
    case Point::GUI_SHOW_DIALOG:
      return std::make_unique<ServiceProbe>(unit, show_dialog);
    case Point::GUI_SET_DIALOG_SIZE:
      return std::make_unique<ServiceProbe>(unit, set_dialog_size);
    case Point::EVERYBODY_GET_SHUTDOWN: {
      auto probe = std::make_unique<ServiceProbe>(unit, get_shutdown);
      probe->garbage_ = "nil";
      return probe;
    }
    case Point::EVERYBODY_SHUTDOWN_ALL:
      return std::make_unique<ServiceProbe>(unit, shut_down_all);
    case Point::HW_ENUMERATE_SHUTDOWN_ENGINE:
      return std::make_unique<ServiceProbe>(unit, shut_down_engine);
    default:
      return nullptr;
  }
}

}  // namespace fault_pairs
