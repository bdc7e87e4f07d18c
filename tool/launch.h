#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "control/client/units.h"
#include "tool/arguments.h"
#include "tool/command.h"

namespace tool {

/// The options that describe a new unit.
std::vector<Option> launch_options();

/// The launch document for these options. Throws UsageError for a bad option or a unit file that cannot be one.
nlohmann::json launch_document(const Arguments& arguments);

/// The path made absolute.
std::string whole_path(const std::string& path);

/// The text of a unit file: a regular file of at most 1 MiB in UTF-8. Throws UsageError.
std::string unit_file_text(const std::string& path);

/// The words of a command line with '…', "…" and backslashes, as a shell splits it. Throws UsageError naming `what`.
std::vector<std::string> shell_words(const std::string& what, const std::string& text);

/// A unit that this program has started and that ends with it. One thread.
class StartedUnit {
public:
  /// Starts it and waits until it is ready. Throws control::client::LaunchError.
  explicit StartedUnit(const nlohmann::json& launch);
  /// As stop(), errors ignored.
  ~StartedUnit();
  StartedUnit(const StartedUnit&) = delete;
  StartedUnit& operator=(const StartedUnit&) = delete;

  const control::client::FoundUnit& unit() const { return launched_.unit; }
  std::filesystem::path socket() const { return launched_.unit.socket(); }
  /// Lets it run on by itself.
  void detach();
  /// Stops it and waits until it has gone. Does nothing if it has been stopped or detached.
  void stop();

private:
  control::client::Launched launched_;
  bool running_ = true;
};

/// Asks the unit to stop and waits until its supervisor has ended. Throws CommandError if it has not after 10 s.
void stop_unit(const control::client::FoundUnit& unit);

}  // namespace tool
