#include "simulator/services/service_process.h"

#include <signal.h>
#include <unistd.h>

#include <dcps/orb_start.h>
#include <tao/PortableServer/PortableServer.h>

#include <atomic>
#include <optional>
#include <thread>
#include <vector>

#include "simulator/services/engines.h"
#include "simulator/services/gui_manager.h"
#include "simulator/services/registration.h"

namespace simulator::services {
namespace {

constexpr std::chrono::milliseconds NAMING_PATIENCE{10000};
constexpr std::chrono::milliseconds LOOK_UP_INTERVAL{50};

/// Maximum number of concurrent calls if the ORB has no threads of its own.
constexpr int ORB_THREADS = 8;

std::atomic<bool> end_asked{false};

extern "C" void ask_for_end(int) {
  end_asked.store(true);
}

/// Blocks the termination signals in the calling thread and the threads that it starts.
class EndingSignals {
public:
  EndingSignals() {
    ::sigemptyset(&signals_);
    ::sigaddset(&signals_, SIGTERM);
    ::sigaddset(&signals_, SIGINT);
    ::pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
    struct sigaction action = {};
    action.sa_handler = ask_for_end;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
  }

  /// Unblocks them in the calling thread.
  void admit() const { ::pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr); }

private:
  sigset_t signals_;
};

std::vector<std::string> naming_path(model::Service service) {
  switch (service) {
    case model::Service::GUI_MANAGER:
      return {"Halcyra", "local", "GUIManager"};
    case model::Service::EVERYBODY_ENGINE:
      return {"Halcyra", "local", "EVERYBODYENG", "1"};
    default:
      return {"Halcyra", "local", "HWENUM_ABLE", "1"};
  }
}

PortableServer::ServantBase* make_servant(model::UnitModel& model, model::Service service, Ending& ending) {
  switch (service) {
    case model::Service::GUI_MANAGER:
      return new GuiManager(model, ending);
    case model::Service::EVERYBODY_ENGINE:
      return new EverybodyEngine(model, ending);
    default:
      return new HwEnumerate(model, ending);
  }
}

/// The ORB with the service's servant. Accepts calls until destruction, which ends waiting calls.
class Server {
public:
  Server(model::UnitModel& model, model::Service service, unsigned naming_port)
      : orb_(dcps::start_loopback_orb(naming_port)), servant_(make_servant(model, service, ending_)) {
    CORBA::Object_var object = orb_->resolve_initial_references("RootPOA");
    PortableServer::POA_var poa = PortableServer::POA::_narrow(object);
    PortableServer::ObjectId_var id = poa->activate_object(servant_.in());
    reference_ = poa->id_to_reference(id);
    PortableServer::POAManager_var manager = poa->the_POAManager();
    manager->activate();
    for (int i = 0; i < ORB_THREADS; ++i) {
      threads_.emplace_back([this] { serve(); });
    }
  }

  ~Server() {
    ending_.begin();
    orb_->shutdown(true);
    for (std::thread& thread : threads_) {
      thread.join();
    }
    orb_->destroy();
  }

  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  CORBA::ORB_ptr orb() const { return orb_; }
  CORBA::Object_ptr reference() const { return reference_; }

private:
  /// Runs the ORB on the calling thread. Returns at once if the ORB has been shut down.
  void serve() {
    try {
      orb_->run();
    } catch (const CORBA::BAD_INV_ORDER&) {
      return;
    }
  }

  Ending ending_;
  CORBA::ORB_var orb_;
  PortableServer::ServantBase_var servant_;
  CORBA::Object_var reference_;
  std::vector<std::thread> threads_;
};

void apply(model::ServiceBehaviour behaviour, Registration& registration, CORBA::Object_ptr reference) {
  switch (behaviour) {
    case model::ServiceBehaviour::ABSENT:
      registration.unbind();
      return;
    case model::ServiceBehaviour::WRONG_TYPE:
      registration.bind_to_naming_service();
      return;
    default:
      registration.bind(reference);
  }
}

/// Unbinds the name at the end; it is no error if the naming service has already exited.
void leave(Registration& registration) {
  try {
    registration.unbind();
  } catch (const CORBA::SystemException&) {
    return;
  }
}

}  // namespace

void run_service(model::UnitModel& model, model::Service service, unsigned naming_port, int report) {
  const EndingSignals signals;
  Server server(model, service, naming_port);
  Registration registration(server.orb(), naming_path(service), NAMING_PATIENCE);
  signals.admit();

  memory::Signal& changed = model.services().changed();
  std::optional<model::ServiceBehaviour> applied;
  while (!end_asked.load()) {
    const std::uint32_t seen = changed.count();
    const model::ServiceBehaviour wanted = model.services().behaviour(service);
    if (applied != wanted) {
      apply(wanted, registration, server.reference());
      applied = wanted;
    }
    if (report >= 0 && ::write(report, &seen, sizeof seen) != sizeof seen) {
      break;
    }
    while (!end_asked.load() && changed.count() == seen) {
      changed.wait(seen, LOOK_UP_INTERVAL);
    }
  }
  leave(registration);
}

}  // namespace simulator::services
