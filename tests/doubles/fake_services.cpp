#include "tests/doubles/fake_services.h"

#include <map>
#include <mutex>
#include <utility>

#include <dcps/orb_start.h>

#include "tests/doubles/fake_varnok.h"

namespace doubles {

namespace {

/// No naming service is contacted; the port is never used.
constexpr unsigned int NO_NAMING_PORT = 1;

PortableServer::POA_ptr running_root_poa() {
  static const CORBA::ORB_ptr orb = dcps::start_loopback_orb(NO_NAMING_PORT);
  const CORBA::Object_var object = orb->resolve_initial_references("RootPOA");
  PortableServer::POA_ptr const poa = PortableServer::POA::_narrow(object.in());
  const PortableServer::POAManager_var manager = poa->the_POAManager();
  manager->activate();
  return poa;
}

/// Settings of the servants.
struct Orders {
  void begin(const std::string& operation, const std::string& logged) {
    calls().record(logged);
    std::function<void()> action;
    {
      const std::lock_guard<std::mutex> lock(mutex);
      const auto found = actions.find(operation);
      if (found != actions.end()) {
        action = found->second;
      }
    }
    if (action) {
      action();
    }
  }

  std::mutex mutex;
  std::map<std::string, std::function<void()>> actions;
  CORBA::Long answer = 0;
  bool without_shutdown_interface = false;
};

class GuiManager : public POA_Halcyra::gui::GUIManager {
public:
  explicit GuiManager(Orders& orders) : orders_(orders) {}

  CORBA::Long ShowDialog(const char* title, const char* text, const char* buttons, CORBA::Long wait) override {
    orders_.begin(wait != 0 ? "ShowDialog waiting" : "ShowDialog",
                  std::string("ShowDialog [") + title + "] [" + text + "] [" + buttons + "] " + std::to_string(wait));
    return wait != 0 ? orders_.answer : 0;
  }
  void SetDialogSize(const char* title, const char* size) override {
    orders_.begin("SetDialogSize", std::string("SetDialogSize [") + title + "] [" + size + "]");
  }

private:
  Orders& orders_;
};

class EverybodyShutdown : public POA_Varnok::EverybodyEng::Shutdown {
public:
  explicit EverybodyShutdown(Orders& orders) : orders_(orders) {}

  void ShutdownAll(const Varnok::Locker_Core& core) override {
    orders_.begin("ShutdownAll", "ShutdownAll " + std::to_string(core.process) + " " + std::to_string(core.serial));
  }

private:
  Orders& orders_;
};

class EverybodyEngine : public POA_Varnok::EverybodyEng::Interfaces {
public:
  explicit EverybodyEngine(Orders& orders) : orders_(orders), shutdown_(new EverybodyShutdown(orders)) {}

  Varnok::EverybodyEng::Shutdown_ptr GetShutdown() override {
    orders_.begin("GetShutdown", "GetShutdown");
    if (orders_.without_shutdown_interface) {
      return Varnok::EverybodyEng::Shutdown::_nil();
    }
    return shutdown_->_this();
  }

  void deactivate_shutdown(PortableServer::POA_ptr poa) {
    const PortableServer::ObjectId_var id = poa->servant_to_id(shutdown_.in());
    poa->deactivate_object(id.in());
  }

private:
  Orders& orders_;
  PortableServer::Servant_var<EverybodyShutdown> shutdown_;
};

class HwEnumeration : public POA_Varnok::HwEnumerate_Able {
public:
  explicit HwEnumeration(Orders& orders) : orders_(orders) {}

  void ShutdownEngine(const char* engine) override {
    orders_.begin("ShutdownEngine", std::string("ShutdownEngine ") + engine);
  }

private:
  Orders& orders_;
};

}  // namespace

/// The servants and their references.
class FakeServices::Servants {
public:
  Servants()
      : gui_servant_(new GuiManager(orders)),
        everybody_servant_(new EverybodyEngine(orders)),
        enumeration_servant_(new HwEnumeration(orders)),
        poa_(running_root_poa()),
        gui(gui_servant_->_this()),
        everybody(everybody_servant_->_this()),
        enumeration(enumeration_servant_->_this()) {}

  ~Servants() {
    everybody_servant_->deactivate_shutdown(poa_.in());
    for (PortableServer::Servant servant : {static_cast<PortableServer::Servant>(gui_servant_.in()),
                                            static_cast<PortableServer::Servant>(everybody_servant_.in()),
                                            static_cast<PortableServer::Servant>(enumeration_servant_.in())}) {
      const PortableServer::ObjectId_var id = poa_->servant_to_id(servant);
      poa_->deactivate_object(id.in());
    }
  }

  Orders orders;

private:
  PortableServer::Servant_var<GuiManager> gui_servant_;
  PortableServer::Servant_var<EverybodyEngine> everybody_servant_;
  PortableServer::Servant_var<HwEnumeration> enumeration_servant_;
  PortableServer::POA_var poa_;

public:
  Halcyra::gui::GUIManager_var gui;
  Varnok::EverybodyEng::Interfaces_var everybody;
  Varnok::HwEnumerate_Able_var enumeration;
};

FakeServices::FakeServices() : servants_(new Servants) {}

FakeServices::~FakeServices() = default;

FakeServices& FakeServices::bind() {
  bind_service(GUI_MANAGER, gui_manager());
  bind_service(EVERYBODY_ENGINE, everybody_engine());
  bind_service(HW_ENUMERATION, hw_enumeration());
  return *this;
}

FakeServices& FakeServices::user_answers(CORBA::Long answer) {
  servants_->orders.answer = answer;
  return *this;
}

FakeServices& FakeServices::has_no_shutdown_interface() {
  servants_->orders.without_shutdown_interface = true;
  return *this;
}

FakeServices& FakeServices::runs_first(const std::string& operation, std::function<void()> action) {
  const std::lock_guard<std::mutex> lock(servants_->orders.mutex);
  servants_->orders.actions[operation] = std::move(action);
  return *this;
}

Halcyra::gui::GUIManager_ptr FakeServices::gui_manager() const {
  return servants_->gui.in();
}

Varnok::EverybodyEng::Interfaces_ptr FakeServices::everybody_engine() const {
  return servants_->everybody.in();
}

Varnok::HwEnumerate_Able_ptr FakeServices::hw_enumeration() const {
  return servants_->enumeration.in();
}

}  // namespace doubles
