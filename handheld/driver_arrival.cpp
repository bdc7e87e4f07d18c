#include "handheld/driver_arrival.h"

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/thread/thread.hpp>

namespace handheld {

DriverArrival driver_arrival;

void DriverArrival::expect() {
  State given_up = State::GIVEN_UP;
  state_.compare_exchange_strong(given_up, State::EXPECTED);
}

void DriverArrival::announce() {
  state_ = State::ARRIVED;
}

void DriverArrival::give_up() {
  State expected = State::EXPECTED;
  state_.compare_exchange_strong(expected, State::GIVEN_UP);
}

bool DriverArrival::wait() const {
  while (state_ == State::EXPECTED) {
    boost::this_thread::sleep(boost::get_system_time() + boost::posix_time::milliseconds(1));
  }
  return state_ == State::ARRIVED;
}

}  // namespace handheld
