#include "simulator/settings/unit_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>
#include <string_view>

#include "simulator/settings/settings.h"

namespace simulator::settings {
namespace {

using model::UnitModel;
using nlohmann::json;
using Values = std::vector<std::pair<std::string, json>>;

/// "line 3, column 5: …", from the message of the JSON parser.
std::string place_and_reason(const json::parse_error& error) {
  const std::string text = error.what();
  const std::size_t line = text.find("line ");
  return line == std::string::npos ? text : text.substr(line);
}

/// Detects duplicate keys in a JSON object.
class TwiceWatch {
public:
  bool operator()(int, json::parse_event_t event, const json& parsed) {
    if (event == json::parse_event_t::object_start) {
      open_.emplace_back();
    } else if (event == json::parse_event_t::object_end) {
      open_.pop_back();
    } else if (event == json::parse_event_t::key) {
      note(parsed.get<std::string>());
    }
    return true;
  }

  /// The dotted name of the first duplicate key; empty if there is none.
  const std::string& twice() const { return twice_; }

private:
  struct Object {
    std::string last;
    std::set<std::string> keys;
  };

  void note(const std::string& key) {
    open_.back().last = key;
    if (!open_.back().keys.insert(key).second && twice_.empty()) {
      for (const Object& object : open_) {
        twice_ += (twice_.empty() ? "" : ".") + object.last;
      }
    }
  }

  std::vector<Object> open_;
  std::string twice_;
};

constexpr std::string_view REGISTERS = "board.register";

/// True for the two levels above a register: board.register and board.register.<space>.
bool is_register_group(const std::string& name) {
  if (name.compare(0, REGISTERS.size(), REGISTERS) != 0) {
    return false;
  }
  const std::string space = name.substr(REGISTERS.size());
  return space.empty() ||
         (space.size() > 1 && space[0] == '.' && space.find_first_not_of("0123456789", 1) == std::string::npos);
}

bool is_group(const std::string& name) {
  const std::string prefix = name + ".";
  const auto& all = settings();
  return is_register_group(name) ||
         std::any_of(all.begin(), all.end(), [&](const Setting& each) { return each.name.rfind(prefix, 0) == 0; });
}

/// Checks and collects the value at the dotted `name`, or its members if the name is a group.
void collect(const std::string& name, const json& value, Values& values) {
  if (const auto setting = find_setting(name)) {
    check(*setting, value);
    values.emplace_back(name, value);
    return;
  }
  if (!is_group(name)) {
    throw SettingError(name, "no such setting");
  }
  if (!value.is_structured()) {
    throw SettingError(name, "must hold settings, not " + value.dump(-1, ' ', false, json::error_handler_t::replace));
  }
  std::size_t place = 0;
  for (const auto& [key, held] : value.items()) {
    collect(name + "." + (value.is_array() ? std::to_string(place++) : key), held, values);
  }
}

/// Rejects more registers than a board can hold in addition to the named ones.
void check_room(const Values& values) {
  const auto registers = std::count_if(values.begin(), values.end(), [](const auto& each) {
    return each.first.compare(0, REGISTERS.size(), REGISTERS) == 0;
  });
  if (registers > UnitFile::REGISTERS_AT_MOST) {
    throw SettingError(std::string(REGISTERS), "holds " + std::to_string(registers) +
                                                   " registers; a unit file may hold " +
                                                   std::to_string(UnitFile::REGISTERS_AT_MOST));
  }
}

json parsed_text(const std::string& text, const std::string& name) {
  TwiceWatch watch;
  json parsed;
  try {
    parsed = json::parse(
        text, [&watch](int depth, json::parse_event_t event, json& value) { return watch(depth, event, value); });
  } catch (const json::parse_error& error) {
    throw UnitFileError(name, "", place_and_reason(error));
  }
  if (!watch.twice().empty()) {
    throw UnitFileError(name, watch.twice(), "given twice");
  }
  if (!parsed.is_object()) {
    throw UnitFileError(name, "", "must hold one JSON object");
  }
  return parsed;
}

}  // namespace

UnitFileError::UnitFileError(const std::string& path, const std::string& name, const std::string& why)
    : std::runtime_error(path + ": " + (name.empty() ? "" : name + ": ") + why), file(path), key(name), reason(why) {}

UnitFile UnitFile::load(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  if (in && in.peek() != std::ifstream::traits_type::eof()) {
    text << in.rdbuf();
  }
  if (!in.is_open() || in.bad()) {
    throw UnitFileError(path, "", std::string("cannot be read: ") + std::strerror(errno));
  }
  return parse(text.str(), path);
}

UnitFile UnitFile::parse(const std::string& text, const std::string& name) {
  UnitFile file;
  try {
    const json parsed = parsed_text(text, name);
    for (const auto& [key, value] : parsed.items()) {
      collect(key, value, file.values_);
    }
    check_room(file.values_);
  } catch (const SettingError& error) {
    throw UnitFileError(name, error.name, error.reason);
  }
  return file;
}

void UnitFile::operator()(UnitModel& unit) const {
  for (const auto& [name, value] : values_) {
    set_setting(unit, name, value);
  }
}

}  // namespace simulator::settings
