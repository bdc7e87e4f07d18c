#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "everybody_engineC.h"
#include "gui_managerC.h"
#include "hw_enumerateC.h"
#include "simulator/model/unit_model.h"
#include "tests/doubles/child_process.h"
#include "tests/doubles/naming_service.h"
#include "tests/doubles/temporary_folder.h"

namespace services_test {

using doubles::ChildProcess;
using doubles::NamingService;
using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::Service;
using simulator::model::ServiceBehaviour;

/// Timeout: far longer than any step takes; only a failing test waits so long.
inline constexpr std::chrono::milliseconds PATIENCE{20000};

/// Waits until the condition holds; false if PATIENCE passes first.
bool comes_true(const std::function<bool()>& condition);

inline const std::vector<std::string> GUI_MANAGER_PATH{"Halcyra", "local", "GUIManager"};
inline const std::vector<std::string> EVERYBODY_ENGINE_PATH{"Halcyra", "local", "EVERYBODYENG", "1"};
inline const std::vector<std::string> HW_ENUMERATE_PATH{"Halcyra", "local", "HWENUM_ABLE", "1"};

/// A unit with a model, a real naming service and the real services, each in a separate process; this process is their
/// client.
class UnitWithServices : public testing::Test {
protected:
  UnitWithServices();
  ~UnitWithServices() override;

  /// Starts unit-services and waits until every service has its set behaviour.
  void start_services(const std::vector<std::string>& arguments = {});
  /// Sets the behaviour and waits until it takes effect.
  void behave(Service service, ServiceBehaviour behaviour);

  /// Resolves the path. Throws CosNaming::NamingContext::NotFound.
  CORBA::Object_var resolve(const std::vector<std::string>& path);
  bool bound(const std::vector<std::string>& path);
  Halcyra::gui::GUIManager_var gui_manager();
  Varnok::EverybodyEng::Interfaces_var everybody_engine();
  Varnok::HwEnumerate_Able_var hw_enumerate();

  /// The lines of the call record.
  std::vector<nlohmann::json> calls() const;
  /// The call and the arguments of every line: "gui.SetDialogSize {…}".
  std::vector<std::string> call_texts() const;
  /// The output of unit-services on both streams.
  std::string services_output() const;

  simulator::model::UnitModel& model() { return *model_; }
  unsigned naming_port() const { return naming_service_->port(); }
  std::vector<std::string> variables() const;
  std::string file(const std::string& name) const { return folder_ / name; }

private:
  doubles::TemporaryFolder folder_;
  std::unique_ptr<simulator::model::UnitModel> model_;

protected:
  std::unique_ptr<NamingService> naming_service_ = std::make_unique<NamingService>();
  std::unique_ptr<ChildProcess> services_;
};

}  // namespace services_test
