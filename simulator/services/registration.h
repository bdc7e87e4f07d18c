#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <orbsvcs/CosNamingC.h>
#include <tao/corba.h>

namespace simulator::services {

/// One name in the unit's naming service.
/// One thread at a time. Every operation throws the CORBA exception of a naming service that cannot be reached.
class Registration {
public:
  /// `path`: the naming path, outermost name first, at least one name. Waits up to `patience` for a naming service that
  /// has not started yet.
  Registration(CORBA::ORB_ptr orb, const std::vector<std::string>& path, std::chrono::milliseconds patience);

  /// Leads the name to `object` in place of what it led to. Makes the contexts on the way where there are none.
  void bind(CORBA::Object_ptr object);
  /// Leads the name to an object that is alive and of an interface of its own: the naming service's root context.
  void bind_to_naming_service();
  /// Takes the name away; does nothing where it is not there.
  void unbind();

private:
  void make_contexts();

  CosNaming::NamingContext_var root_;
  CosNaming::Name name_;
};

}  // namespace simulator::services
