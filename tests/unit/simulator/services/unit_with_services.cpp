#include "tests/unit/simulator/services/unit_with_services.h"

#include <arpa/inet.h>
#include <dcps/orb_start.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace services_test {
namespace {

sockaddr_in loopback(unsigned port) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  return address;
}

/// A loopback port on which no process listens.
unsigned free_port() {
  const int probe = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = loopback(0);
  socklen_t size = sizeof address;
  EXPECT_EQ(::bind(probe, reinterpret_cast<sockaddr*>(&address), size), 0);
  ::getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
  ::close(probe);
  return ntohs(address.sin_port);
}

bool listens(unsigned port) {
  const int probe = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = loopback(port);
  const bool connected = ::connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  ::close(probe);
  return connected;
}

std::string content(const std::string& path) {
  std::ifstream file(path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

}  // namespace

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
  std::string pattern = "/tmp/unit-XXXXXX";
  folder_ = ::mkdtemp(pattern.data());
  std::filesystem::create_directories(file("run/unit"));
  std::filesystem::create_directories(file("names"));
  model_.reset(new simulator::model::UnitModel(simulator::model::UnitModel::create(file("run/unit/model"))));
  start_naming_service();
  orb_ = dcps::start_loopback_orb(naming_port_);
  await_naming_service();
}

UnitWithServices::~UnitWithServices() {
  if (services_) {
    services_->send(SIGTERM);
    services_->wait();
  }
  naming_service_.reset();
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void UnitWithServices::start_naming_service() {
  do {
    naming_port_ = free_port();
    const std::string port = std::to_string(naming_port_);
    naming_service_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{"omniNames", "-start", port, "-always", "-datadir", file("names"), "-nohostname",
                                 "-errlog", file("names/log"), "-ORBendPoint", "giop:tcp:127.0.0.1:" + port},
        std::vector<std::string>{}, file("names/output"));
    while (naming_service_->running() && !listens(naming_port_)) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  } while (!naming_service_->running());
}

std::vector<std::string> UnitWithServices::variables() const {
  return {"UNIT_RUN=" + file("run/unit"), "UNIT_NAMING_PORT=" + std::to_string(naming_port_)};
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

CosNaming::NamingContext_var UnitWithServices::naming_root() {
  const std::string root = "corbaloc:iiop:127.0.0.1:" + std::to_string(naming_port_) + "/NameService";
  CORBA::Object_var object = orb_->string_to_object(root.c_str());
  return CosNaming::NamingContext::_narrow(object.in());
}

void UnitWithServices::await_naming_service() {
  while (naming_service_->running()) {
    try {
      if (!CORBA::is_nil(naming_root().in())) {
        return;
      }
    } catch (const CORBA::SystemException&) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  }
}

CORBA::Object_var UnitWithServices::resolve(const std::vector<std::string>& path) {
  CosNaming::Name name;
  name.length(static_cast<CORBA::ULong>(path.size()));
  for (CORBA::ULong i = 0; i < name.length(); ++i) {
    name[i].id = CORBA::string_dup(path[i].c_str());
    name[i].kind = CORBA::string_dup("");
  }
  return naming_root()->resolve(name);
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
  return content(file("services.log"));
}

}  // namespace services_test
