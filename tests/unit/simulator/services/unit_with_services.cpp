#include "tests/unit/simulator/services/unit_with_services.h"

#include <signal.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace services_test {

using simulator::model::UnitModel;

bool comes_true(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

UnitWithServices::UnitWithServices() {
  std::filesystem::create_directories(file("run/unit"));
  model_.reset(new UnitModel(UnitModel::create(file("run/unit/model"))));
}

UnitWithServices::~UnitWithServices() {
  if (services_) {
    services_->send(SIGTERM);
    services_->wait();
  }
}

std::vector<std::string> UnitWithServices::variables() const {
  return {"UNIT_RUN=" + file("run/unit"), "UNIT_NAMING_PORT=" + std::to_string(naming_port())};
}

void UnitWithServices::start_services(const std::vector<std::string>& arguments) {
  std::vector<std::string> command{UNIT_SERVICES};
  command.insert(command.end(), arguments.begin(), arguments.end());
  services_ = std::make_unique<ChildProcess>(command, variables(), file("services.log"));
  ASSERT_TRUE(model().services().wait_applied(PATIENCE)) << services_output();
}

void UnitWithServices::behave(Service service, ServiceBehaviour behaviour) {
  model().services().set_behaviour(service, behaviour);
  ASSERT_TRUE(model().services().wait_applied(PATIENCE)) << services_output();
}

CORBA::Object_var UnitWithServices::resolve(const std::vector<std::string>& path) {
  CosNaming::Name name;
  name.length(static_cast<CORBA::ULong>(path.size()));
  for (CORBA::ULong i = 0; i < name.length(); ++i) {
    name[i].id = CORBA::string_dup(path[i].c_str());
    name[i].kind = CORBA::string_dup("");
  }
  return naming_service_->root()->resolve(name);
}

bool UnitWithServices::bound(const std::vector<std::string>& path) {
  try {
    return !CORBA::is_nil(resolve(path));
  } catch (const CosNaming::NamingContext::NotFound&) {
    return false;
  }
}

Halcyra::gui::GUIManager_var UnitWithServices::gui_manager() {
  return Halcyra::gui::GUIManager::_narrow(resolve(GUI_MANAGER_PATH).in());
}

Varnok::EverybodyEng::Interfaces_var UnitWithServices::everybody_engine() {
  return Varnok::EverybodyEng::Interfaces::_narrow(resolve(EVERYBODY_ENGINE_PATH).in());
}

Varnok::HwEnumerate_Able_var UnitWithServices::hw_enumerate() {
  return Varnok::HwEnumerate_Able::_narrow(resolve(HW_ENUMERATE_PATH).in());
}

std::vector<nlohmann::json> UnitWithServices::calls() const {
  std::vector<nlohmann::json> lines;
  std::ifstream record(file("run/unit/calls.jsonl"));
  for (std::string line; std::getline(record, line);) {
    lines.push_back(nlohmann::json::parse(line));
  }
  return lines;
}

std::vector<std::string> UnitWithServices::call_texts() const {
  std::vector<std::string> texts;
  for (const nlohmann::json& call : calls()) {
    texts.push_back(call.at("at").get<std::string>() + " " + call.at("args").dump());
  }
  return texts;
}

std::string UnitWithServices::services_output() const {
  return doubles::text_of(file("services.log"));
}

}  // namespace services_test
