#include "messaging/signature_texts.h"

#include <gtest/gtest.h>

namespace {

TEST(SignatureTextsTest, ThePublishersNameItsConstructorAndSendData) {
  using Texts = Varnok::DDS_Publisher_texts<bool>;
  EXPECT_STREQ(Texts::CONSTRUCTOR, "Varnok::DDS_Publisher<T>::DDS_Publisher(const char*) [with T = bool]");
  EXPECT_STREQ(Texts::SEND_DATA, "void Varnok::DDS_Publisher<T>::sendData(const T&) [with T = bool]");
}

TEST(SignatureTextsTest, TheSubscribersKeepTheirTwoLettersForTheCallback) {
  using Texts = Varnok::DDS_Subscriber_texts<Varnok::DDS_VoidMessage>;
  EXPECT_STREQ(Texts::INIT,
               "void Varnok::DDS_SubscriberBase<T, U>::InitSubBase(Varnok::DDS_Subscriber<T>*, long int, long unsigned "
               "int, DDS::DurabilityQosPolicyKind) [with T = Varnok::DDS_VoidMessage, F = void(const char*)]");
  EXPECT_STREQ(Texts::DATA_AVAILABLE,
               "void Varnok::DDS_DataReaderListener<T>::on_data_available(DDS::DataReader*) [with T = "
               "Varnok::DDS_VoidMessage]");
}

}  // namespace
