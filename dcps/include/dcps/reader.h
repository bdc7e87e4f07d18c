#pragma once

#include <atomic>
#include <cstddef>
#include <memory>

#include <dds/DCPS/LocalObject.h>
#include <dds/DdsDcpsSubscriptionC.h>

namespace dcps {

class Arrivals;
class ListenerCalls;
class SubscriberImpl;
class TopicImpl;

/// A reader on Cyclone DDS, its samples untyped: each lies in memory as the topic's C description says.
///
/// What Cyclone receives is moved at once into a queue of the reader's own, one entry for each sample and each change
/// of the instance's state. The listener is told of every entry once. Its first call, which may wait until its maker is
/// back from create_datareader, is made on the participant's delivery thread, and so are those for what is written in
/// this process: no thread of Cyclone's and none of the program's ever waits with it. Once it has come back from one,
/// Cyclone's receiving threads call it themselves.
class __attribute__((visibility("default"))) DataReaderImpl
    : public virtual OpenDDS::DCPS::LocalObject<DDS::DataReader> {
public:
  DDS::ReturnCode_t enable() override;
  DDS::InstanceHandle_t get_instance_handle() override;
  DDS::ReturnCode_t get_qos(DDS::DataReaderQos& qos) override;
  DDS::TopicDescription_ptr get_topicdescription() override;
  DDS::Subscriber_ptr get_subscriber() override;
  DDS::ReturnCode_t get_subscription_matched_status(DDS::SubscriptionMatchedStatus& status) override;

protected:
  /// `sample_size`: of one sample in memory, in bytes.
  explicit DataReaderImpl(std::size_t sample_size);
  ~DataReaderImpl() override;

  /// Takes the oldest entry. The sample is left as it is when the entry has no data.
  /// RETCODE_NO_DATA: there is none; sample and info are left as they are.
  DDS::ReturnCode_t take_sample(void* sample, DDS::SampleInfo& info);

private:
  friend class SubscriberImpl;
  friend class ReaderEvents;

  /// Joins the topic. False: Cyclone refuses; the reader is then good for nothing but deletion.
  bool open(SubscriberImpl& subscriber, TopicImpl& topic, const DDS::DataReaderQos& qos,
            DDS::DataReaderListener_ptr listener, DDS::StatusMask mask);
  void close();
  void data_arrived(int reader);
  void held_time_over();
  void notify_all() noexcept;

  const DDS::InstanceHandle_t entity_handle_;
  std::atomic<int> reader_{0};  ///< Cyclone's entity; 0: not open
  DDS::DataReaderQos qos_{};
  Reference<SubscriberImpl> subscriber_;
  Reference<TopicImpl> topic_;
  DDS::DataReaderListener_ptr listener_ = nullptr;  ///< good within a call that calls_ makes
  bool tells_of_data_ = false;
  std::atomic<bool> listener_has_returned_{false};  ///< from a first notification
  std::unique_ptr<Arrivals> arrivals_;
  std::unique_ptr<ListenerCalls> calls_;
};

}  // namespace dcps
