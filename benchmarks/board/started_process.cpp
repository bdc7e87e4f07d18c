// A fresh process in which the library, or the engine without it, is started: started_process library|bare [topic].
// Everything that the library links to is loaded before, in both cases. Writes the start's nanoseconds on a line; then,
// for each line that it is sent, the process's resident bytes. Ends with its input.

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#include "base/base_hardware.h"
#include "benchmarks/bare_engine.h"
#include "benchmarks/comparison.h"
#include "simulator/model/unit_model.h"

__attribute__((visibility("default"))) BASE_HARDWARE* Hardware = nullptr;

namespace {

using simulator::model::UnitModel;

constexpr int UI_LOADED = 12;

double start_library() {
  void* library = nullptr;
  const double time = benchmarks::time_of([&] { library = dlopen("libradalt_hardware.so", RTLD_NOW); });
  if (library == nullptr || Hardware == nullptr) {
    std::cerr << (library == nullptr ? dlerror() : "the library made no object") << std::endl;
    std::exit(1);
  }
  return time;
}

/// The writer and the reader that the library has, the reader's listener setting the LED without a driver.
double start_bare(const std::string& topic) {
  const auto set_led = [] { UnitModel::of_this_unit().power_supply().set_led_status(UI_LOADED); };
  return benchmarks::time_of([&] {
    auto& engine = *new benchmarks::BareEngine;
    engine.make_reader(Varnok_QTNN_DDS_ATTR_VOID_desc, topic, set_led);
    engine.make_writer(Varnok_QTNN_DDS_ATTR_BOOLEAN_desc, "Halcyra/local/ExternalVoltage", true);
  });
}

double resident_bytes() {
  std::ifstream file("/proc/self/smaps_rollup");
  std::string word;
  double kibibytes = 0;
  while (file >> word && word != "Rss:") {
  }
  file >> kibibytes;
  return kibibytes * 1024;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string side = argc > 1 ? argv[1] : "";
  if (side != "library" && side != "bare") {
    std::cerr << "usage: started_process library|bare [topic]" << std::endl;
    return 2;
  }
  // The library writes to standard output as well.
  const int numbers = dup(STDOUT_FILENO);
  if (std::freopen("/dev/null", "w", stdout) == nullptr) {
    return 1;
  }
  const double time =
      side == "library" ? start_library() : start_bare(argc > 2 ? argv[2] : "Halcyra/local/UIDoneLoading");
  dprintf(numbers, "%.0f\n", time);
  for (std::string line; std::getline(std::cin, line);) {
    dprintf(numbers, "%.0f\n", resident_bytes());
  }
  _exit(0);
}
