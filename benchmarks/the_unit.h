#pragma once

#include "board/hardware.h"
#include "simulator/model/unit_model.h"

namespace benchmarks {

/// The process's hardware object, made by the first call and kept.
HARDWARE& the_hardware();

/// The simulated unit that the process runs on.
inline simulator::model::UnitModel& the_unit() {
  return simulator::model::UnitModel::of_this_unit();
}

/// Opens the file, reads it to its end and closes it.
void read_file(const char* path);
/// Opens the file with truncation, writes the text and closes it.
void write_file(const char* path, const char* text);

}  // namespace benchmarks
