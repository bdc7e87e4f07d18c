#include <dcps/reader.h>
#include <dds/dds.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "tests/unit/dcps/entities.h"
#include "tests/unit/dcps/recording_listener.h"

// The samples that a reader keeps for its next take.
namespace dcps_test {
namespace {

constexpr DDS::InstanceHandle_t NIL = DDS::HANDLE_NIL;

class HistoryTest : public testing::Test {
protected:
  /// The numbers of the samples that the reader now returns.
  static std::vector<CORBA::Long> numbers(Reader* reader) {
    std::vector<CORBA::Long> numbers;
    Sample sample{};
    DDS::SampleInfo info{};
    while (reader->take_next_sample(sample, info) == DDS::RETCODE_OK) {
      numbers.push_back(sample.quality);
    }
    return numbers;
  }
  void write_five(const DDS::DataWriterQos& qos = writer_qos()) {
    const Writer_var writer = entities_.writer(topic_, qos);
    for (int i = 1; i <= 5; ++i) {
      writer->write(numbered(i), NIL);
    }
  }
  /// Whether the reader, looked at each millisecond for ten seconds, comes to keep no sample. Takes none.
  static bool comes_to_keep_none(Reader* reader) {
    const dds_entity_t cyclone = dynamic_cast<dcps::DataReaderImpl&>(*reader).cyclone();
    for (int looks = 0; looks < 10000; ++looks) {
      void* sample = nullptr;
      dds_sample_info_t info{};
      if (dds_read(cyclone, &sample, &info, 1, 1) == 0) {
        return true;
      }
      dds_return_loan(cyclone, &sample, 1);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
  }
  static DDS::DataReaderQos last(CORBA::Long depth) {
    DDS::DataReaderQos qos = reader_qos();
    qos.history.depth = depth;
    return qos;
  }

  const std::string topic_ = own_topic(testing::UnitTest::GetInstance()->current_test_info()->name());
  Entities entities_;
};

TEST_F(HistoryTest, AReaderKeepsTheLastSample) {
  const Reader_var reader = entities_.reader(topic_, nullptr, reader_qos());
  write_five();
  EXPECT_EQ(numbers(reader), std::vector<CORBA::Long>({5}));
}

TEST_F(HistoryTest, AReaderKeepsAsManySamplesAsItsHistoryIsDeep) {
  const Reader_var reader = entities_.reader(topic_, nullptr, last(3));
  write_five();
  EXPECT_EQ(numbers(reader), std::vector<CORBA::Long>({3, 4, 5}));
}

TEST_F(HistoryTest, AReaderKeepsNoMoreSamplesThanItsLimits) {
  DDS::DataReaderQos qos = reader_qos();
  qos.history.kind = DDS::KEEP_ALL_HISTORY_QOS;
  qos.resource_limits = {2, 1, 2};
  const Reader_var reader = entities_.reader(topic_, nullptr, qos);
  write_five();
  EXPECT_EQ(numbers(reader), std::vector<CORBA::Long>({1, 2}));
}

TEST_F(HistoryTest, AReaderDropsSamplesWhoseLifespanIsOver) {
  const Reader_var reader = entities_.reader(topic_);
  DDS::DataWriterQos qos = writer_qos();
  qos.lifespan.duration = {0, 1000000};
  write_five(qos);
  EXPECT_TRUE(comes_to_keep_none(reader));
  EXPECT_EQ(numbers(reader), std::vector<CORBA::Long>());
}

TEST_F(HistoryTest, ABlockedListenerFindsTheLastSampleOnly) {
  BlockingListener listener;
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener, reader_qos());
  const Writer_var writer = entities.writer(topic_, writer_qos());
  writer->write(numbered(1), NIL);
  ASSERT_TRUE(listener.entered.opens_in_time());
  for (int i = 2; i <= 5; ++i) {
    writer->write(numbered(i), NIL);
  }
  listener.leave.open();
  ASSERT_EQ(listener.wait_for(2).size(), 2U);
  EXPECT_EQ(entities.subscriber->delete_datareader(reader), DDS::RETCODE_OK);
  const auto taken = listener.taken();
  ASSERT_EQ(taken.size(), 2U);
  EXPECT_EQ(taken[0].number, 1);
  EXPECT_EQ(taken[1].number, 5);
}

TEST_F(HistoryTest, ADeletedReaderServesNoSampleThatItStillHeld) {
  const Reader_var reader = entities_.reader(topic_);
  write_five();
  ASSERT_EQ(entities_.subscriber->delete_datareader(reader), DDS::RETCODE_OK);
  Sample sample = numbered(-1);
  DDS::SampleInfo info{};
  EXPECT_EQ(reader->take_next_sample(sample, info), DDS::RETCODE_ALREADY_DELETED);
  EXPECT_EQ(sample.quality, -1);
}

}  // namespace
}  // namespace dcps_test
