// Runs the benchmarks of a program and writes their results, with the machine they were measured on, as JSON to
// standard output. The library's standard output goes to /dev/null.

#include <benchmark/benchmark.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

/// The results as JSON; names each finished benchmark on standard error.
class Results : public benchmark::JSONReporter {
public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      std::cerr << run.run_name.function_name << std::endl;
    }
    JSONReporter::ReportRuns(runs);
  }
};

std::string processor() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("model name", 0) == 0) {
      return line.substr(line.find(':') + 2);
    }
  }
  return "unknown";
}

void describe_machine() {
  utsname kernel{};
  uname(&kernel);
  benchmark::AddCustomContext("cpu", processor());
  benchmark::AddCustomContext("cores", std::to_string(std::thread::hardware_concurrency()));
  benchmark::AddCustomContext("kernel", std::string(kernel.sysname) + " " + kernel.release + " " + kernel.machine);
  benchmark::AddCustomContext("compiler", "g++ " __VERSION__);
  benchmark::AddCustomContext("build_type", BENCHMARK_BUILD_TYPE);
  benchmark::AddCustomContext("engine", BENCHMARK_ENGINE);
}

/// Reserves standard output for the results: returns a new descriptor of it and redirects descriptor 1 to /dev/null.
int set_output_aside() {
  const int results = dup(STDOUT_FILENO);
  if (results == -1 || std::freopen("/dev/null", "w", stdout) == nullptr) {
    std::cerr << "standard output cannot be set aside" << std::endl;
    std::exit(1);
  }
  return results;
}

bool write_all(int descriptor, const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t more = write(descriptor, text.data() + written, text.size() - written);
    if (more <= 0) {
      return false;
    }
    written += static_cast<std::size_t>(more);
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 2;
  }
  const int output = set_output_aside();
  describe_machine();
  std::ostringstream text;
  Results results;
  results.SetOutputStream(&text);
  results.SetErrorStream(&std::cerr);
  benchmark::RunSpecifiedBenchmarks(&results);
  // The engine's threads run until the process ends; nothing is destroyed before.
  _exit(write_all(output, text.str()) ? 0 : 1);
}
