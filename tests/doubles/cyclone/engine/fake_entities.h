#pragma once

#include <dds/DCPS/LocalObject.h>
#include <dds/DdsDcpsDomainC.h>

// Bases of the fake entities, one version per engine. Here the fakes implement every operation that the interfaces
// declare.

namespace doubles {

class FakeParticipantBase : public virtual OpenDDS::DCPS::LocalObject<DDS::DomainParticipant> {
protected:
  /// Does nothing: types are registered for the participant of that instance handle, which is the real one's.
  static void share_type(DDS::DomainParticipant_ptr, const char*) {}
};

using FakePublisherBase = OpenDDS::DCPS::LocalObject<DDS::Publisher>;
using FakeSubscriberBase = OpenDDS::DCPS::LocalObject<DDS::Subscriber>;
using FakeWriterBase = OpenDDS::DCPS::LocalObject<DDS::DataWriter>;
template <typename Attribute>
using FakeTypedWriterBase = OpenDDS::DCPS::LocalObject<typename Attribute::DataWriter>;
template <typename Attribute>
using FakeTypedReaderBase = OpenDDS::DCPS::LocalObject<typename Attribute::DataReader>;

}  // namespace doubles
