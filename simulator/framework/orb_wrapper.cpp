#include <dcps/orb_start.h>
#include <orb_wrapper.h>
#include <orbsvcs/CosNamingC.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "simulator/framework/crossing.h"
#include "simulator/model/json_text.h"

namespace {

using simulator::model::FaultKind;
using simulator::model::Point;

/// The port of the unit's naming service. Throws CORBA::INITIALIZE if none is set.
unsigned naming_port() {
  const char* text = std::getenv("UNIT_NAMING_PORT");
  unsigned port = 0;
  if (text != nullptr) {
    std::from_chars(text, text + std::strlen(text), port);
  }
  if (port == 0 || port > 65535) {
    throw CORBA::INITIALIZE();
  }
  return port;
}

/// The process's ORB, started by the first call. Never shut down: its references may be in use until the process ends.
CORBA::ORB_ptr the_orb() {
  static std::mutex starting;
  static CORBA::ORB_ptr orb = CORBA::ORB::_nil();
  const std::lock_guard guard(starting);
  if (CORBA::is_nil(orb)) {
    orb = dcps::start_loopback_orb(naming_port());
  }
  return orb;
}

CosNaming::NamingContext_ptr naming_root() {
  const CORBA::Object_var root = the_orb()->resolve_initial_references("NameService");
  CosNaming::NamingContext_ptr context = CosNaming::NamingContext::_narrow(root.in());
  if (CORBA::is_nil(context)) {
    throw CORBA::OBJECT_NOT_EXIST();
  }
  return context;
}

CosNaming::Name name_of(const std::vector<std::string>& path) {
  CosNaming::Name name;
  name.length(static_cast<CORBA::ULong>(path.size()));
  for (CORBA::ULong level = 0; level < name.length(); ++level) {
    name[level].id = CORBA::string_dup(path[level].c_str());
    name[level].kind = CORBA::string_dup("");
  }
  return name;
}

/// Crosses the interface with the path; throws if a fault makes the lookup fail.
void cross(const std::vector<std::string>& path) {
  std::string names;
  for (const std::string& name : path) {
    names += (names.empty() ? "" : ",") + simulator::model::json_text(name);
  }
  const simulator::model::Fault fault = simulator::framework::cross(Point::ORB_LOOKUP, "{\"path\":[" + names + "]}");
  if (fault.kind == FaultKind::FAIL) {
    throw CORBA::TRANSIENT(static_cast<CORBA::ULong>(fault.value), CORBA::COMPLETED_NO);
  }
}

CORBA::Object_ptr look_up(const std::vector<std::string>& path) {
  cross(path);
  const CosNaming::NamingContext_var root = naming_root();
  return root->resolve(name_of(path));
}

}  // namespace

/// The references that a wrapper has resolved and owns.
class ORB_wrapper_base::Found {
public:
  CORBA::Object_ptr keep(CORBA::Object_ptr object) {
    kept_.emplace_back(object);
    return object;
  }

private:
  std::vector<CORBA::Object_var> kept_;
};

ORB_wrapper_base::ORB_wrapper_base() : found_(new Found) {}

ORB_wrapper_base::~ORB_wrapper_base() {
  delete found_;
}

void ORB_wrapper_base::LookupClient(std::vector<ClientInfo>& clients) {
  for (ClientInfo& client : clients) {
    client.object = found_->keep(look_up(client.path));
  }
}
