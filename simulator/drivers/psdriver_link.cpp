#include "simulator/drivers/psdriver_link.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "simulator/model/json_text.h"
#include "simulator/model/reply_points.h"

namespace {

using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::points_of;
using simulator::model::PowerSupply;
using simulator::model::Reply;
using simulator::model::UnitModel;

constexpr std::chrono::hours IDLE{1};
/// Time limit for running call-backs when the process exits.
constexpr std::chrono::milliseconds LAST_CALL{100};

/// Whether the process is exiting, and the number of running call-backs of all links. Global, because links need not be
/// deleted.
std::atomic<bool> exiting{false};
std::atomic<int> calls_running{0};
thread_local int calls_on_this_thread = 0;

/// Runs at exit, before file-scope objects created earlier are destroyed: no further call-back starts, and running ones
/// get a moment to finish.
void fall_silent() noexcept {
  using Clock = std::chrono::steady_clock;
  exiting.store(true);
  const auto deadline = Clock::now() + LAST_CALL;
  while (calls_running.load() > calls_on_this_thread && Clock::now() < deadline) {
    std::this_thread::yield();
  }
}

[[noreturn]] void refuse(Point point, int error) {
  throw psdriverError(std::string(name_of(point)) + ": " + std::strerror(error));
}

/// Crosses at the point and returns its fault. Throws psdriverError if the fault fails the operation or the record
/// cannot be written.
Fault cross(UnitModel& unit, Point point, const std::string& args) {
  Fault fault;
  try {
    fault = unit.cross(point, args);
  } catch (const std::exception& error) {
    throw psdriverError(error.what());
  }
  if (fault.kind == FaultKind::FAIL) {
    refuse(point, fault.value == 0 ? EIO : fault.value);
  }
  return fault;
}

/// Records a call-back. If recording fails, the call-back is made anyway.
void record(UnitModel& unit, Point point, const std::string& args) noexcept {
  try {
    unit.cross(point, args);
  } catch (const std::exception&) {
  }
}

UnitModel& opened_unit(const std::string& device) {
  try {
    UnitModel& unit = UnitModel::of_this_unit();
    cross(unit, Point::PSDRIVER_OPEN, "{\"device\":" + simulator::model::json_text(device) + "}");
    if (::access(device.c_str(), F_OK) != 0) {
      throw psdriverError(device + ": " + std::strerror(errno));
    }
    return unit;
  } catch (const psdriverError&) {
    throw;
  } catch (const std::exception& error) {
    throw psdriverError(error.what());
  }
}

std::string value_args(int value) {
  return "{\"value\":" + std::to_string(value) + "}";
}

}  // namespace

psdriver::Link::Link(const std::string& device) : unit_(opened_unit(device)) {
  static const int registered = std::atexit(fall_silent);
  static_cast<void>(registered);
  start();
}

psdriver::Link::~Link() {
  stopping_.store(true);
  unit_.power_supply().wake_up().raise();
  thread_.join();
}

void psdriver::Link::start() {
  thread_ = std::thread([this] { live(); });
  std::unique_lock guard(mutex_);
  entered_.wait(guard, [this] { return tried_to_enter_; });
  if (!driver_) {
    guard.unlock();
    thread_.join();
    refuse(Point::PSDRIVER_OPEN, EMFILE);
  }
}

void psdriver::Link::live() {
  {
    const std::lock_guard guard(mutex_);
    driver_ = unit_.power_supply().enter();
    tried_to_enter_ = true;
  }
  entered_.notify_one();
  if (driver_) {
    run();
    unit_.power_supply().leave(*driver_);
  }
}

void psdriver::Link::register_reply(Reply kind, Callback reply) {
  cross(unit_, points_of(kind).registration, "{}");
  replies_[static_cast<std::size_t>(kind)].store(reply);
}

