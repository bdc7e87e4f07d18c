#include "tests/doubles/fake_psdriver.h"

#include <utility>

namespace doubles {

namespace {

FakePsdriver* driver = nullptr;

FakePsdriver& living_driver() {
  if (!driver) {
    throw psdriverError("no driver");
  }
  return *driver;
}

/// The library keeps its driver objects until the process ends; this keeps them reachable until then.
void keep(psdriver* object) {
  static auto& kept = *new std::vector<psdriver*>;
  kept.push_back(object);
}

}  // namespace

FakePsdriver::FakePsdriver() : thread_([this] { serve(); }) {
  driver = this;
}

FakePsdriver::~FakePsdriver() {
  driver = nullptr;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ending_ = true;
    changed_.notify_all();
  }
  thread_.join();
}

FakePsdriver& FakePsdriver::answers(const std::string& request, int value) {
  const std::lock_guard<std::mutex> lock(mutex_);
  answers_[request] = value;
  silent_.erase(request);
  return *this;
}

FakePsdriver& FakePsdriver::stays_silent(const std::string& request) {
  const std::lock_guard<std::mutex> lock(mutex_);
  silent_.insert(request);
  return *this;
}

FakePsdriver& FakePsdriver::fails(const std::string& operation, unsigned int nth) {
  const std::lock_guard<std::mutex> lock(mutex_);
  failing_[operation] = nth;
  return *this;
}

FakePsdriver& FakePsdriver::runs_first(const std::string& operation, std::function<void()> action) {
  const std::lock_guard<std::mutex> lock(mutex_);
  actions_[operation] = std::move(action);
  return *this;
}

FakePsdriver& FakePsdriver::holds_replies() {
  const std::lock_guard<std::mutex> lock(mutex_);
  holding_ = true;
  return *this;
}

FakePsdriver& FakePsdriver::release() {
  const std::lock_guard<std::mutex> lock(mutex_);
  holding_ = false;
  queued_.insert(queued_.end(), held_.begin(), held_.end());
  held_.clear();
  changed_.notify_all();
  return *this;
}

psdriver::Callback FakePsdriver::registered(const std::string& registration) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = registered_.find(registration);
  return found == registered_.end() ? nullptr : found->second;
}

void FakePsdriver::interrupt(int value) {
  deliver("SetSwitchInterruptCallback", value);
}

void FakePsdriver::deliver(const std::string& registration, int value) {
  const psdriver::Callback function = registered(registration);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    queue({function, value});
  }
  settle();
}

void FakePsdriver::settle() {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return queued_.empty() && !delivering_; });
}

std::thread::id FakePsdriver::thread_id() const {
  return thread_.get_id();
}

void FakePsdriver::operation(const std::string& name, const std::string& logged) {
  calls().record(logged);
  std::function<void()> action;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto failing = failing_.find(name);
    if (failing != failing_.end() && failing->second > 0 && --failing->second == 0) {
      throw psdriverError(name);
    }
    const auto found = actions_.find(name);
    if (found != actions_.end()) {
      action = found->second;
    }
  }
  if (action) {
    action();
  }
}

void FakePsdriver::registration(const std::string& name, psdriver::Callback function) {
  operation(name, name);
  const std::lock_guard<std::mutex> lock(mutex_);
  registered_[name] = function;
}

void FakePsdriver::request(const std::string& name, const std::string& answered_through) {
  operation(name, name);
  const std::lock_guard<std::mutex> lock(mutex_);
  if (silent_.count(name) != 0) {
    return;
  }
  const Reply reply{registered_[answered_through], answers_[name]};
  if (holding_) {
    held_.push_back(reply);
  } else {
    queue(reply);
  }
}

void FakePsdriver::queue(const Reply& reply) {
  if (!reply.function) {
    return;
  }
  queued_.push_back(reply);
  changed_.notify_all();
}

void FakePsdriver::serve() {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return ending_ || !queued_.empty(); });
    if (ending_) {
      return;
    }
    const Reply reply = queued_.front();
    queued_.pop_front();
    delivering_ = true;
    lock.unlock();
    reply.function(reply.value);
    lock.lock();
    delivering_ = false;
    changed_.notify_all();
  }
}

}  // namespace doubles

using doubles::living_driver;

psdriverError::psdriverError(const std::string& what) : std::runtime_error(what) {}
psdriverError::~psdriverError() = default;

psdriver::psdriver(std::string device) : link_(nullptr) {
  living_driver().operation("psdriver", "psdriver " + device);
  doubles::keep(this);
}

psdriver::~psdriver() = default;

void psdriver::SetBatteryRelativeStateOfChargeCallback(Callback reply) {
  living_driver().registration("SetBatteryRelativeStateOfChargeCallback", reply);
}
void psdriver::SetCharger_BatteryStatusCallback(Callback reply) {
  living_driver().registration("SetCharger_BatteryStatusCallback", reply);
}
void psdriver::SetSoftwareVersionNumberCallback(Callback reply) {
  living_driver().registration("SetSoftwareVersionNumberCallback", reply);
}
void psdriver::SetPowerSupplyTemperatureValueCallback(Callback reply) {
  living_driver().registration("SetPowerSupplyTemperatureValueCallback", reply);
}
void psdriver::SetBatteryTemperatureCallback(Callback reply) {
  living_driver().registration("SetBatteryTemperatureCallback", reply);
}
void psdriver::SetBatteryAverageTimeToEmptyCallback(Callback reply) {
  living_driver().registration("SetBatteryAverageTimeToEmptyCallback", reply);
}
void psdriver::SetBatteryRunTimeToEmptyCallback(Callback reply) {
  living_driver().registration("SetBatteryRunTimeToEmptyCallback", reply);
}
void psdriver::SetSwitchInterruptCallback(Callback handler) {
  living_driver().registration("SetSwitchInterruptCallback", handler);
}

void psdriver::GetBatteryRelativeStateOfCharge() {
  living_driver().request("GetBatteryRelativeStateOfCharge", "SetBatteryRelativeStateOfChargeCallback");
}
void psdriver::GetCharger_BatteryStatus() {
  living_driver().request("GetCharger_BatteryStatus", "SetCharger_BatteryStatusCallback");
}
void psdriver::GetSoftwareVersionNumber() {
  living_driver().request("GetSoftwareVersionNumber", "SetSoftwareVersionNumberCallback");
}
void psdriver::GetPowerSupplyTemperatureValue() {
  living_driver().request("GetPowerSupplyTemperatureValue", "SetPowerSupplyTemperatureValueCallback");
}
void psdriver::GetBatteryTemperature() {
  living_driver().request("GetBatteryTemperature", "SetBatteryTemperatureCallback");
}
void psdriver::GetBatteryAverageTimeToEmpty() {
  living_driver().request("GetBatteryAverageTimeToEmpty", "SetBatteryAverageTimeToEmptyCallback");
}
void psdriver::GetBatteryRunTimeToEmpty() {
  living_driver().request("GetBatteryRunTimeToEmpty", "SetBatteryRunTimeToEmptyCallback");
}

void psdriver::SetSystemLEDStatus(int& status, bool answer) {
  living_driver().operation("SetSystemLEDStatus",
                            "SetSystemLEDStatus " + std::to_string(status) + " " + std::to_string(answer));
}
void psdriver::SetUserInterface_CommunicationStatus(int& status, bool answer) {
  living_driver().operation(
      "SetUserInterface_CommunicationStatus",
      "SetUserInterface_CommunicationStatus " + std::to_string(status) + " " + std::to_string(answer));
}
