#include <dcps/write_guard.h>

#include <gtest/gtest.h>

#include "tests/unit/dcps/entities.h"

namespace dcps_test {
namespace {

using dcps::WriteOrder;

WriteOrder next_order = WriteOrder::SEND;
std::string asked_for;

WriteOrder order(const char* topic_name) {
  asked_for = topic_name;
  return next_order;
}

class WriteGuardTest : public testing::Test {
protected:
  WriteGuardTest() {
    asked_for.clear();
    dcps::set_write_guard(order);
  }
  ~WriteGuardTest() override { dcps::set_write_guard(nullptr); }

  DDS::ReturnCode_t write(CORBA::Long number, WriteOrder decision) {
    next_order = decision;
    return writer_->write(numbered(number), DDS::HANDLE_NIL);
  }

  /// The numbers of the samples that have arrived.
  std::vector<CORBA::Long> taken() {
    std::vector<CORBA::Long> numbers;
    Sample sample;
    DDS::SampleInfo info;
    while (reader_->take_next_sample(sample, info) == DDS::RETCODE_OK) {
      numbers.push_back(sample.quality);
    }
    return numbers;
  }

  Entities entities_;
  const std::string topic_ = own_topic(testing::UnitTest::GetInstance()->current_test_info()->name());
  const Writer_var writer_ = entities_.writer(topic_);
  const Reader_var reader_ = entities_.reader(topic_);
};

TEST_F(WriteGuardTest, DecidesAboutEachSample) {
  EXPECT_EQ(write(1, WriteOrder::SEND), DDS::RETCODE_OK);
  EXPECT_EQ(write(2, WriteOrder::LOSE), DDS::RETCODE_OK);
  EXPECT_EQ(write(3, WriteOrder::REFUSE), DDS::RETCODE_ERROR);
  EXPECT_EQ(write(4, WriteOrder::SEND_TWICE), DDS::RETCODE_OK);
  EXPECT_EQ(write(5, WriteOrder::SEND), DDS::RETCODE_OK);
  EXPECT_EQ(taken(), (std::vector<CORBA::Long>{1, 4, 4, 5}));
}

TEST_F(WriteGuardTest, IsToldTheTopic) {
  write(1, WriteOrder::SEND);
  EXPECT_EQ(asked_for, topic_);
}

TEST_F(WriteGuardTest, WithoutItEverySampleIsSent) {
  dcps::set_write_guard(nullptr);
  EXPECT_EQ(write(1, WriteOrder::REFUSE), DDS::RETCODE_OK);
  EXPECT_EQ(asked_for, "");
  EXPECT_EQ(taken(), std::vector<CORBA::Long>{1});
}

}  // namespace
}  // namespace dcps_test
