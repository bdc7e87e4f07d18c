#pragma once

#include <string>
#include <vector>

#include "orb_wrapper.h"

/// Finds the object of that naming path through an ORB wrapper of its own, which is kept until the process ends: the
/// object belongs to it. Throws what the lookup throws. Any thread.
CORBA::Object_ptr FindObject(const std::vector<std::string>& path);

/// Finds the service of that naming path. The caller owns the reference; nil where the object is of another type.
template <typename Service>
typename Service::_ptr_type FindService(const std::vector<std::string>& path) {
  return Service::_narrow(FindObject(path));
}
