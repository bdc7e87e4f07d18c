#pragma once

#include <boost/date_time/posix_time/posix_time_types.hpp>

namespace handheld {

/// Returns as soon as `duration` has passed on the system clock (UTC), within a few microseconds. Sleeps until 40
/// microseconds before the end and then polls the clock, so most of a 50-microsecond wait is polling. Any thread; an
/// interruption point of boost's threads.
void wait_for(const boost::posix_time::time_duration& duration);

}  // namespace handheld
