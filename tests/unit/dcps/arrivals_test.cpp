#include "dcps/src/arrivals.h"

#include <gtest/gtest.h>

#include "tests/unit/dcps/entities.h"

namespace dcps_test {
namespace {

/// A writer and a reader of Cyclone's own.
class ArrivalsTest : public testing::Test {
protected:
  ArrivalsTest() : participant_(dds_create_participant(static_cast<dds_domainid_t>(own_domain()), nullptr, nullptr)) {
    const TypeSupport_var type = new TypeSupportImpl;
    const auto& description = dynamic_cast<OpenDDS::DCPS::TypeSupportImpl&>(*type.in()).descriptor();
    const dds_entity_t topic =
        dds_create_topic(participant_, &description, own_topic("arrivals").c_str(), nullptr, nullptr);
    dds_qos_t* const qos = dds_create_qos();
    dds_qset_history(qos, DDS_HISTORY_KEEP_ALL, 0);
    writer_ = dds_create_writer(participant_, topic, nullptr, nullptr);
    reader_ = dds_create_reader(participant_, topic, qos, nullptr);
    dds_delete_qos(qos);
  }
  ~ArrivalsTest() override { dds_delete(participant_); }

  void write(CORBA::Long number) {
    const Sample sample = numbered(number);
    dds_write(writer_, &sample);
  }
  void dispose() {
    const Sample sample{};
    dds_dispose(writer_, &sample);
  }
  /// The number of the oldest sample; 0: it has no data; -1: there is none.
  CORBA::Long take() {
    Sample sample = numbered(0);
    if (!arrivals_.take(reader_, &sample, info_)) {
      return -1;
    }
    return sample.quality;
  }

  const dds_entity_t participant_;
  dds_entity_t writer_ = 0;
  dds_entity_t reader_ = 0;
  DDS::SampleInfo info_{};
  dcps::Arrivals arrivals_{sizeof(Sample), 42};
};

TEST_F(ArrivalsTest, AFoldedChangeOfStateIsAnEntryOfItsOwn) {
  write(1);
  write(2);
  dispose();
  EXPECT_EQ(take(), 1);
  EXPECT_EQ(take(), 2);
  EXPECT_TRUE(info_.valid_data);
  EXPECT_EQ(take(), 0);
  EXPECT_FALSE(info_.valid_data);
  EXPECT_EQ(info_.instance_state, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
  EXPECT_EQ(info_.instance_handle, 42);
  EXPECT_EQ(take(), -1);
}

TEST_F(ArrivalsTest, AChangeOfStateThatIsASampleAlreadyComesOnce) {
  write(1);
  EXPECT_EQ(take(), 1);
  dispose();
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(take(), -1);
}

TEST_F(ArrivalsTest, MoreThanOneBatchIsCollectedAtOnce) {
  for (int i = 1; i <= 8; ++i) {
    write(i);
  }
  dispose();
  arrivals_.collect(reader_);
  for (int i = 1; i <= 8; ++i) {
    EXPECT_EQ(take(), i);
  }
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(take(), -1);
}

TEST_F(ArrivalsTest, EveryEntryIsDueOnce) {
  write(1);
  write(2);
  arrivals_.collect(reader_);
  EXPECT_TRUE(arrivals_.begin_notifying());
  EXPECT_FALSE(arrivals_.begin_notifying()) << "somebody notifies already";
  EXPECT_TRUE(arrivals_.next_notification());
  EXPECT_TRUE(arrivals_.next_notification());
  EXPECT_FALSE(arrivals_.next_notification());
  EXPECT_FALSE(arrivals_.begin_notifying());
  write(3);
  arrivals_.collect(reader_);
  EXPECT_TRUE(arrivals_.begin_notifying());
}

TEST_F(ArrivalsTest, WhatIsTakenBeforeItsNotificationIsNotDue) {
  write(1);
  write(2);
  arrivals_.collect(reader_);
  ASSERT_TRUE(arrivals_.begin_notifying());
  ASSERT_TRUE(arrivals_.next_notification());
  EXPECT_EQ(take(), 1);
  EXPECT_EQ(take(), 2);
  EXPECT_FALSE(arrivals_.next_notification());
}

}  // namespace
}  // namespace dcps_test
