#pragma once

#include <string>

namespace tool {

/// The text of a unit file: a regular file of at most 1 MiB in UTF-8. Waits for nobody. Throws UsageError.
std::string unit_file_text(const std::string& path);

}  // namespace tool
