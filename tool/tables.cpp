#include "tool/tables.h"

#include <algorithm>

#include "tool/text.h"

namespace tool {

void Table::add(std::vector<std::string> cells) {
  cells.resize(rows_.front().size());
  for (std::string& cell : cells) {
    cell = printable(cell);
  }
  rows_.push_back(std::move(cells));
}

std::string Table::text(std::size_t indent) const {
  std::vector<std::size_t> widths(rows_.front().size(), 0);
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], width(row[i]));
    }
  }
  std::string lines;
  for (const auto& row : rows_) {
    std::string line(indent, ' ');
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += i + 1 < row.size() ? padded(row[i], widths[i] + 2) : row[i];
    }
    line.erase(line.find_last_not_of(' ') + 1);
    lines += line + '\n';
  }
  return lines;
}

}  // namespace tool
