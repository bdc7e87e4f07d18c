// Starts the library, or a part of its work, in a fresh process. All libraries that the library links to are already
// loaded.
//
//   started_process library           loads the library
//   started_process loader            loads it while Hardware is set, so that it makes nothing
//   started_process listener [topic]  makes the library's participant, writer and reader in the bare engine; a listener
//                                     sets the LED
//   started_process waitset [topic]   likewise; a thread that waits on a waitset sets the LED
//
// Writes one line with the nanoseconds taken; then, for each line of input, one line with the process's resident bytes.

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

using benchmarks::BareEngine;
using simulator::model::UnitModel;

constexpr int UI_LOADED = 12;

double load_library() {
  void* library = nullptr;
  const double time = benchmarks::time_of([&] { library = dlopen("libradalt_hardware.so", RTLD_NOW); });
  if (library == nullptr || Hardware == nullptr) {
    std::cerr << (library == nullptr ? dlerror() : "the library made no object") << std::endl;
    std::exit(1);
  }
  return time;
}

/// Placeholder for the hardware object; nothing calls it.
double load_library_without_its_object() {
  static char object = 0;
  Hardware = reinterpret_cast<BASE_HARDWARE*>(&object);
  return load_library();
}

/// The library's writer and reader; the reader's listener sets the LED without a driver.
double start_bare(const std::string& topic, BareEngine::Caller caller) {
  const auto set_led = [] { UnitModel::of_this_unit().power_supply().set_led_status(UI_LOADED); };
  return benchmarks::time_of([&] {
    auto& engine = *new BareEngine;
    engine.make_reader(Varnok_QTNN_DDS_ATTR_VOID_desc, topic, set_led, caller);
    engine.make_writer(Varnok_QTNN_DDS_ATTR_BOOLEAN_desc, "Halcyra/local/ExternalVoltage", true);
  });
}

double start(const std::string& side, const std::string& topic) {
  if (side == "library") {
    return load_library();
  }
  if (side == "loader") {
    return load_library_without_its_object();
  }
  if (side == "listener") {
    return start_bare(topic, BareEngine::Caller::ENGINE);
  }
  if (side == "waitset") {
    return start_bare(topic, BareEngine::Caller::WAITSET);
  }
  std::cerr << "usage: started_process library|loader|listener|waitset [topic]" << std::endl;
  std::exit(2);
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
  // The library writes to standard output as well.
  const int numbers = dup(STDOUT_FILENO);
  if (std::freopen("/dev/null", "w", stdout) == nullptr) {
    return 1;
  }
  const double time = start(argc > 1 ? argv[1] : "", argc > 2 ? argv[2] : "Halcyra/local/UIDoneLoading");
  dprintf(numbers, "%.0f\n", time);
  for (std::string line; std::getline(std::cin, line);) {
    dprintf(numbers, "%.0f\n", resident_bytes());
  }
  _exit(0);
}
