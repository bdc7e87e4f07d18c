#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/model/unit_model.h"
#include "simulator/settings/values.h"

namespace simulator::settings {

/// A rejected unit file; what(), one line, is "file: key: reason", or "file: reason" if the error concerns no key.
class UnitFileError : public std::runtime_error {
public:
  UnitFileError(const std::string& path, const std::string& name, const std::string& why, std::string wanted = {});

  std::string file;
  std::string key;       ///< dotted name of the offending key; empty: none
  std::string reason;    ///< one line; a malformed file gives "line 3, column 5: …"
  std::string expected;  ///< the accepted values; empty: the error concerns no value
};

/// The initial values of a simulated unit, read from a JSON file and checked. Omitted keys keep their defaults (all
/// numbers 0, no sysfs files, a board that answers, services present).
class UnitFile {
public:
  /// Reads and checks the whole file: a regular one of at most 1 MiB that holds one JSON object in UTF-8, nested at
  /// most 64 deep. Never blocks. Throws UnitFileError.
  static UnitFile load(const std::string& path);
  /// The text of such a file, not yet parsed. Throws UnitFileError.
  static std::string text_of(const std::string& path);
  /// The same for a text; `name` replaces the file name in errors.
  static UnitFile parse(const std::string& text, const std::string& name);
  /// No values: a unit with default values.
  UnitFile() = default;

  /// Sets the values in the unit. A unit file can be passed to UnitModel::create().
  void operator()(model::UnitModel& unit) const;

private:
  std::vector<Value> values_;
};

}  // namespace simulator::settings