void psdriver::Link::register_interrupt(Callback handler) {
  cross(unit_, Point::SET_SWITCH_INTERRUPT_CALLBACK, "{}");
  interrupt_.store(handler);
}

void psdriver::Link::request(Reply kind) {
  const Fault fault = cross(unit_, points_of(kind).request, "{}");
  if (fault.kind == FaultKind::NO_REPLY) {
    return;
  }
  const Delivery delivery{kind, fault};
  enqueue(delivery, std::chrono::milliseconds(fault.kind == FaultKind::LATE ? fault.value : 0));
  if (fault.kind == FaultKind::TWICE) {
    enqueue(delivery, std::chrono::milliseconds(0));
  }
}

void psdriver::Link::set_led_status(int status) {
  cross(unit_, Point::SET_SYSTEM_LED_STATUS, value_args(status));
  unit_.power_supply().set_led_status(status);
}

void psdriver::Link::set_communication_status(int status) {
  cross(unit_, Point::SET_USER_INTERFACE_COMMUNICATION_STATUS, value_args(status));
  unit_.power_supply().set_communication_status(status);
}

void psdriver::Link::enqueue(const Delivery& delivery, std::chrono::milliseconds lateness) {
  {
    const std::lock_guard guard(mutex_);
    last_due_ = std::max(last_due_, Clock::now() + unit_.power_supply().reply_delay());
    outstanding_.emplace(last_due_ + lateness, delivery);
  }
  unit_.power_supply().wake_up().raise();
}

void psdriver::Link::run() {
  ::prctl(PR_SET_TIMERSLACK, 1UL);
  while (!stopping_.load()) {
    const std::uint32_t seen = unit_.power_supply().wake_up().count();
    if (!deliver_reply() && !deliver_interrupt() && !stopping_.load()) {
      unit_.power_supply().wake_up().wait(seen, until_next_reply());
    }
  }
}

std::chrono::nanoseconds psdriver::Link::until_next_reply() {
  const std::lock_guard guard(mutex_);
  return outstanding_.empty() ? IDLE : outstanding_.begin()->first - Clock::now();
}

bool psdriver::Link::deliver_reply() {
  std::unique_lock guard(mutex_);
  if (outstanding_.empty() || outstanding_.begin()->first > Clock::now()) {
    return false;
  }
  const Delivery due = outstanding_.begin()->second;
  outstanding_.erase(outstanding_.begin());
  guard.unlock();
  const int value = value_of(due);
  if (unit_.watched()) {
    record(unit_, Point::PSDRIVER_REPLY,
           "{\"to\":" + simulator::model::json_text(name_of(points_of(due.kind).request)) +
               ",\"value\":" + std::to_string(value) + "}");
  }
  call(replies_[static_cast<std::size_t>(due.kind)].load(), value);
  return true;
}

int psdriver::Link::value_of(const Delivery& due) {
  const Point request = points_of(due.kind).request;
  const int right = unit_.power_supply().reply(due.kind);
  switch (due.fault.kind) {
    case FaultKind::GARBAGE:
      return simulator::model::wrong_value(due.fault, right);
    case FaultKind::STUCK:
      return unit_.crossings().held(request);
    default:
      unit_.crossings().delivered(request, right);
      return right;
  }
}

bool psdriver::Link::deliver_interrupt() {
  PowerSupply& power_supply = unit_.power_supply();
  const std::optional<int> raised = power_supply.interrupt(driver_->next);
  if (!raised) {
    return false;
  }
  const int value = *raised;
  if (unit_.watched()) {
    record(unit_, Point::PSDRIVER_INTERRUPT, value_args(value));
  }
  call(interrupt_.load(), value);
  power_supply.mark_interrupt_handled(*driver_);
  return true;
}

void psdriver::Link::call(Callback callback, int value) {
  ++calls_running;
  ++calls_on_this_thread;
  if (callback != nullptr && !exiting.load()) {
    callback(value);
  }
  --calls_on_this_thread;
  --calls_running;
}
