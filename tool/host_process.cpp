#include "tool/host_process.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace tool {
namespace fs = std::filesystem;

using nlohmann::ordered_json;

namespace {

std::string text_of(const fs::path& path) {
  std::ifstream file(path);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Every process of this machine that can be seen, by its number.
std::map<int, ProcessNumbers> processes() {
  std::map<int, ProcessNumbers> all;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator("/proc", error)) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") == std::string::npos) {
      all[std::stoi(name)] = numbers_in(text_of(entry.path() / "status"));
    }
  }
  return all;
}

}  // namespace

ProcessNumbers numbers_in(const std::string& status) {
  ProcessNumbers numbers;
  std::istringstream lines(status);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string key;
    words >> key;
    if (key == "PPid:") {
      words >> numbers.parent;
    } else if (key == "NSpid:") {
      // One number per process namespace, the innermost last.
      for (int number = 0; words >> number;) {
        numbers.inside = number;
      }
    }
  }
  return numbers;
}

std::optional<int> host_pid_outside(const ordered_json& unit) {
  const ordered_json root = unit.at("process").value("root", ordered_json());
  const ordered_json inside = unit.at("host").value("pid", ordered_json());
  if (!root.is_number_integer() || !inside.is_number_integer() || unit["host"].value("state", "") == "exited") {
    return std::nullopt;
  }
  const std::map<int, ProcessNumbers> all = processes();
  for (const auto& [pid, numbers] : all) {
    if (numbers.inside != inside || pid == inside) {
      continue;
    }
    for (auto ancestor = all.find(numbers.parent); ancestor != all.end();
         ancestor = all.find(ancestor->second.parent)) {
      if (ancestor->first == root) {
        return pid;
      }
    }
  }
  return std::nullopt;
}

}  // namespace tool
