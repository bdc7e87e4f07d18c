#include <chrono>
#include <thread>

#include "benchmarks/child.h"
#include "benchmarks/comparison.h"

namespace {

using benchmarks::Aim;
using benchmarks::Child;

constexpr auto SETTLING_TIME = std::chrono::milliseconds(300);
constexpr double MIB = 1024 * 1024;

double start_time(const char* side) {
  return Child("started_process", {side}).number();
}

/// The bare entities, and the loader's work on the library.
double unavoidable() {
  return start_time("listener") + start_time("loader");
}

double resident(const char* side) {
  Child child("started_process", {side});
  child.number();
  std::this_thread::sleep_for(SETTLING_TIME);
  child.say("resident");
  return child.number();
}

const bool LOAD = benchmarks::compare({"load to Hardware set, against the bare entities and the loader",
                                       [] { return start_time("library"); },
                                       unavoidable,
                                       {Aim::Kind::RATIO_AT_MOST, 1.1},
                                       100});

const bool MEMORY = benchmarks::compare({"resident memory, against the bare engine's",
                                         [] { return resident("library"); },
                                         [] { return resident("listener"); },
                                         {Aim::Kind::EXCESS_AT_MOST, 2 * MIB},
                                         10,
                                         "B"});

}  // namespace
