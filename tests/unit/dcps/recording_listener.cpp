#include "tests/unit/dcps/recording_listener.h"

namespace dcps_test {

void RecordingListener::on_data_available(DDS::DataReader_ptr reader) {
  const Reader_var typed = Reader::_narrow(reader);
  Sample sample = numbered(-1);
  DDS::SampleInfo info{};
  const DDS::ReturnCode_t result = typed->take_next_sample(sample, info);
  {
    const std::lock_guard lock(mutex_);
    taken_.push_back({result, info.valid_data, info.instance_state, sample.quality, std::this_thread::get_id()});
    more_.notify_all();
  }
  if (after_take_) {
    after_take_();
  }
}

std::vector<RecordingListener::Taken> RecordingListener::wait_for(std::size_t count) {
  std::unique_lock lock(mutex_);
  more_.wait_for(lock, std::chrono::seconds(10), [&] { return taken_.size() >= count; });
  return taken_;
}

std::vector<RecordingListener::Taken> RecordingListener::taken() {
  const std::lock_guard lock(mutex_);
  return taken_;
}

BlockingListener::BlockingListener(int nth)
    : RecordingListener([this] {
        if (--calls_until_block_ == 0) {
          block();
        }
      }),
      calls_until_block_(nth) {}

void BlockingListener::block() {
  entered.open();
  leave.pass();
  left = true;
}

}  // namespace dcps_test
