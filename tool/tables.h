#pragma once

#include <string>
#include <vector>

namespace tool {

/// A table for people: a header and rows of columns, each as wide as its widest cell, two spaces apart.
class Table {
public:
  explicit Table(std::vector<std::string> header) : rows_{std::move(header)} {}

  /// Adds a row of as many cells as the header has; control characters are escaped when shown.
  void add(std::vector<std::string> cells);
  /// The lines, without trailing spaces, each preceded by `indent` spaces.
  std::string text(std::size_t indent = 0) const;

private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace tool
