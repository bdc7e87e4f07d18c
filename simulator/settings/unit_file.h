#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "simulator/model/unit_model.h"

namespace simulator::settings {

/// A unit file that is refused; what() is "file: key: reason" ("file: reason" where no key is to blame).
class UnitFileError : public std::runtime_error {
public:
  UnitFileError(const std::string& path, const std::string& name, const std::string& why);

  std::string file;
  std::string key;     ///< dotted name of the offending key, empty where none is
  std::string reason;  ///< one line; a malformed file gives "line 3, column 5: …"
};

/// The initial values of a simulated unit, read from a JSON file and checked. Keys that the file leaves out keep the
/// unit's own initial values (all numbers 0, no sysfs files, a board that answers, services present).
class UnitFile {
public:
  /// How many settings board.register.… a file may hold.
  static constexpr int REGISTERS_AT_MOST = 4000;

  /// Reads and checks the whole file. Throws UnitFileError.
  static UnitFile load(const std::string& path);
  /// The same of a text; `name` stands for the file in errors.
  static UnitFile parse(const std::string& text, const std::string& name);
  /// No values: a unit with its own initial values.
  UnitFile() = default;

  /// Sets the values in the unit: a unit file is what UnitModel::create() fills a new unit with.
  void operator()(model::UnitModel& unit) const;

private:
  std::vector<std::pair<std::string, nlohmann::json>> values_;
};

}  // namespace simulator::settings
