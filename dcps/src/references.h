#pragma once

#include <dcps/local_interface.h>

namespace dcps {

/// A holder with a reference of its own.
template <typename Object>
Reference<Object> add_reference(Object* object) {
  ReferenceHelper<Object>::duplicate(object);
  return Reference<Object>(object);
}

}  // namespace dcps
