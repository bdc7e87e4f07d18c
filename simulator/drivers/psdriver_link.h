#pragma once

#include <psdriver.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "simulator/model/unit_model.h"

/// The stand-in's link to the unit's controller: the queue of outstanding replies and the thread that delivers replies
/// and switch interrupts. Any thread, including from within a call-back, except destruction.
class psdriver::Link {
public:
  /// Throws psdriverError if the device does not exist or refuses, or too many drivers have it open.
  explicit Link(const std::string& device);
  ~Link();
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  /// Throw psdriverError, without any effect, if a fault at the operation's point fails it.
  void register_reply(simulator::model::Reply kind, Callback reply);
  void register_interrupt(Callback handler);
  void request(simulator::model::Reply kind);
  void set_led_status(int status);
  void set_communication_status(int status);

private:
  using Clock = std::chrono::steady_clock;

  /// One outstanding reply.
  struct Delivery {
    simulator::model::Reply kind;
    simulator::model::Fault fault;  ///< GARBAGE and STUCK decide on the value
  };

  void start();
  /// The driver's thread: enters the controller, delivers, leaves.
  void live();

  void enqueue(const Delivery& delivery, std::chrono::milliseconds lateness);
  void run();
  int value_of(const Delivery& due);
  bool deliver_reply();
  bool deliver_interrupt();
  static void call(Callback callback, int value);
  std::chrono::nanoseconds until_next_reply();

  simulator::model::UnitModel& unit_;
  std::array<std::atomic<Callback>, static_cast<std::size_t>(simulator::model::Reply::COUNT)> replies_{};
  std::atomic<Callback> interrupt_{nullptr};
  std::optional<simulator::model::PowerSupply::Driver> driver_;
  bool tried_to_enter_ = false;  ///< guarded by mutex_
  std::condition_variable entered_;
  std::mutex mutex_;
  std::multimap<Clock::time_point, Delivery> outstanding_;
  Clock::time_point last_due_{};
  std::atomic<bool> stopping_{false};
  std::thread thread_;
};
