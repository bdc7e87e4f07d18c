#include "tests/doubles/fake_varnok.h"

#include <dcps/dds_start.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <mutex>
#include <set>
#include <tuple>
#include <utility>

namespace doubles {

namespace {

struct Framework {
  std::mutex mutex;
  Varnok::DDS_Context context{DDS::DomainParticipantFactory::_nil(), DDS::DomainParticipant::_nil()};
  bool participant_replaced = false;
  std::vector<SentEvent> events;
  std::function<void()> in_sends;
  std::map<std::string, CORBA::Object_var> services;
  std::map<std::string, std::function<void()>> in_lookups;
  std::set<const ORB_wrapper_base*> wrappers;  // the library keeps no pointer to them
  unsigned int wrappers_made = 0;
  unsigned int wrappers_destroyed = 0;
  std::uint64_t core_serial = 0;
};

/// Never destroyed: the library's static objects use it during their construction and at exit.
Framework& framework() {
  static Framework& one = *new Framework;
  return one;
}

}  // namespace

DDS::DomainId_t real_domain() {
  const char* const given = std::getenv("TEST_DOMAIN");
  return given ? std::stoi(given) : 1 + getpid() % 200;
}

DDS::DomainParticipant_ptr real_participant() {
  static const DDS::DomainParticipant_ptr participant = [] {
    const DDS::DomainParticipantFactory_var factory = dcps::start_dds();
    return factory->create_participant(real_domain(), PARTICIPANT_QOS_DEFAULT, DDS::DomainParticipantListener::_nil(),
                                       Varnok::ALL_STATUSES);
  }();
  return participant;
}

ParticipantInUse::ParticipantInUse(DDS::DomainParticipant_ptr participant) {
  Framework& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  one.context.participant = participant;
  one.participant_replaced = true;
}

ParticipantInUse::~ParticipantInUse() {
  Framework& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  one.context.participant = DDS::DomainParticipant::_nil();
  one.participant_replaced = false;
}

bool SentEvent::operator==(const SentEvent& other) const {
  const auto fields = [](const SentEvent& event) {
    return std::tie(event.source, event.category, event.text, event.severity, event.flags, event.code, event.timestamp,
                    event.channel);
  };
  return fields(*this) == fields(other);
}

std::ostream& operator<<(std::ostream& stream, const SentEvent& event) {
  return stream << "{" << event.source << ", " << event.category << ", " << event.text << ", " << event.severity << ", "
                << event.flags << ", " << event.code << ", " << event.timestamp << ", " << event.channel << "}";
}

std::vector<SentEvent> sent_events() {
  Framework& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  return one.events;
}

void run_first_in_sends(std::function<void()> action) {
  Framework& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  one.in_sends = std::move(action);
}

void bind_service(const std::string& path, CORBA::Object_ptr object) {
  Framework& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  one.services[path] = CORBA::Object::_duplicate(object);
}

void unbind_service(const std::string& path) {
  Framework& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  one.services.erase(path);
}

void run_first_in_lookups(const std::string& path, std::function<void()> action) {
  Framework& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  one.in_lookups[path] = std::move(action);
}

unsigned int wrappers_made() {
  Framework& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  return one.wrappers_made;
}

unsigned int wrappers_destroyed() {
  Framework& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  return one.wrappers_destroyed;
}

std::uint64_t last_core_serial() {
  Framework& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  return one.core_serial;
}

void reset_framework() {
  Framework& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  one.events.clear();
  one.in_sends = nullptr;
  one.services.clear();
  one.in_lookups.clear();
}

}  // namespace doubles

using doubles::framework;

namespace Varnok {

DDS_BaseObj::DDS_BaseObj() {
  DdsBase();
}
DDS_BaseObj::~DDS_BaseObj() = default;

const DDS_Context& DDS_BaseObj::DdsBase() const {
  auto& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  const bool unset = CORBA::is_nil(one.context.participant) && !one.participant_replaced;
  if (unset) {
    one.context.participant = doubles::real_participant();
  }
  return one.context;
}

EngineEventMessage_i::EngineEventMessage_i() : channel_(nullptr) {}
EngineEventMessage_i::~EngineEventMessage_i() = default;

void EngineEventMessage_i::SendEventMessage(const Event::Message& message) {
  const char* source = message.source;
  const char* text = message.text;
  doubles::calls().record(std::string("event ") + source);
  auto& one = framework();
  std::function<void()> action;
  {
    const std::lock_guard<std::mutex> lock(one.mutex);
    action = one.in_sends;
  }
  if (action) {
    action();
  }
  const std::lock_guard<std::mutex> lock(one.mutex);
  one.events.push_back(
      {source, message.category, text, message.severity, message.flags, message.code, message.timestamp, this});
}

Locker::Locker() : core_(nullptr) {
  doubles::calls().record("take framework lock");
}

Locker::~Locker() {
  delete core_;
  doubles::calls().record("give framework lock back");
}

void Locker::Init_core() const {
  if (core_) {
    return;
  }
  doubles::calls().record("make locker core");
  auto& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  core_ = new Locker_Core;
  core_->process = 4711;
  core_->serial = ++one.core_serial;
}

}  // namespace Varnok

/// The objects that one wrapper has found.
class ORB_wrapper_base::Found {
public:
  std::vector<CORBA::Object_var> objects;
};

ORB_wrapper_base::ORB_wrapper_base() : found_(new Found) {
  auto& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  one.wrappers.insert(this);
  ++one.wrappers_made;
}

ORB_wrapper_base::~ORB_wrapper_base() {
  delete found_;
  auto& one = framework();
  const std::lock_guard<std::mutex> lock(one.mutex);
  one.wrappers.erase(this);
  ++one.wrappers_destroyed;
}

void ORB_wrapper_base::LookupClient(std::vector<ClientInfo>& clients) {
  auto& one = framework();
  for (ClientInfo& client : clients) {
    std::string path;
    for (const std::string& name : client.path) {
      path += (path.empty() ? "" : "/") + name;
    }
    doubles::calls().record("lookup " + path);
    std::function<void()> action;
    {
      const std::lock_guard<std::mutex> lock(one.mutex);
      action = one.in_lookups[path];
    }
    if (action) {
      action();
    }
    const std::lock_guard<std::mutex> lock(one.mutex);
    const auto bound = one.services.find(path);
    if (bound == one.services.end()) {
      throw CORBA::OBJECT_NOT_EXIST();
    }
    found_->objects.push_back(bound->second);
    client.object = found_->objects.back().in();
  }
}
