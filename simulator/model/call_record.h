#pragma once

#include <atomic>
#include <string>
#include <string_view>

#include "simulator/model/faults.h"

namespace simulator::model {

/// The record of calls: one JSON line per crossing of a closed interface, from every process of the unit, in
/// calls.jsonl beside the model:
///   {"t_ns":CLOCK_MONOTONIC,"pid":process,"at":"psdriver.GetBatteryTemperature","args":{…}}
/// Any thread may append; lines are never torn.
class CallRecord {
public:
  CallRecord(std::string file, Watch& watch) : file_(std::move(file)), watch_(watch) {}
  ~CallRecord();
  CallRecord(const CallRecord&) = delete;
  CallRecord& operator=(const CallRecord&) = delete;

  /// Empties the record and switches it on for every process of the unit.
  void start();
  void stop() noexcept { watch_.set(Watch::RECORDED, false); }
  bool on() const noexcept { return watch_.has(Watch::RECORDED); }

  /// Appends one line if the record is on. `args`: a JSON value as text ("{}", "[1,2]").
  void append(Point point, const std::string& args) { append(name_of(point), args); }
  void append(std::string_view at, const std::string& args);

private:
  std::string file_;
  Watch& watch_;
  std::atomic<int> descriptor_{-1};
};

/// Appends the text to the file, created if missing, with one write, so that lines of several processes never mix.
/// `descriptor` keeps the file open between calls; -1 before the first. Throws std::system_error.
void append_line(const std::string& file, const std::string& line, std::atomic<int>& descriptor);

}  // namespace simulator::model
