#pragma once

#include <string>

namespace doubles {

/// The text of standard error without the engine's own lines. Cyclone DDS writes none.
inline std::string without_engine_lines(const std::string& text) {
  return text;
}

}  // namespace doubles
