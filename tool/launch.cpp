#include "tool/launch.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "tool/errors.h"
#include "tool/exec_session.h"
#include "tool/nearest.h"
#include "tool/numbers.h"
#include "tool/text.h"
#include "tool/unit_file.h"

namespace tool {
namespace fs = std::filesystem;

using nlohmann::json;

namespace {

const std::vector<std::string> SERVICES = {"gui_manager", "everybody_engine", "hw_enumerate"};

/// Variables that are passed on to the unit's programs: those of sanitizers, test frameworks and the terminal.
json passed_environment() {
  constexpr const char* NAMES[] = {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS", "TZ", "TERM"};
  constexpr const char* PREFIXES[] = {"GTEST_", "BENCHMARK_", "UNIT_"};
  json passed = json::object();
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string whole = *entry;
    const std::string name = whole.substr(0, whole.find('='));
    const bool by_name = std::find(std::begin(NAMES), std::end(NAMES), name) != std::end(NAMES);
    const bool by_prefix = std::any_of(std::begin(PREFIXES), std::end(PREFIXES),
                                       [&name](const char* prefix) { return name.rfind(prefix, 0) == 0; });
    // The caller cannot choose the unit's folder and port.
    if ((by_name || by_prefix) && name != "UNIT_RUN" && name != "UNIT_NAMING_PORT" && is_utf8(whole) &&
        whole.size() > name.size()) {
      passed[name] = whole.substr(name.size() + 1);
    }
  }
  return passed;
}

struct Limit {
  const char* name;
  const char* key;
  std::int64_t maximum;
};

constexpr Limit LIMITS[] = {{"memory", "memory_mib", 1 << 20},
                            {"processes", "processes", 1 << 20},
                            {"disk", "disk_mib", 1 << 20},
                            {"files", "open_files", 1 << 20}};

void add_limits(json& limits, const std::vector<std::string>& given) {
  for (const std::string& each : given) {
    const std::size_t sign = each.find('=');
    const std::string name = each.substr(0, sign);
    const auto limit =
        std::find_if(std::begin(LIMITS), std::end(LIMITS), [&name](const Limit& known) { return name == known.name; });
    if (limit == std::end(LIMITS) || sign == std::string::npos) {
      throw UsageError("--limit: must be memory=MIB, processes=N, disk=MIB or files=N, not \"" + printable(each) +
                       "\"");
    }
    limits[limit->key] = number_in("--limit " + name, each.substr(sign + 1), 1, limit->maximum);
  }
}

void leave_out(json& launch, const std::vector<std::string>& parts) {
  for (const std::string& part : parts) {
    if (part == "services" || part == "network") {
      launch[part] = false;
    } else if (std::find(SERVICES.begin(), SERVICES.end(), part) != SERVICES.end()) {
      launch["without"].push_back(part);
    } else {
      std::vector<std::string> names = SERVICES;
      names.insert(names.end(), {"services", "network"});
      throw UsageError("--without: unknown part \"" + printable(part) + "\"" + did_you_mean(part, names));
    }
  }
}

}  // namespace

std::vector<Option> launch_options() {
  return {
      {"name", 0, "NAME", "name of the unit (default: unit-1, unit-2, …)"},
      {"unit-file", 0, "FILE", "values of the unit (default: those of the build)", false, Offer::FILES},
      {"library", 0, "FILE", "library to load (default: that of the build)", false, Offer::FILES},
      {"state", 0, "FOLDER", "keep logs and results here (new, empty or an earlier one; default: temporary)", false,
       Offer::FILES},
      {"without", 0, "PART", "leave out a service, all services (services) or the network (network)", true,
       Offer::SERVICES},
      {"dhcp-server", 0, "", "run a DHCP server for the unit's interface eth0"},
      {"bind", 0, "PATH", "show a file or folder of this machine on the unit, read-only", true, Offer::FILES},
      environment_option(),
      {"limit",
       0,
       "NAME=N",
       "memory (MiB), processes, disk (MiB) or files: most that the unit may use",
       true,
       Offer::WORDS,
       {"memory=", "processes=", "disk=", "files="}},
  };
}

json launch_document(const Arguments& arguments) {
  json launch = {{"name", arguments.text("name")},
                 {"unit_file", ""},
                 {"unit_file_text", nullptr},
                 {"state", ""},
                 {"library", ""},
                 {"host", nullptr},

                 {"services", true},
                 {"host_arguments", json::array()},
                 {"without", json::array()},
                 {"network", true},
                 {"dhcp_server", arguments.has("dhcp-server")},
                 {"binds", json::array()},
                 {"detach", false},
                 {"environment", passed_environment()},
                 {"record", false},
                 {"limits", json::object()}};
  if (const auto path = arguments.value("unit-file")) {
    launch["unit_file"] = whole_path(*path);
    launch["unit_file_text"] = unit_file_text(*path);
  }
  if (const auto path = arguments.value("state")) {
    launch["state"] = whole_path(*path);
  }
  if (const auto path = arguments.value("library")) {
    // A path inside, or a name that the loader looks for, is none of this machine.
    launch["library"] = fs::exists(*path) ? whole_path(*path) : *path;
  }
  for (const std::string& path : arguments.all("bind")) {
    if (!fs::exists(path)) {
      throw UsageError("--bind: " + path + ": no such file or folder");
    }
    launch["binds"].push_back(whole_path(path));
  }
  for (const auto& [name, value] : given_environment(arguments)) {
    launch["environment"][name] = value;
  }
  leave_out(launch, arguments.all("without"));
  add_limits(launch["limits"], arguments.all("limit"));
  return launch;
}

std::string whole_path(const std::string& path) {
  return fs::absolute(path).lexically_normal().string();
}

std::vector<std::string> shell_words(const std::string& what, const std::string& text) {
  std::vector<std::string> words;
  bool in_word = false;
  char quote = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char each = text[i];
    if (quote == 0 && (each == ' ' || each == '\t' || each == '\n')) {
      in_word = false;
      continue;
    }
    if (!in_word) {
      words.emplace_back();
      in_word = true;
    }
    if (quote == 0 && (each == '\'' || each == '"')) {
      quote = each;
    } else if (each == quote) {
      quote = 0;
    } else if (each == '\\' && quote != '\'' && i + 1 < text.size()) {
      words.back() += text[++i];
    } else {
      words.back() += each;
    }
  }
  if (quote != 0) {
    throw UsageError(what + ": unterminated " + quote);
  }
  return words;
}

}  // namespace tool
