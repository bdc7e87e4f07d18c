#pragma once

/// The full signatures by which failure messages name the reporting function. The unit's logs are searched for them, so
/// they are written out: compilers spell them differently.
namespace Varnok {

struct DDS_VoidMessage;

template <typename T>
struct DDS_Publisher_texts;

template <>
struct DDS_Publisher_texts<bool> {
  static constexpr char CONSTRUCTOR[] = "Varnok::DDS_Publisher<T>::DDS_Publisher(const char*) [with T = bool]";
  static constexpr char SEND_DATA[] = "void Varnok::DDS_Publisher<T>::sendData(const T&) [with T = bool]";
};

template <typename T>
struct DDS_Subscriber_texts;

template <>
struct DDS_Subscriber_texts<DDS_VoidMessage> {
  static constexpr char INIT[] =
      "void Varnok::DDS_SubscriberBase<T, U>::InitSubBase(Varnok::DDS_Subscriber<T>*, long int, long unsigned int, "
      "DDS::DurabilityQosPolicyKind) [with T = Varnok::DDS_VoidMessage, F = void(const char*)]";
  static constexpr char DATA_AVAILABLE[] =
      "void Varnok::DDS_DataReaderListener<T>::on_data_available(DDS::DataReader*) [with T = Varnok::DDS_VoidMessage]";
};

}  // namespace Varnok
