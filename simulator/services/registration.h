#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <orbsvcs/CosNamingC.h>
#include <tao/corba.h>

namespace simulator::services {

/// One name in the unit's naming service. One thread at a time. Every operation throws a CORBA exception if the naming
/// service cannot be reached.
class Registration {
public:
  /// `path`: the naming path, outermost name first, at least one name. Waits up to `patience` for the naming service to
  /// start.
  Registration(CORBA::ORB_ptr orb, const std::vector<std::string>& path, std::chrono::milliseconds patience);

  /// Binds the name to `object`, replacing any binding. Creates missing contexts.
  void bind(CORBA::Object_ptr object);
  /// Binds the name to a live object of another interface: the naming service's root context.
  void bind_to_naming_service();
  /// Unbinds the name; does nothing if it is not bound.
  void unbind();

private:
  void make_contexts();

  CosNaming::NamingContext_var root_;
  CosNaming::Name name_;
};

}  // namespace simulator::services
