#include <gtest/gtest.h>

#include "tests/unit/dcps/entities.h"
#include "tests/unit/dcps/recording_listener.h"

namespace dcps_test {
namespace {

/// Counts its instances.
class Counted : public QuietListener {
public:
  Counted() { ++alive; }
  ~Counted() override { --alive; }
  static int alive;
};
int Counted::alive = 0;

TEST(References, AnObjectGoesWithItsLastReference) {
  DDS::DataReaderListener_ptr listener = new Counted;
  DDS::DataReaderListener_ptr second = DDS::DataReaderListener::_duplicate(listener);
  CORBA::release(listener);
  EXPECT_EQ(Counted::alive, 1);
  CORBA::release(second);
  EXPECT_EQ(Counted::alive, 0);
}

TEST(References, AHolderOwnsOneReference) {
  {
    const DDS::DataReaderListener_var first = new Counted;
    DDS::DataReaderListener_var second = first;
    second = DDS::DataReaderListener::_nil();
    EXPECT_EQ(Counted::alive, 1);
    DDS::DataReaderListener_var third = DDS::DataReaderListener::_duplicate(first);
    DDS::DataReaderListener_var fourth = third._retn();
    EXPECT_TRUE(CORBA::is_nil(third));
    EXPECT_EQ(fourth.in(), first.in());
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(References, APlainObjectReferenceCountsToo) {
  CORBA::Object_ptr object = new Counted;
  EXPECT_FALSE(CORBA::is_nil(object));
  CORBA::Object_ptr second = CORBA::Object::_duplicate(object);
  CORBA::release(object);
  EXPECT_EQ(Counted::alive, 1);
  CORBA::release(second);
  EXPECT_EQ(Counted::alive, 0);
}

TEST(References, NilIsNilOfEveryInterface) {
  EXPECT_TRUE(CORBA::is_nil(DDS::DomainParticipant::_nil()));
  EXPECT_TRUE(CORBA::is_nil(DDS::DataReader::_nil()));
  EXPECT_TRUE(CORBA::is_nil(Writer::_nil()));
  EXPECT_TRUE(CORBA::is_nil(DDS::Topic_var()));
  CORBA::release(DDS::Topic::_nil());
  EXPECT_TRUE(CORBA::is_nil(DDS::Topic::_duplicate(DDS::Topic::_nil())));
}

TEST(References, NarrowFindsTheOtherInterfacesOfAnObject) {
  const DDS::DataReaderListener_var listener = new Counted;
  const DDS::Listener_var as_listener = DDS::Listener::_narrow(listener);
  const DDS::Entity_var as_entity = DDS::Entity::_narrow(listener);
  EXPECT_FALSE(CORBA::is_nil(as_listener));
  EXPECT_TRUE(CORBA::is_nil(as_entity));
  EXPECT_TRUE(CORBA::is_nil(DDS::Entity::_narrow(nullptr)));
}

TEST(References, NarrowGivesAReferenceOfItsOwn) {
  DDS::DataReaderListener_var listener = new Counted;
  {
    const DDS::DataReaderListener_var narrowed = DDS::DataReaderListener::_narrow(listener);
    listener = DDS::DataReaderListener::_nil();
    EXPECT_EQ(Counted::alive, 1);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(References, AWriterOfOneTypeIsNotNarrowedToAnother) {
  Entities entities;
  const Writer_var writer = entities.writer(own_topic("narrow"));
  using Other = Varnok::QTNN_DDS::ATTR_VOIDDataWriter;
  EXPECT_FALSE(CORBA::is_nil(writer));
  EXPECT_TRUE(CORBA::is_nil(Other::_narrow(writer)));
}

TEST(References, AListenerIsKeptUntilItsReaderIsDeleted) {
  Entities entities;
  {
    const DDS::DataReaderListener_var listener = new Counted;
    const Reader_var reader = entities.reader(own_topic("kept"), listener);
  }
  EXPECT_EQ(Counted::alive, 1);
  entities.subscriber->delete_contained_entities();
  EXPECT_EQ(Counted::alive, 0);
}

TEST(References, AListenerThatIsNoHeapObjectOutlivesItsReader) {
  Counted listener;
  {
    Entities entities;
    const Reader_var reader = entities.reader(own_topic("value"), &listener);
  }
  EXPECT_EQ(Counted::alive, 1);
}

TEST(References, AListenerIsGivenBackWhenItsReaderIsDeletedWhoeverStillRefersToTheReader) {
  Entities entities;
  Reader_var reader;
  {
    const DDS::DataReaderListener_var listener = new Counted;
    reader = entities.reader(own_topic("given_back"), listener);
  }
  EXPECT_EQ(entities.subscriber->delete_datareader(reader), DDS::RETCODE_OK);
  EXPECT_EQ(Counted::alive, 0);
}

TEST(References, ADeletedWriterStaysAsLongAsItIsReferredTo) {
  Entities entities;
  const Writer_var writer = entities.writer(own_topic("deleted"));
  EXPECT_EQ(entities.publisher->delete_datawriter(writer), DDS::RETCODE_OK);
  EXPECT_EQ(writer->register_instance(numbered(1)), DDS::HANDLE_NIL);
  EXPECT_EQ(writer->write(numbered(1), DDS::HANDLE_NIL), DDS::RETCODE_ERROR);
}

}  // namespace
}  // namespace dcps_test
