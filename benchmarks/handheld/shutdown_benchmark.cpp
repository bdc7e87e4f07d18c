#include <dcps/orb_start.h>
#include <orbsvcs/CosNamingC.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <initializer_list>
#include <iostream>
#include <thread>

#include "benchmarks/comparison.h"
#include "benchmarks/the_unit.h"
#include "everybody_engine.h"
#include "gui_manager.h"
#include "hw_enumerate.h"

namespace {

using benchmarks::Aim;

constexpr int SHUTDOWN_REQUEST = 0x100;
constexpr char QUESTION[] = "System Prompt";

/// During its lifetime, answers the question with Ok as soon as it is shown.
class Answerer {
public:
  Answerer() : thread_([this] { run(); }) {}
  ~Answerer() {
    stopping_ = true;
    thread_.join();
  }
  Answerer(const Answerer&) = delete;
  Answerer& operator=(const Answerer&) = delete;

private:
  void run() {
    auto& gui = benchmarks::the_unit().gui();
    while (!stopping_) {
      if (gui.wait_shown(QUESTION, std::chrono::milliseconds(100))) {
        gui.answer(QUESTION, "Ok");
      }
    }
  }

  std::atomic<bool> stopping_{false};
  std::thread thread_;
};

template <typename Service>
typename Service::_var_type find(CORBA::ORB_ptr orb, std::initializer_list<const char*> path) {
  const CORBA::Object_var initial = orb->resolve_initial_references("NameService");
  const CosNaming::NamingContext_var root = CosNaming::NamingContext::_narrow(initial.in());
  CosNaming::Name name;
  for (const char* each : path) {
    const CORBA::ULong level = name.length();
    name.length(level + 1);
    name[level].id = CORBA::string_dup(each);
    name[level].kind = CORBA::string_dup("");
  }
  const CORBA::Object_var object = root->resolve(name);
  return Service::_narrow(object.in());
}

/// The unavoidable costs of a shutdown: its remote calls and its script.
void bare_shutdown(CORBA::ORB_ptr orb) {
  const auto gui = find<Halcyra::gui::GUIManager>(orb, {"Halcyra", "local", "GUIManager"});
  const auto everybody = find<Varnok::EverybodyEng::Interfaces>(orb, {"Halcyra", "local", "EVERYBODYENG", "1"});
  const auto enumeration = find<Varnok::HwEnumerate_Able>(orb, {"Halcyra", "local", "HWENUM_ABLE", "1"});
  gui->ShowDialog(QUESTION, "Do you want to shutdown?", "Cancel,1|Ok,0", 1);
  gui->ShowDialog("Shutdown", "Shutting Down", "", 0);
  gui->SetDialogSize("Shutdown", "Max");
  const Varnok::EverybodyEng::Shutdown_var shutdown = everybody->GetShutdown();
  shutdown->ShutdownAll(Varnok::Locker_Core{1, 1});
  enumeration->ShutdownEngine("SYSTEM_ENGINE1");
  [[maybe_unused]] const int status = std::system("/root/.shutdown");
}

double shutdown() {
  benchmarks::the_hardware();
  const Answerer answerer;
  return benchmarks::time_of([] { Handheld_Hardware::PowerSwitch(SHUTDOWN_REQUEST); });
}

double bare() {
  const char* const port = std::getenv("UNIT_NAMING_PORT");
  static CORBA::ORB_ptr orb = dcps::start_loopback_orb(static_cast<unsigned>(std::atoi(port == nullptr ? "0" : port)));
  const Answerer answerer;
  return benchmarks::time_of([] { bare_shutdown(orb); });
}

const bool REGISTERED = benchmarks::compare(
    {"full shutdown, against its CORBA calls and its script", shutdown, bare, {Aim::Kind::RATIO_AT_MOST, 1.2}, 100});

}  // namespace
