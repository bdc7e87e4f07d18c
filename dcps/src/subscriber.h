#pragma once

#include <dcps/reader.h>

#include "dcps/src/contained.h"
#include "dcps/src/participant.h"

namespace dcps {

class SubscriberImpl final : public EntityImpl<DDS::Subscriber> {
public:
  explicit SubscriberImpl(ParticipantImpl& participant);
  ~SubscriberImpl() override;

  /// False if Cyclone refuses.
  bool open();
  /// Deletes it and all it contains.
  void close();
  /// True if it has no readers.
  bool is_clean() const { return readers_.empty(); }

  DDS::DataReader_ptr create_datareader(DDS::TopicDescription_ptr topic, const DDS::DataReaderQos& qos,
                                        DDS::DataReaderListener_ptr listener, DDS::StatusMask mask) override;
  DDS::ReturnCode_t delete_datareader(DDS::DataReader_ptr reader) override;
  DDS::ReturnCode_t delete_contained_entities() override;
  DDS::ReturnCode_t get_default_datareader_qos(DDS::DataReaderQos& qos) override;

  ParticipantImpl& participant() const { return *participant_.in(); }

private:
  const Reference<ParticipantImpl> participant_;
  Contained<DataReaderImpl> readers_;
};

}  // namespace dcps
