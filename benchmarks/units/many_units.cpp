// Times of units and of the command line: starts, requests, many units at once.
//
//   many_units [UNITS…]      how many units to start at once (default: 50 200)
//
// Prints a table. Times are medians in milliseconds.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "control/client/client.h"
#include "simulator/process/child_process.h"

namespace {

namespace fs = std::filesystem;
using namespace control::client;
using Clock = std::chrono::steady_clock;
using nlohmann::json;

constexpr int STARTS = 15;
constexpr int REQUESTS = 50;

fs::path programs() {
  return fs::read_symlink("/proc/self/exe").parent_path();
}

double milliseconds_of(const std::function<void()>& work) {
  const auto begin = Clock::now();
  work();
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

double median_of(int times, const std::function<void()>& work) {
  std::vector<double> all;
  for (int i = 0; i < times; ++i) {
    all.push_back(milliseconds_of(work));
  }
  std::sort(all.begin(), all.end());
  return all[all.size() / 2];
}

void show(const std::string& what, double value, const char* unit) {
  std::printf("%-60s %10.1f %s\n", what.c_str(), value, unit);
  std::fflush(stdout);
}

/// Runs the command line, quietly.
void command(std::vector<std::string> words) {
  words.insert(words.begin(), programs() / "unit");
  simulator::process::ChildOptions options;
  options.log = "/dev/null";
  const pid_t child = simulator::process::start_program(words, options);
  if (simulator::process::shell_status(simulator::process::reap(child, true).value()) != 0) {
    std::fprintf(stderr, "%s %s failed\n", words[0].c_str(), words[1].c_str());
    std::exit(1);
  }
}

Launched start() {
  return start_unit({{"host", "unit-host"}}, {programs() / "unit-control"});
}

void read_versions(const Launched& unit) {
  Client(unit.unit.socket()).send("POST", "/v1/operations/GetVersionList", json::object());
}

/// Proportional set size of all processes that this one has started, and theirs, in MiB.
double memory_of_descendants() {
  long kilobytes = 0;
  std::vector<pid_t> left{getpid()};
  while (!left.empty()) {
    const std::string process = "/proc/" + std::to_string(left.back());
    const pid_t id = left.back();
    left.pop_back();
    for (const auto& thread : fs::directory_iterator(process + "/task")) {
      std::ifstream children(thread.path() / "children");
      for (pid_t child = 0; children >> child;) {
        left.push_back(child);
      }
    }
    std::ifstream smaps(process + "/smaps_rollup");
    for (std::string word; id != getpid() && smaps >> word;) {
      if (word == "Pss:") {
        long value = 0;
        smaps >> value;
        kilobytes += value;
      }
    }
  }
  return static_cast<double>(kilobytes) / 1024;
}

void measure_many(int count) {
  std::vector<Launched> units(static_cast<std::size_t>(count));
  std::vector<std::thread> starters;
  const double time = milliseconds_of([&] {
    for (Launched& unit : units) {
      starters.emplace_back([&unit] {
        unit = start();
        read_versions(unit);
      });
    }
    for (std::thread& starter : starters) {
      starter.join();
    }
  });
  const std::string name = std::to_string(count) + " units at once";
  show(name + ", to the last one's first version list", time, "ms");
  show(name + ", proportional set size", memory_of_descendants(), "MiB");
  for (const Launched& unit : units) {
    close(unit.lifeline);
  }
  for (const Launched& unit : units) {
    while (fs::exists(unit.unit.folder)) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }
}

void measure_one() {
  show("unit run -- true", median_of(STARTS, [] { command({"run", "--", "true"}); }), "ms");
  show("start of a unit to its first version list",
       median_of(STARTS,
                 [] {
                   const Launched unit = start();
                   read_versions(unit);
                   close(unit.lifeline);
                 }),
       "ms");
  const Launched unit = start();
  const std::string name = unit.unit.name;
  show("unit get", median_of(REQUESTS, [&] { command({"get", "--unit", name, "board.handle"}); }), "ms");
  show("unit call", median_of(REQUESTS, [&] { command({"call", "--unit", name, "GetMaxInterfaces"}); }), "ms");
  Client client(unit.unit.socket());
  show("request for a setting on an open connection",
       median_of(REQUESTS, [&] { client.get("/v1/settings/board.handle"); }), "ms");
  close(unit.lifeline);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> counts{50, 200};
  if (argc > 1) {
    counts.clear();
    for (int i = 1; i < argc; ++i) {
      counts.push_back(std::atoi(argv[i]));
    }
  }
  try {
    measure_one();
    for (const int count : counts) {
      measure_many(count);
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "many_units: %s\n", error.what());
    return 1;
  }
  return 0;
}
