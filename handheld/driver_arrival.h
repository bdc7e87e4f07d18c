#pragma once

#include <atomic>

namespace handheld {

/// Tells threads that may need the power-supply driver before it is made when it is there. Any thread, no lock.
class DriverArrival {
public:
  /// Construction begins: until the driver is there, wait() waits.
  void expect();
  /// The driver is there, and stays until the process ends.
  void announce();
  /// Construction has failed: unless there is an earlier driver, wait() returns at once, also in threads that are in
  /// it.
  void give_up();

  /// Waits without limit for the driver, looking once per millisecond. False if its construction has failed.
  bool wait() const;

private:
  enum class State { EXPECTED, ARRIVED, GIVEN_UP };

  std::atomic<State> state_{State::EXPECTED};
};

/// The arrival of `PSdriver`.
extern DriverArrival driver_arrival;

}  // namespace handheld
