#pragma once

#include <string>
#include <vector>

#include "orb_wrapper.h"

namespace messaging {

/// Finds the object with that naming path through a new ORB wrapper, which is kept until the process ends because it
/// owns the object. Throws what the lookup throws. Any thread.
CORBA::Object_ptr find_object(const std::vector<std::string>& path);

/// Finds the service with that naming path. The caller owns the reference; nil if the object is of another type.
template <typename Service>
typename Service::_ptr_type find_service(const std::vector<std::string>& path) {
  return Service::_narrow(find_object(path));
}

}  // namespace messaging
