#pragma once

#include <iostream>

// The TAO and OpenDDS headers bring their own file-scope start-up calls: whoever includes this header links the
// portable object adapter, then registers the DDS monitor service, before any entity is made. The order of the two
// matters.
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

/// The status mask that asks for every communication status.
constexpr DDS::StatusMask ALL_STATUSES = 0xFFFFFFFF;

/// The process's shared DDS context. Made on first use, kept until the process ends.
struct DDS_Context {
  DDS::DomainParticipantFactory_ptr factory;  ///< where the participant came from
  DDS::DomainParticipant_ptr participant;     ///< owns all entities of the process; null when it could not be made
};

/// Base of everything that owns DDS entities: gives access to the process's one DDS context.
/// Any thread may construct and use objects of it; the entities' owner is their creator.
class __attribute__((visibility("default"))) DDS_BaseObj {
public:
  DDS_BaseObj(const DDS_BaseObj&) = delete;
  DDS_BaseObj& operator=(const DDS_BaseObj&) = delete;

protected:
  /// Makes the process's context when there is none yet. A participant that cannot be made leaves the context's
  /// participant null; nothing is thrown.
  DDS_BaseObj();
  ~DDS_BaseObj();

  const DDS_Context& DdsBase() const;
};

/// Held while a subscriber is torn down, so that the subscribers of one source file go one after the other. Each source
/// file that includes this header owns one. It is constructed ahead of all ordinary file-scope objects, so that it can
/// be locked by whatever is constructed and destroyed while a library is still loading.
[[gnu::init_priority(1000), maybe_unused]] static boost::mutex SerializeSubscriberDestructionMutex;

}  // namespace Varnok
