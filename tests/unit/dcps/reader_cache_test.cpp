#include "dcps/src/reader_cache.h"

#include <gtest/gtest.h>

#include "tests/unit/dcps/entities.h"

namespace dcps_test {
namespace {

/// A writer and a reader made with Cyclone's own API.
class ReaderCacheTest : public testing::Test {
protected:
  ReaderCacheTest()
      : participant_(dds_create_participant(static_cast<dds_domainid_t>(own_domain()), nullptr, nullptr)) {
    const TypeSupport_var type = new TypeSupportImpl;
    const auto& description = dynamic_cast<OpenDDS::DCPS::TypeSupportImpl&>(*type.in()).descriptor();
    const dds_entity_t topic =
        dds_create_topic(participant_, &description, own_topic("cache").c_str(), nullptr, nullptr);
    dds_qos_t* const qos = dds_create_qos();
    dds_qset_history(qos, DDS_HISTORY_KEEP_ALL, 0);
    writer_ = dds_create_writer(participant_, topic, nullptr, nullptr);
    reader_ = dds_create_reader(participant_, topic, qos, nullptr);
    dds_delete_qos(qos);
  }
  ~ReaderCacheTest() override { dds_delete(participant_); }

  void write(CORBA::Long number) const {
    const Sample sample = numbered(number);
    dds_write(writer_, &sample);
  }
  void dispose() const {
    const Sample sample{};
    dds_dispose(writer_, &sample);
  }
  /// The number of the oldest sample; 0 for a change of state, -1 if there is no entry.
  CORBA::Long take() {
    Sample sample = numbered(0);
    const bool taken = cache_.take(reader_, &sample, info_) == DDS::RETCODE_OK;
    return taken ? sample.quality : -1;
  }
  /// The number of entries that had not been notified.
  int notifications() {
    int count = 0;
    while (cache_.next_notification(reader_)) {
      ++count;
    }
    return count;
  }

  const dds_entity_t participant_;
  dds_entity_t writer_ = 0;
  dds_entity_t reader_ = 0;
  DDS::SampleInfo info_{};
  dcps::ReaderCache cache_{sizeof(Sample), 42};
};

TEST_F(ReaderCacheTest, AFoldedChangeOfStateIsAnEntryOfItsOwn) {
  write(1);
  dispose();
  EXPECT_EQ(notifications(), 1);
  EXPECT_EQ(take(), 1);
  EXPECT_TRUE(info_.valid_data);
  EXPECT_EQ(info_.instance_handle, 42);
  EXPECT_EQ(notifications(), 1) << "told apart at the take";
  EXPECT_EQ(take(), 0);
  EXPECT_FALSE(info_.valid_data);
  EXPECT_EQ(info_.instance_state, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
  EXPECT_EQ(info_.instance_handle, 42);
  EXPECT_EQ(notifications(), 0);
  EXPECT_EQ(take(), -1);
}

TEST_F(ReaderCacheTest, AChangeBetweenTwoSamplesIsAnEntryOfItsOwn) {
  write(1);
  dispose();
  write(2);
  EXPECT_EQ(notifications(), 2);
  EXPECT_EQ(take(), 1);
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(notifications(), 1);
  EXPECT_EQ(take(), 2);
  EXPECT_EQ(notifications(), 0);
  EXPECT_EQ(take(), -1);
}

TEST_F(ReaderCacheTest, NoEntryIsNotifiedTwice) {
  write(1);
  write(2);
  EXPECT_EQ(notifications(), 2);
  dispose();
  EXPECT_EQ(notifications(), 1);
  EXPECT_EQ(take(), 1);
  EXPECT_EQ(notifications(), 0);
  EXPECT_EQ(take(), 2);
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(notifications(), 0);
  EXPECT_EQ(take(), -1);
}

TEST_F(ReaderCacheTest, AnEntryThatHasBeenTakenIsNotNotified) {
  write(1);
  dispose();
  EXPECT_EQ(take(), 1);
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(notifications(), 0);
}

TEST_F(ReaderCacheTest, AWriterThatDisappearsIsNotReported) {
  write(1);
  EXPECT_EQ(notifications(), 1);
  dds_delete(writer_);
  EXPECT_EQ(take(), 1);
  EXPECT_EQ(take(), -1);
  EXPECT_EQ(notifications(), 0);
}

TEST_F(ReaderCacheTest, ADeletedReaderIsReported) {
  write(1);
  dds_delete(reader_);
  Sample sample{};
  EXPECT_EQ(cache_.take(reader_, &sample, info_), DDS::RETCODE_ALREADY_DELETED);
}

}  // namespace
}  // namespace dcps_test
