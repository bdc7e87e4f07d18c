#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tool/arguments.h"
#include "tool/command.h"

namespace tool {

/// The options that describe a new unit.
std::vector<Option> launch_options();

/// The launch document for these options. Throws UsageError for a bad option or a unit file that cannot be one.
nlohmann::json launch_document(const Arguments& arguments);

/// The path made absolute.
std::string whole_path(const std::string& path);

/// The words of a command line with '…', "…" and backslashes, as a shell splits it. Throws UsageError naming `what`.
std::vector<std::string> shell_words(const std::string& what, const std::string& text);

}  // namespace tool
