#pragma once

#include <atomic>

namespace handheld {

/// Lets threads wait until the power-supply driver has been made. Any thread, no lock.
class DriverArrival {
public:
  /// Construction begins: wait() blocks until the driver has been made.
  void expect();
  /// The driver has been made; it exists until the process ends.
  void announce();
  /// Construction has failed: unless there is an earlier driver, wait() returns at once, also in threads that already
  /// wait.
  void give_up();

  /// Waits without limit for the driver, polling once per millisecond. False if its construction has failed.
  bool wait() const;

private:
  enum class State { EXPECTED, ARRIVED, GIVEN_UP };

  std::atomic<State> state_{State::EXPECTED};
};

/// The arrival of `PSdriver`.
extern DriverArrival driver_arrival;

}  // namespace handheld
