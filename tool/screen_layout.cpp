#include "tool/screen_layout.h"

#include <algorithm>

#include "tool/text.h"

namespace tool {
namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t GAP = 2;
/// From this width on there are two columns.
constexpr std::size_t WIDE = 80;

/// A section's lines, at most `columns` wide: the values below each other, a long one further left.
Lines lines_of(const Section& section, std::size_t columns) {
  std::size_t names = 0;
  for (const auto& row : section.rows) {
    names = std::max(names, width(row.first));
  }
  Lines lines{clipped(section.title, columns)};
  for (const auto& [name, value] : section.rows) {
    const std::size_t beside = 1 + GAP + width(value);
    const std::string line =
        " " + padded(name, columns > beside ? std::min(names, columns - beside) : 0) + std::string(GAP, ' ') + value;
    lines.push_back(clipped(line, columns));
  }
  return lines;
}

Lines below_each_other(const std::vector<Section>& sections, std::size_t first, std::size_t columns) {
  Lines lines;
  for (std::size_t i = first; i < sections.size(); ++i) {
    if (i > first) {
      lines.emplace_back();
    }
    const Lines more = lines_of(sections[i], columns);
    lines.insert(lines.end(), more.begin(), more.end());
  }
  return lines;
}

Lines body_of(const Picture& picture, std::size_t columns) {
  if (columns < WIDE || picture.sections.empty()) {
    return below_each_other(picture.sections, 0, columns);
  }
  const Lines right = below_each_other(picture.sections, 1, (columns - GAP) / 2);
  std::size_t right_columns = 0;
  for (const std::string& line : right) {
    right_columns = std::max(right_columns, width(line));
  }
  const std::size_t left_columns = columns - GAP - right_columns;
  const Lines left = lines_of(picture.sections[0], left_columns);
  Lines lines;
  for (std::size_t i = 0; i < std::max(left.size(), right.size()); ++i) {
    const std::string begin = i < left.size() ? left[i] : "";
    lines.push_back(i < right.size() && !right[i].empty() ? padded(begin, left_columns + GAP) + right[i] : begin);
  }
  return lines;
}

/// Adds the lines; if there are more than `rows` leaves room for, the last says how many are missing.
void add_cut(Lines& to, const Lines& lines, std::size_t rows, std::size_t columns) {
  const std::size_t room = rows > to.size() ? rows - to.size() : 0;
  if (lines.size() <= room) {
    to.insert(to.end(), lines.begin(), lines.end());
  } else if (room > 0) {
    to.insert(to.end(), lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(room - 1));
    to.push_back(clipped("… " + std::to_string(lines.size() - room + 1) + " more lines", columns));
  }
}

}  // namespace

std::vector<std::string> laid_out(const Picture& picture, const TerminalSize& size) {
  const auto rows = static_cast<std::size_t>(std::max(1, size.rows));
  const auto columns = static_cast<std::size_t>(std::max(1, size.columns));
  Lines lines;
  Lines head = picture.notices;
  head.insert(head.begin(), picture.title);
  for (std::string& line : head) {
    line = clipped(line, columns);
  }
  add_cut(lines, head, rows, columns);
  const Lines body = body_of(picture, columns);
  if (!body.empty() && lines.size() + body.size() < rows) {
    lines.emplace_back();
  }
  add_cut(lines, body, rows, columns);
  // A blank line, the heading and at least one line of output.
  if (!picture.output.empty() && lines.size() + 3 <= rows) {
    lines.emplace_back();
    lines.push_back(clipped("Host output", columns));
    const std::size_t count = std::min(rows - lines.size(), picture.output.size());
    for (auto line = picture.output.end() - static_cast<std::ptrdiff_t>(count); line != picture.output.end(); ++line) {
      lines.push_back(clipped(" " + printable(*line), columns));
    }
  }
  return lines;
}

}  // namespace tool
