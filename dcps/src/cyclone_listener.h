#pragma once

#include <memory>

#include <dds/dds.h>

namespace dcps {

struct CycloneListenerDeleter {
  void operator()(dds_listener_t* listener) const { dds_delete_listener(listener); }
};
using CycloneListener = std::unique_ptr<dds_listener_t, CycloneListenerDeleter>;

}  // namespace dcps
