#pragma once

#include <boost/thread/thread_time.hpp>

/// Returns as soon as the system clock (UTC) has reached `deadline`, within a few microseconds; at once when it has
/// passed. Sleeps for most of the wait and looks at the clock for its last part. Any thread.
void WaitUntil(const boost::system_time& deadline);
