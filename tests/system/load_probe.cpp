// A host of the smallest kind: loads libraries and reports what came of it, in /run/unit/report.json:
//   {"loads":[{"error":null}],"hardware":"0x55…","type":"HARDWARE","fan_state":4}
// A load that ended in an exception has "exception": {"type","what"}.
//
//   load_probe [--stay] [--occupy TOPIC boolean|void] LIBRARY…
// --stay keeps the process once it has loaded, without a report. --occupy makes a topic with that name and type before
// loading, on the participant that the library will use.

#include <dlfcn.h>

#include <cxxabi.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <typeinfo>

#include "base/base_hardware.h"
#include "varnok_attributes.h"
#include "varnok_dds.h"

__attribute__((visibility("default"))) BASE_HARDWARE* Hardware = nullptr;

namespace {

using nlohmann::json;

std::string demangled(const std::type_info& type) {
  int status = 0;
  char* const text = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
  const std::string name = status == 0 ? text : type.name();
  std::free(text);
  return name;
}

/// Holds one topic of the process's participant.
class OccupiedTopic : Varnok::DDS_BaseObj {
public:
  OccupiedTopic(const char* name, DDS::TypeSupport_ptr type) {
    const CORBA::String_var type_name = type->get_type_name();
    type->register_type(DdsBase().participant, "");
    topic_ = DdsBase().participant->create_topic(name, type_name.in(), TOPIC_QOS_DEFAULT, DDS::TopicListener::_nil(),
                                                 Varnok::ALL_STATUSES);
  }
  bool made() const { return !CORBA::is_nil(topic_.in()); }

private:
  DDS::Topic_var topic_;
};

DDS::TypeSupport_ptr type_named(const std::string& name) {
  if (name == "boolean") {
    return new Varnok::QTNN_DDS::ATTR_BOOLEANTypeSupportImpl;
  }
  return new Varnok::QTNN_DDS::ATTR_VOIDTypeSupportImpl;
}

json load(const char* library) {
  try {
    // dlopen() is declared noexcept; a call through this pointer lets an initialiser's exception be caught.
    void* (*volatile open_library)(const char*, int) = dlopen;
    const void* const handle = open_library(library, RTLD_NOW | RTLD_LOCAL);
    return {{"error", handle ? json(nullptr) : json(dlerror())}};
  } catch (const std::exception& error) {
    return {{"exception", {{"type", demangled(typeid(error))}, {"what", error.what()}}}};
  }
}

json describe_hardware() {
  if (!Hardware) {
    return {{"hardware", nullptr}};
  }
  std::ostringstream address;
  address << Hardware;
  return {{"hardware", address.str()},
          {"type", demangled(typeid(*Hardware))},
          {"fan_state", static_cast<int>(Hardware->GetFanState(0))}};
}

}  // namespace

int main(int argc, char** argv) {
  int next = 1;
  const bool stays = std::string(argv[next]) == "--stay";
  if (stays) {
    ++next;
  }
  if (std::string(argv[next]) == "--occupy") {
    if (!(new OccupiedTopic(argv[next + 1], type_named(argv[next + 2])))->made()) {
      std::cerr << "load_probe: no topic " << argv[next + 1] << std::endl;
      return 2;
    }
    next += 3;
  }
  json report = {{"loads", json::array()}};
  for (; next < argc; ++next) {
    report["loads"].push_back(load(argv[next]));
  }
  while (stays) {
    pause();
  }
  report.update(describe_hardware());
  std::ofstream("/run/unit/report.json") << report << std::flush;
  return 0;
}
