#pragma once

#include <iostream>

// The TAO and OpenDDS headers contain file-scope start-up calls: each source file that includes this header links the
// portable object adapter and then registers the DDS monitor service, in this order, before any entity is made.
#include <tao/PortableServer/PortableServer.h>

#include <dds/DCPS/MonitorFactory.h>

#include <dds/DCPS/LocalObject.h>
#include <dds/DCPS/Marked_Default_Qos.h>
#include <dds/DCPS/Service_Participant.h>
#include <dds/DdsDcpsInfrastructureC.h>
#include <dds/DdsDcpsPublicationC.h>
#include <dds/DdsDcpsSubscriptionC.h>
#include <dds/DdsDcpsTopicC.h>
#include <boost/thread/mutex.hpp>

namespace Varnok {

/// The status mask of all communication statuses.
constexpr DDS::StatusMask ALL_STATUSES = 0xFFFFFFFF;

/// The process's shared DDS context. Made on first use, kept until the process ends.
struct DDS_Context {
  DDS::DomainParticipantFactory_ptr factory;  ///< the factory that made the participant
  DDS::DomainParticipant_ptr participant;     ///< owns all entities of the process; null if it could not be made
};

/// Base of all classes that own DDS entities: gives access to the process's one DDS context. Any thread may construct
/// and use its objects; the creator of an entity owns it.
class __attribute__((visibility("default"))) DDS_BaseObj {
public:
  DDS_BaseObj(const DDS_BaseObj&) = delete;
  DDS_BaseObj& operator=(const DDS_BaseObj&) = delete;

protected:
  /// Makes the process's context if there is none yet. If the participant cannot be made, the context's participant is
  /// null; throws nothing.
  DDS_BaseObj();
  ~DDS_BaseObj();

  const DDS_Context& DdsBase() const;
};

/// Held while a subscriber is torn down, so that the subscribers of one source file are destroyed one at a time. Each
/// source file that includes this header has its own. It is constructed before all ordinary file-scope objects, so that
/// objects constructed and destroyed while a library is still loading can lock it.
[[gnu::init_priority(1000), maybe_unused]] static boost::mutex SerializeSubscriberDestructionMutex;

}  // namespace Varnok
