#include "simulator/services/registration.h"

#include <thread>

namespace simulator::services {
namespace {

constexpr std::chrono::milliseconds RETRY_INTERVAL{20};

CosNaming::Name name_of(const std::vector<std::string>& path) {
  CosNaming::Name name;
  name.length(static_cast<CORBA::ULong>(path.size()));
  for (CORBA::ULong i = 0; i < name.length(); ++i) {
    name[i].id = CORBA::string_dup(path[i].c_str());
    name[i].kind = CORBA::string_dup("");
  }
  return name;
}

/// The naming service's root context. Retries until `patience` has passed if the service is not listening yet or does
/// not know its root yet.
CosNaming::NamingContext_ptr find_root(CORBA::ORB_ptr orb, std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  for (;;) {
    try {
      CORBA::Object_var object = orb->resolve_initial_references("NameService");
      CosNaming::NamingContext_var root = CosNaming::NamingContext::_narrow(object);
      if (CORBA::is_nil(root)) {
        throw CORBA::OBJECT_NOT_EXIST();
      }
      return root._retn();
    } catch (const CORBA::SystemException&) {
      if (std::chrono::steady_clock::now() >= deadline) {
        throw;
      }
      std::this_thread::sleep_for(RETRY_INTERVAL);
    }
  }
}

}  // namespace

Registration::Registration(CORBA::ORB_ptr orb, const std::vector<std::string>& path, std::chrono::milliseconds patience)
    : root_(find_root(orb, patience)), name_(name_of(path)) {}

void Registration::bind(CORBA::Object_ptr object) {
  make_contexts();
  root_->rebind(name_, object);
}

void Registration::bind_to_naming_service() {
  make_contexts();
  root_->rebind(name_, root_);
}

void Registration::unbind() {
  try {
    root_->unbind(name_);
  } catch (const CosNaming::NamingContext::NotFound&) {
    return;
  }
}

void Registration::make_contexts() {
  CosNaming::Name prefix;
  for (CORBA::ULong i = 0; i + 1 < name_.length(); ++i) {
    prefix.length(i + 1);
    prefix[i] = name_[i];
    try {
      CosNaming::NamingContext_var made = root_->bind_new_context(prefix);
    } catch (const CosNaming::NamingContext::AlreadyBound&) {
      continue;
    }
  }
}

}  // namespace simulator::services
