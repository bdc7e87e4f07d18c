#pragma once

#include <utility>

#include "tests/doubles/fake_dds.h"

namespace doubles {

/// Set by the tests, read by the fake entities.
class FakeDds::State {
public:
  void refuse(const std::string& step) {
    const std::lock_guard<std::mutex> lock(mutex);
    refused.insert(step);
  }

  /// Logs the step and runs its first action. Returns false if the step is to fail.
  bool begin(const std::string& step, const std::string& details = "") {
    calls().record("dds " + step + details);
    run(first, step);
    return !is_refused(step);
  }
  void end(const std::string& step) { run(last, step); }

  /// The return code of a deletion whose real result is `result`.
  DDS::ReturnCode_t unless_refused(const std::string& step, DDS::ReturnCode_t result) {
    return is_refused(step) ? DDS::RETCODE_ERROR : result;
  }

  bool is_refused(const std::string& step) {
    const std::lock_guard<std::mutex> lock(mutex);
    return refused.count(step) != 0;
  }

  template <typename ListenerPtr>
  void made_with(ListenerPtr listener, DDS::StatusMask mask) {
    const std::lock_guard<std::mutex> lock(mutex);
    masks.insert(mask);
    if (!CORBA::is_nil(listener)) {
      listeners_given = true;
    }
  }

  std::mutex mutex;
  std::set<std::string> refused;
  std::map<std::string, std::function<void()>> first;
  std::map<std::string, std::function<void()>> last;
  DDS::DataWriterQos writer_qos{};
  DDS::DataReaderQos reader_qos{};
  DDS::DataReaderListener_var reader_listener;
  std::set<DDS::StatusMask> masks;
  DDS::DataReader_var handed_out;
  std::atomic<unsigned int> living_writers{0};
  bool listeners_given = false;

private:
  void run(const std::map<std::string, std::function<void()>>& actions, const std::string& step) {
    std::function<void()> action;
    {
      const std::lock_guard<std::mutex> lock(mutex);
      const auto found = actions.find(step);
      if (found != actions.end()) {
        action = found->second;
      }
    }
    if (action) {
      action();
    }
  }
};

/// The real entity behind a fake one; the entity itself if it is real. Does not change the reference count.
DDS::Publisher_ptr behind(DDS::Publisher_ptr publisher);
DDS::Subscriber_ptr behind(DDS::Subscriber_ptr subscriber);

/// Fake entities in front of real ones; they take over the reference.
DDS::Publisher_ptr new_fake_publisher(const std::shared_ptr<FakeDds::State>& state, DDS::Publisher_ptr real);
DDS::Subscriber_ptr new_fake_subscriber(const std::shared_ptr<FakeDds::State>& state, DDS::Subscriber_ptr real);

}  // namespace doubles
