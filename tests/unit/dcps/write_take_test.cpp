#include <gtest/gtest.h>

#include "tests/unit/dcps/entities.h"

namespace dcps_test {
namespace {

constexpr DDS::InstanceHandle_t NIL = DDS::HANDLE_NIL;

/// The result of one take.
struct Taken {
  DDS::ReturnCode_t result;
  Sample sample;
  DDS::SampleInfo info;
};

Taken take(Reader* reader) {
  Taken taken{DDS::RETCODE_OK, numbered(-1), {}};
  taken.result = reader->take_next_sample(taken.sample, taken.info);
  return taken;
}

void expect_number(Reader* reader, CORBA::Long number) {
  const Taken taken = take(reader);
  EXPECT_EQ(taken.result, DDS::RETCODE_OK);
  EXPECT_TRUE(taken.info.valid_data);
  EXPECT_EQ(taken.sample.quality, number);
}

void expect_state(Reader* reader, DDS::InstanceStateKind state) {
  const Taken taken = take(reader);
  EXPECT_EQ(taken.result, DDS::RETCODE_OK);
  EXPECT_FALSE(taken.info.valid_data);
  EXPECT_EQ(taken.info.instance_state, state);
  EXPECT_EQ(taken.sample.quality, -1) << "the sample is left alone";
}

void expect_nothing(Reader* reader) {
  EXPECT_EQ(take(reader).result, DDS::RETCODE_NO_DATA);
}

class WriteTakeTest : public testing::Test {
protected:
  Entities entities_;
  const std::string topic_ = own_topic(testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(WriteTakeTest, ASampleArrivesAsItWasWritten) {
  const Writer_var writer = entities_.writer(topic_);
  const Reader_var reader = entities_.reader(topic_);
  const Sample sample{-2147483647 - 1, 2147483647, -5000000000LL, true};
  ASSERT_EQ(writer->write(sample, NIL), DDS::RETCODE_OK);
  const Taken taken = take(reader);
  ASSERT_EQ(taken.result, DDS::RETCODE_OK);
  EXPECT_EQ(taken.sample.quality, -2147483647 - 1);
  EXPECT_EQ(taken.sample.source, 2147483647);
  EXPECT_EQ(taken.sample.timestamp, -5000000000LL);
  EXPECT_TRUE(taken.sample.value);
  EXPECT_TRUE(taken.info.valid_data);
  EXPECT_EQ(taken.info.instance_state, DDS::ALIVE_INSTANCE_STATE);
  EXPECT_EQ(taken.info.sample_state, DDS::NOT_READ_SAMPLE_STATE);
  EXPECT_EQ(taken.info.view_state, DDS::NEW_VIEW_STATE);
  EXPECT_NE(taken.info.instance_handle, NIL);
  EXPECT_GT(taken.info.source_timestamp.sec, 0);
}

TEST_F(WriteTakeTest, WithoutDataNothingIsTouched) {
  const Reader_var reader = entities_.reader(topic_);
  const Taken taken = take(reader);
  EXPECT_EQ(taken.result, DDS::RETCODE_NO_DATA);
  EXPECT_EQ(taken.sample.quality, -1);
}

TEST_F(WriteTakeTest, AReaderThatKeepsAllGetsAllInOrder) {
  const Writer_var writer = entities_.writer(topic_);
  const Reader_var reader = entities_.reader(topic_);
  for (int i = 0; i < 100; ++i) {
    ASSERT_EQ(writer->write(numbered(i), NIL), DDS::RETCODE_OK);
  }
  for (int i = 0; i < 100; ++i) {
    expect_number(reader, i);
  }
  expect_nothing(reader);
}

TEST_F(WriteTakeTest, AVolatileReaderGetsNothingThatWasWrittenBefore) {
  const Writer_var writer = entities_.writer(topic_, durable_writer());
  writer->write(numbered(1), NIL);
  const Reader_var reader = entities_.reader(topic_);
  expect_nothing(reader);
}

TEST_F(WriteTakeTest, ADurableReaderGetsTheLastValueWrittenBefore) {
  const Writer_var writer = entities_.writer(topic_, durable_writer());
  writer->write(numbered(1), NIL);
  writer->write(numbered(2), NIL);
  const Reader_var reader = entities_.reader(topic_, nullptr, durable_reader());
  expect_number(reader, 2);
  expect_nothing(reader);
}

TEST_F(WriteTakeTest, ADurableWriterThatKeepsAllGivesAllToLateReaders) {
  DDS::DataWriterQos qos = durable_writer();
  qos.history.kind = DDS::KEEP_ALL_HISTORY_QOS;
  const Writer_var writer = entities_.writer(topic_, qos);
  writer->write(numbered(1), NIL);
  writer->write(numbered(2), NIL);
  const Reader_var reader = entities_.reader(topic_, nullptr, durable_reader());
  expect_number(reader, 1);
  expect_number(reader, 2);
  expect_nothing(reader);
}

TEST_F(WriteTakeTest, TheInstanceHasOneHandle) {
  const Writer_var writer = entities_.writer(topic_);
  const DDS::InstanceHandle_t handle = writer->register_instance(numbered(1));
  EXPECT_NE(handle, NIL);
  EXPECT_EQ(writer->register_instance(numbered(2)), handle);
  EXPECT_EQ(writer->write(numbered(1), handle), DDS::RETCODE_OK);
  EXPECT_EQ(writer->dispose(numbered(1), handle), DDS::RETCODE_OK);
  EXPECT_EQ(writer->unregister_instance(numbered(1), handle), DDS::RETCODE_OK);
}

TEST_F(WriteTakeTest, WhatIsNotRegisteredIsNeitherDisposedNorUnregistered) {
  const Writer_var writer = entities_.writer(topic_);
  EXPECT_EQ(writer->dispose(numbered(1), NIL), DDS::RETCODE_ERROR);
  EXPECT_EQ(writer->unregister_instance(numbered(1), NIL), DDS::RETCODE_ERROR);
  writer->register_instance(numbered(1));
  EXPECT_EQ(writer->unregister_instance(numbered(1), NIL), DDS::RETCODE_OK);
  EXPECT_EQ(writer->unregister_instance(numbered(1), NIL), DDS::RETCODE_ERROR);
}

TEST_F(WriteTakeTest, AnInstanceIsDisposedAndComesBack) {
  const Writer_var writer = entities_.writer(topic_);
  const Reader_var reader = entities_.reader(topic_);
  writer->write(numbered(1), NIL);
  expect_number(reader, 1);
  EXPECT_EQ(writer->dispose(numbered(1), NIL), DDS::RETCODE_OK);
  expect_state(reader, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
  writer->write(numbered(2), NIL);
  const Taken again = take(reader);
  EXPECT_EQ(again.sample.quality, 2);
  EXPECT_EQ(again.info.instance_state, DDS::ALIVE_INSTANCE_STATE);
  EXPECT_EQ(again.info.view_state, DDS::NEW_VIEW_STATE);
  EXPECT_EQ(again.info.disposed_generation_count, 1);
}

TEST_F(WriteTakeTest, AChangeOfStateIsASampleEvenWhenDataWaitsBeforeIt) {
  const Writer_var writer = entities_.writer(topic_);
  const Reader_var reader = entities_.reader(topic_);
  writer->write(numbered(1), NIL);
  writer->dispose(numbered(1), NIL);
  expect_number(reader, 1);
  expect_state(reader, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
  expect_nothing(reader);
}

TEST_F(WriteTakeTest, TheDisposalOfAnInstanceThatNeverHadASampleIsNotReported) {
  const Writer_var writer = entities_.writer(topic_);
  const Reader_var reader = entities_.reader(topic_);
  writer->register_instance(numbered(1));
  ASSERT_EQ(writer->dispose(numbered(1), NIL), DDS::RETCODE_OK);
  expect_nothing(reader);
  writer->write(numbered(2), NIL);
  expect_number(reader, 2);
  expect_nothing(reader);
}

TEST_F(WriteTakeTest, ChangesBetweenWaitingSamplesAreTakenBetweenThem) {
  DDS::DataWriterQos qos = keep_all_writer();
  qos.writer_data_lifecycle.autodispose_unregistered_instances = false;
  const Writer_var writer = entities_.writer(topic_, qos);
  const Reader_var reader = entities_.reader(topic_);
  writer->write(numbered(1), NIL);
  writer->write(numbered(2), NIL);
  writer->dispose(numbered(2), NIL);
  writer->write(numbered(3), NIL);
  writer->unregister_instance(numbered(3), NIL);
  writer->write(numbered(4), NIL);
  writer->unregister_instance(numbered(4), NIL);
  expect_number(reader, 1);
  expect_number(reader, 2);
  expect_state(reader, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
  expect_number(reader, 3);
  expect_state(reader, DDS::NOT_ALIVE_NO_WRITERS_INSTANCE_STATE);
  expect_number(reader, 4);
  expect_state(reader, DDS::NOT_ALIVE_NO_WRITERS_INSTANCE_STATE);
  expect_nothing(reader);
}

TEST_F(WriteTakeTest, AnInstanceThatTheReaderHasForgottenComesBack) {
  const Reader_var reader = entities_.reader(topic_);
  for (int i = 1; i <= 3; ++i) {
    const Writer_var writer = entities_.writer(topic_);
    writer->write(numbered(i), NIL);
    ASSERT_EQ(entities_.publisher->delete_datawriter(writer), DDS::RETCODE_OK);
    if (i > 1) {
      expect_state(reader, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
    }
    expect_number(reader, i);
  }
  expect_state(reader, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
  expect_nothing(reader);
}

TEST_F(WriteTakeTest, UnregisteringDisposesByDefault) {
  const Writer_var writer = entities_.writer(topic_);
  const Reader_var reader = entities_.reader(topic_);
  writer->write(numbered(1), NIL);
  expect_number(reader, 1);
  EXPECT_EQ(writer->unregister_instance(numbered(1), NIL), DDS::RETCODE_OK);
  expect_state(reader, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
  expect_nothing(reader);
}

TEST_F(WriteTakeTest, UnregisteringWithoutDisposalLeavesNoWriters) {
  DDS::DataWriterQos qos = keep_all_writer();
  qos.writer_data_lifecycle.autodispose_unregistered_instances = false;
  const Writer_var writer = entities_.writer(topic_, qos);
  const Reader_var reader = entities_.reader(topic_);
  writer->write(numbered(1), NIL);
  expect_number(reader, 1);
  EXPECT_EQ(writer->unregister_instance(numbered(1), NIL), DDS::RETCODE_OK);
  expect_state(reader, DDS::NOT_ALIVE_NO_WRITERS_INSTANCE_STATE);
}

TEST_F(WriteTakeTest, NoWritersMeansNoneOfThem) {
  DDS::DataWriterQos qos = keep_all_writer();
  qos.writer_data_lifecycle.autodispose_unregistered_instances = false;
  const Writer_var first = entities_.writer(topic_, qos);
  const Writer_var second = entities_.writer(topic_, qos);
  const Reader_var reader = entities_.reader(topic_);
  first->write(numbered(1), NIL);
  second->write(numbered(2), NIL);
  expect_number(reader, 1);
  expect_number(reader, 2);
  entities_.publisher->delete_datawriter(first);
  expect_nothing(reader);
  entities_.publisher->delete_datawriter(second);
  expect_state(reader, DDS::NOT_ALIVE_NO_WRITERS_INSTANCE_STATE);
}

TEST_F(WriteTakeTest, DeletingAWriterDisposesByDefault) {
  const Writer_var writer = entities_.writer(topic_);
  const Reader_var reader = entities_.reader(topic_);
  writer->write(numbered(1), NIL);
  expect_number(reader, 1);
  EXPECT_EQ(entities_.publisher->delete_datawriter(writer), DDS::RETCODE_OK);
  expect_state(reader, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
  expect_nothing(reader);
}

}  // namespace
}  // namespace dcps_test
