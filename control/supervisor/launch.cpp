#include "control/supervisor/launch.h"

#include <algorithm>
#include <array>
#include <limits>

#include "simulator/channel/document.h"
#include "simulator/settings/unit_file.h"

namespace control::supervisor {
namespace fs = std::filesystem;
namespace {

using nlohmann::json;

constexpr const char* LARGEST_NAME = "32";

[[noreturn]] void refuse(const std::string& where, const std::string& expected) {
  throw LaunchError(STATUS_BAD_USAGE, where + ": expected " + expected);
}

/// Takes the members of a launch document one by one; unknown ones are refused at the end.
class Members {
public:
  explicit Members(json document) : rest_(std::move(document)) {
    if (!rest_.is_object()) {
      refuse("launch document", "an object");
    }
  }

  void take(const char* name, std::string& value) { assign(name, value, &json::is_string, "text"); }
  void take(const char* name, bool& value) { assign(name, value, &json::is_boolean, "true or false"); }
  void take(const char* name, int& value) {
    std::int64_t number = value;
    assign(name, number, &json::is_number_integer, "a number");
    if (number < 1 || number > std::numeric_limits<int>::max()) {
      refuse(name, "a number from 1 to " + std::to_string(std::numeric_limits<int>::max()));
    }
    value = static_cast<int>(number);
  }
  void take(const char* name, std::vector<std::string>& value) {
    const json list = pull(name, json::array());
    for (const json& each : list) {
      if (!list.is_array() || !each.is_string()) {
        refuse(name, "an array of texts");
      }
      value.push_back(each.get<std::string>());
    }
  }
  void take(const char* name, std::vector<std::pair<std::string, std::string>>& value) {
    const json variables = pull(name, json::object());
    for (const auto& [key, each] : variables.items()) {
      if (!variables.is_object() || !each.is_string()) {
        refuse(name, "an object of texts");
      }
      value.emplace_back(key, each.get<std::string>());
    }
  }
  /// Removes the member and returns it; `otherwise` if it is missing or null.
  json pull(const char* name, json otherwise) {
    const auto found = rest_.find(name);
    if (found == rest_.end()) {
      return otherwise;
    }
    json value = std::move(*found);
    rest_.erase(found);
    return value.is_null() ? otherwise : value;
  }
  void finish() const {
    if (!rest_.empty()) {
      throw LaunchError(STATUS_BAD_USAGE, rest_.begin().key() + ": unknown member of the launch document");
    }
  }

private:
  template <typename Value>
  void assign(const char* name, Value& value, bool (json::*fits)() const noexcept, const char* expected) {
    const json given = pull(name, nullptr);
    if (given.is_null()) {
      return;
    }
    if (!(given.*fits)()) {
      refuse(name, expected);
    }
    value = given.get<Value>();
  }

  json rest_;
};

void check_name(const std::string& name) {
  const auto is_part = [](char each) {
    return (each >= 'a' && each <= 'z') || (each >= '0' && each <= '9') || each == '-';
  };
  if (name.size() > 32 || !std::all_of(name.begin(), name.end(), is_part) || (!name.empty() && name[0] == '-')) {
    refuse("name", std::string("lower-case letters, digits and hyphens, beginning with a letter or digit, at most ") +
                       LARGEST_NAME + " characters");
  }
}

void check_without(const std::vector<std::string>& without) {
  constexpr std::array<const char*, 3> SERVICES{"gui_manager", "everybody_engine", "hw_enumerate"};
  for (const std::string& each : without) {
    if (std::find(SERVICES.begin(), SERVICES.end(), each) == SERVICES.end()) {
      refuse("without: \"" + each + "\"", "gui_manager, everybody_engine or hw_enumerate");
    }
  }
}

void check_binds(const std::vector<std::string>& binds, std::vector<fs::path>& checked) {
  for (const std::string& each : binds) {
    const fs::path path(each);
    if (!path.is_absolute() || path.lexically_normal() != path || !fs::exists(path)) {
      refuse("bind: \"" + each + "\"", "an existing absolute path");
    }
    checked.push_back(path);
  }
}

/// Checks the unit file's text, read from `name` unless it is given.
void take_unit_file(Members& members, Launch& launch) {
  const json path = members.pull("unit_file", "");
  const json text = members.pull("unit_file_text", nullptr);
  if (!path.is_string() || !(text.is_null() || text.is_string())) {
    refuse("unit_file", "text");
  }
  launch.unit_file_name = path.get<std::string>();
  if (launch.unit_file_name.empty()) {
    launch.unit_file_name = (build_folder() / "share/handheld.json").string();
  }
  try {
    launch.unit_file =
        text.is_string() ? text.get<std::string>() : simulator::settings::UnitFile::text_of(launch.unit_file_name);
    simulator::settings::UnitFile::parse(launch.unit_file, launch.unit_file_name);
  } catch (const simulator::settings::UnitFileError& error) {
    throw LaunchError(STATUS_BAD_USAGE, error.what());
  }
}

void take_limits(Members& members, UnitLimits& limits) {
  Members given(members.pull("limits", json::object()));
  given.take("memory_mib", limits.memory_mib);
  given.take("processes", limits.processes);
  given.take("disk_mib", limits.disk_mib);
  given.take("open_files", limits.open_files);
  given.finish();
}

}  // namespace

Launch read_launch(std::string_view text) {
  json document;
  try {
    document = simulator::channel::parsed_document(text);
  } catch (const simulator::channel::DocumentError& error) {
    throw LaunchError(STATUS_BAD_USAGE, std::string("launch document: ") + error.what());
  }
  Members members(std::move(document));
  Launch launch;
  std::vector<std::string> binds;
  bool detached = false;
  members.take("name", launch.name);
  members.take("state", launch.state);
  members.take("library", launch.library);
  members.take("host", launch.host);
  members.take("host_serves", launch.host_serves);
  members.take("host_wrap", launch.host_wrap);
  members.take("host_arguments", launch.host_arguments);
  members.take("services", launch.services);
  members.take("without", launch.without);
  members.take("network", launch.network);
  members.take("dhcp_server", launch.dhcp_server);
  members.take("binds", binds);
  members.take("environment", launch.environment);
  members.take("record", launch.record);
  members.take("detach", detached);
  take_limits(members, launch.limits);
  check_name(launch.name);
  check_without(launch.without);
  check_binds(binds, launch.binds);
  take_unit_file(members, launch);
  members.finish();
  return launch;
}

fs::path build_folder() {
  return fs::read_symlink("/proc/self/exe").parent_path().parent_path();
}

std::string seen_inside(const std::string& path) {
  std::error_code error;
  const fs::path whole = fs::canonical(path, error);
  if (error) {
    return path;
  }
  const std::string build = fs::canonical(build_folder()).string() + '/';
  return whole.string().rfind(build, 0) == 0 ? "/opt/unit/" + whole.string().substr(build.size()) : path;
}

nlohmann::ordered_json as_json(const UnitLimits& limits) {
  return {{"memory_mib", limits.memory_mib},
          {"processes", limits.processes},
          {"disk_mib", limits.disk_mib},
          {"open_files", limits.open_files}};
}

}  // namespace control::supervisor
