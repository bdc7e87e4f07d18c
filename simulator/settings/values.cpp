#include "simulator/settings/values.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "simulator/settings/one_line.h"

namespace simulator::settings {
namespace {

using nlohmann::json;

constexpr std::string_view REGISTERS = "board.register";
constexpr std::string_view FAULTS = "faults.";

bool starts_with(const std::string& text, std::string_view start) {
  return text.compare(0, start.size(), start) == 0;
}

/// True for the two levels above a register: board.register and board.register.<space>.
bool is_register_group(const std::string& name) {
  if (!starts_with(name, REGISTERS)) {
    return false;
  }
  const std::string space = name.substr(REGISTERS.size());
  return space.empty() || (space[0] == '.' && decimal_in(std::string_view(space).substr(1)));
}

bool is_group(const std::string& name) {
  const auto& all = settings();
  return is_register_group(name) ||
         std::any_of(all.begin(), all.end(), [&](const Setting& each) { return starts_with(each.name, name + "."); });
}

/// The values of one object, collected.
class Collection {
public:
  /// Adds the value at the dotted `name`, or its members if the name is a group. Groups are few levels deep.
  void add(const std::string& name, const json& value) {
    if (auto setting = find_setting(name)) {
      add(*std::move(setting), value);
    } else if (!is_group(name)) {
      throw no_such_setting(name);
    } else if (!value.is_structured()) {
      throw SettingError(name, "must hold settings, not " + value_text(value), "object of settings");
    } else {
      add_members(name, value);
    }
  }

  void add_members(const std::string& name, const json& value) {
    const std::string prefix = name.empty() ? "" : name + ".";
    std::size_t place = 0;
    for (const auto& [key, held] : value.items()) {
      add(prefix + (value.is_array() ? std::to_string(place++) : key), held);
    }
  }

  std::vector<Value> take() {
    if (registers_ > REGISTERS_AT_MOST) {
      throw SettingError(std::string(REGISTERS), "holds " + std::to_string(registers_) +
                                                     " registers; a unit file may hold " +
                                                     std::to_string(REGISTERS_AT_MOST));
    }
    std::stable_partition(values_.begin(), values_.end(),
                          [](const Value& each) { return !starts_with(each.setting.name, FAULTS); });
    return std::move(values_);
  }

private:
  void add(Setting setting, const json& value) {
    check(setting, value);
    if (!names_.insert(setting.name).second) {
      throw SettingError(setting.name, "given twice");
    }
    registers_ += starts_with(setting.name, REGISTERS) ? 1 : 0;
    values_.push_back({std::move(setting), value});
  }

  std::vector<Value> values_;
  std::set<std::string> names_;
  int registers_ = 0;
};

}  // namespace

std::vector<Value> checked_values(const json& object) {
  if (!object.is_object()) {
    throw SettingError("", "must hold one JSON object", "object of settings");
  }
  Collection collection;
  collection.add_members("", object);
  return collection.take();
}

std::optional<std::uint32_t> decimal_in(std::string_view text) {
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = error == std::errc{} && end == text.data() + text.size();
  return whole && (text[0] != '0' || text.size() == 1) ? std::optional(number) : std::nullopt;
}

model::Point point_of(const Setting& setting) {
  return model::point_named(setting.name.substr(FAULTS.size())).value();
}

}  // namespace simulator::settings
