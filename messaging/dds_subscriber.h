#pragma once

#include <memory>
#include <string>

#include <boost/function.hpp>

#include "messaging/dds_reader_listener.h"
#include "messaging/signature_texts.h"
#include "varnok_attributes.h"
#include "varnok_dds.h"
#include "varnok_errors.h"

namespace Varnok {

template <typename T>
class DDS_Subscriber;

/// Owns the DDS entities, the call-back and the start-up state of one subscription.
///
/// Start-up runs on a separate, detached thread; the call-back runs on the engine's delivery threads. The call-back and
/// destruction wait for start-up. Constructed and destroyed by any thread.
template <typename T, typename U>
class DDS_SubscriberBase : public DDS_BaseObj {
public:
  /// Waits without limit for start-up to end, removes reader, subscriber and topic, and waits without limit until the
  /// engine has released the listener: a running call-back returns first. Not to be called from the call-back.
  virtual ~DDS_SubscriberBase();

  /// The start-up work, run once on the start-up thread: makes subscriber, topic and reader. The reader keeps all
  /// samples and delivers at most one per minimum separation (0, 0: all of them). Throws
  /// Connection_errors::Not_Connected after a line on standard error; start-up then never ends.
  void InitSubBase(DDS_Subscriber<T>* owner, long minSeparationSec, unsigned long minSeparationNanosec,
                   DDS::DurabilityQosPolicyKind durability);
  /// Marks start-up as done; runs when the start-up thread ends.
  void FinishedInitSubBase();
  /// Returns once start-up is done, polling once per millisecond; no time limit.
  void waitForInitDone() const;

protected:
  DDS_SubscriberBase(const char* topicName, const boost::function<U>& callback);

private:
  friend class DDS_DataReaderListener<T>;
  using Attribute = DDS_Attribute<T>;
  using Texts = DDS_Subscriber_texts<T>;

  /// The typed interface of the reader.
  struct Reader {
    typename Attribute::Sample sample{};
    typename Attribute::TypeSupport_var type_support = new typename Attribute::TypeSupportImpl;
    typename Attribute::DataReader_var typed_reader;
    typename Attribute::DataReader::_ptr_type (*narrow)(CORBA::Object_ptr) = &Attribute::DataReader::_narrow;
  };

  void create_topic(DDS::DomainParticipant_ptr participant);
  void create_reader(DDS_Subscriber<T>* owner, const DDS::Duration_t& minimum_separation,
                     DDS::DurabilityQosPolicyKind durability);
  void disconnect();
  void wait_for_listener() const;
  static void pause();

  std::unique_ptr<Reader> reader_;
  DDS::Topic_var topic_;
  DDS::DataReader_var data_reader_;
  std::string topic_name_;
  DDS::Subscriber_var subscriber_;
  DDS_DataReaderListener<T> listener_;
  boost::function<U> callback_;
  bool init_done_;
};

/// Calls `callback` with the topic's name once for every valid sample that arrives on the topic.
template <typename T>
class DDS_Subscriber : public DDS_SubscriberBase<T, void(char const*)> {
public:
  /// Returns at once; the subscription is made on a separate thread. If start-up fails, the process is terminated.
  DDS_Subscriber(const char* topicName, const boost::function<void(char const*)>& callback);
  ~DDS_Subscriber() override;
};

}  // namespace Varnok

#include "messaging/dds_subscriber_impl.h"
