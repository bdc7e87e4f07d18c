#include <gtest/gtest.h>

#include "tests/unit/dcps/entities.h"
#include "tests/unit/dcps/recording_listener.h"

namespace dcps_test {
namespace {

class TimeFilterTest : public testing::Test {
protected:
  DDS::DataReaderQos separated(const DDS::Duration_t& separation, DDS::ReliabilityQosPolicyKind reliability) {
    DDS::DataReaderQos qos = keep_all_reader();
    qos.reliability.kind = reliability;
    qos.time_based_filter.minimum_separation = separation;
    return qos;
  }

  const std::string topic_ = own_topic(testing::UnitTest::GetInstance()->current_test_info()->name());
  RecordingListener listener_;
  Entities entities_;
};

TEST_F(TimeFilterTest, ABestEffortReaderMissesWhatComesTooEarly) {
  const Reader_var reader =
      entities_.reader(topic_, &listener_, separated({3600, 0}, DDS::BEST_EFFORT_RELIABILITY_QOS));
  const Writer_var writer = entities_.writer(topic_);
  for (int i = 1; i <= 3; ++i) {
    writer->write(numbered(i), DDS::HANDLE_NIL);
  }
  writer->dispose(numbered(3), DDS::HANDLE_NIL);
  const auto taken = listener_.wait_for(2);
  ASSERT_EQ(taken.size(), 2U);
  EXPECT_EQ(taken[0].number, 1);
  EXPECT_FALSE(taken[1].valid) << "changes of state always come";
}

TEST_F(TimeFilterTest, AReliableReaderGetsTheLatestOnceTheTimeIsOver) {
  const Reader_var reader = entities_.reader(topic_, &listener_, separated({2, 0}, DDS::RELIABLE_RELIABILITY_QOS));
  const Writer_var writer = entities_.writer(topic_);
  for (int i = 1; i <= 5; ++i) {
    writer->write(numbered(i), DDS::HANDLE_NIL);
  }
  const auto taken = listener_.wait_for(2);
  ASSERT_EQ(taken.size(), 2U);
  EXPECT_EQ(taken[0].number, 1);
  EXPECT_EQ(taken[1].number, 5);
}

TEST_F(TimeFilterTest, APollingReaderIsFilteredToo) {
  const Reader_var reader = entities_.reader(topic_, nullptr, separated({3600, 0}, DDS::BEST_EFFORT_RELIABILITY_QOS));
  const Writer_var writer = entities_.writer(topic_);
  for (int i = 1; i <= 3; ++i) {
    writer->write(numbered(i), DDS::HANDLE_NIL);
  }
  Sample sample{};
  DDS::SampleInfo info{};
  EXPECT_EQ(reader->take_next_sample(sample, info), DDS::RETCODE_OK);
  EXPECT_EQ(sample.quality, 1);
  EXPECT_EQ(reader->take_next_sample(sample, info), DDS::RETCODE_NO_DATA);
}

}  // namespace
}  // namespace dcps_test
