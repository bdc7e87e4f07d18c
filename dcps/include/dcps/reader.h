#pragma once

#include <cstddef>
#include <memory>

#include <dcps/entity.h>
#include <dds/DdsDcpsSubscriptionC.h>

namespace dcps {

class ReaderCache;
class SubscriberImpl;
class TopicImpl;

/// A reader on Cyclone DDS, its samples untyped: each lies in memory as the topic's C description says.
///
/// Samples stay in Cyclone's cache until they are taken. The listener is called on the participant's listener thread,
/// never on one of Cyclone's.
class __attribute__((visibility("default"))) DataReaderImpl : public EntityImpl<DDS::DataReader> {
public:
  /// Joins the topic. False if Cyclone refuses; the reader can then only be deleted.
  bool open(SubscriberImpl& subscriber, TopicImpl& topic, const DDS::DataReaderQos& qos);
  /// From now on the listener is called for the statuses in `mask`. False if Cyclone refuses.
  bool listen(DDS::DataReaderListener_ptr listener, DDS::StatusMask mask);
  void close();
  bool owned_by(const SubscriberImpl& subscriber) const { return subscriber_.in() == &subscriber; }

protected:
  /// `sample_size`: bytes of one sample in memory.
  explicit DataReaderImpl(std::size_t sample_size);
  ~DataReaderImpl() override;

  /// Takes the oldest entry. The sample is left alone if the entry has no data, both if there is no entry.
  DDS::ReturnCode_t take_sample(void* sample, DDS::SampleInfo& info);

private:
  bool call_next(DDS::DataReaderListener& listener, DDS::StatusMask mask);

  const std::unique_ptr<ReaderCache> cache_;
  Reference<SubscriberImpl> subscriber_;
  Reference<TopicImpl> topic_;
};

}  // namespace dcps
