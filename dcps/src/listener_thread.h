#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>

#include <dds/dds.h>

namespace dcps {

/// The thread on which a participant's listeners are called, one call after another. It waits for all of its readers on
/// one waitset. The first reader starts it. Any thread may call its operations.
///
/// An exception from a call ends the thread after a line on standard error: no listener is called any more.
class ListenerThread : public std::enable_shared_from_this<ListenerThread> {
public:
  /// Makes the next calls for one reader. True if there may be more to make at once.
  using Step = std::function<bool()>;

  /// Runs `step` while the reader, or its `condition` unless that is 0, is triggered. False if Cyclone refuses.
  bool add(dds_entity_t participant, dds_entity_t reader, dds_entity_t condition, Step step);
  /// No step of the reader starts after this. Waits for a running one, unless called from it, then destroys `step`;
  /// when called from it, `step` is destroyed at its end.
  void remove(dds_entity_t reader);
  /// Ends the thread, after the running step. Called once, before the participant is deleted.
  void stop();

private:
  struct Source {
    dds_entity_t condition;
    Step step;
  };
  class Turn;

  bool start(dds_entity_t participant);
  void run() noexcept;
  void serve();

  std::mutex mutex_;  ///< guards what follows, except where said otherwise
  std::condition_variable turn_over_;
  std::map<dds_entity_t, std::shared_ptr<const Source>> sources_;
  dds_entity_t current_ = 0;  ///< the reader whose step runs
  std::thread thread_;
  dds_entity_t waitset_ = 0;  ///< constant once the thread runs
  dds_entity_t end_ = 0;      ///< guard condition
  std::atomic<bool> stopping_{false};
};

}  // namespace dcps
