#pragma once

#include <memory>

#include <dds/dds.h>

#include <dds/DdsDcpsInfrastructureC.h>

#include "dcps/src/delivery.h"

/// Whose thread the current one is: Cyclone delivers on threads of its own, but what is written in this process it
/// delivers on the writing thread.
namespace dcps {

/// Stands around each call into Cyclone that may deliver samples or statuses on the calling thread.
class UserCall {
public:
  UserCall();
  ~UserCall();
  UserCall(const UserCall&) = delete;
  UserCall& operator=(const UserCall&) = delete;

  /// True: what Cyclone now delivers on this thread comes out of a call of the program's.
  static bool on_this_thread();
};

/// Stands around a listener's call on a thread of Cyclone's.
class EngineCall {
public:
  EngineCall();
  ~EngineCall();
  EngineCall(const EngineCall&) = delete;
  EngineCall& operator=(const EngineCall&) = delete;
};

/// Deletes in Cyclone what stands for `entity`. Cyclone waits for calls under way, so from within an EngineCall it is
/// left to the delivery thread, in the order of deletion; `entity`, which Cyclone may call until then, is kept.
void delete_in_cyclone(dds_entity_t cyclone, DDS::Entity_ptr entity, const std::shared_ptr<Delivery>& delivery);

}  // namespace dcps
