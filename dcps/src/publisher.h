#pragma once

#include <dcps/writer.h>

#include "dcps/src/contained.h"

namespace dcps {

class ParticipantImpl;

class PublisherImpl final : public EntityImpl<DDS::Publisher> {
public:
  explicit PublisherImpl(ParticipantImpl& participant);
  ~PublisherImpl() override;

  /// False if Cyclone refuses.
  bool open();
  /// Deletes it and all it contains.
  void close();
  /// True if it has no writers.
  bool is_clean() const { return writers_.empty(); }

  DDS::DataWriter_ptr create_datawriter(DDS::Topic_ptr topic, const DDS::DataWriterQos& qos,
                                        DDS::DataWriterListener_ptr listener, DDS::StatusMask mask) override;
  DDS::ReturnCode_t delete_datawriter(DDS::DataWriter_ptr writer) override;
  DDS::ReturnCode_t delete_contained_entities() override;
  DDS::ReturnCode_t get_default_datawriter_qos(DDS::DataWriterQos& qos) override;

private:
  const Reference<ParticipantImpl> participant_;
  Contained<DataWriterImpl> writers_;
};

}  // namespace dcps
