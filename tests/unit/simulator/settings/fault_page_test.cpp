#include <gtest/gtest.h>

#include <cstdlib>

#include "simulator/model/points.h"
#include "tests/doubles/temporary_folder.h"

namespace {

using simulator::model::CrossingRow;
using simulator::model::CROSSINGS;
using simulator::model::FAULT_KINDS;
using simulator::model::FaultKind;
using simulator::model::FaultNumber;
using simulator::model::KindRow;
using simulator::model::PointRow;
using simulator::model::POINTS;

/// "milliseconds, 0 to 3600000"; empty without a number.
std::string text_of(const FaultNumber& number) {
  return number.meaning.empty() ? ""
                                : std::string(number.meaning) + ", " + std::to_string(number.minimum) + " to " +
                                      std::to_string(number.maximum);
}

std::string crossing_table() {
  std::string table = "| Crossing | Is a | `value` of `fail` |\n|---|---|---|\n";
  for (const CrossingRow& row : CROSSINGS) {
    table += "| " + std::string(row.name) + " | " + std::string(row.doc) + " | " + text_of(row.fail) + " |\n";
  }
  return table;
}

std::string kind_table() {
  std::string table = "| Kind | Effect | `value` |\n|---|---|---|\n";
  for (const KindRow& row : FAULT_KINDS) {
    const std::string value = row.key == FaultKind::FAIL ? "see below" : text_of(row.number);
    table += "| `" + std::string(row.name) + "` | " + std::string(row.doc) + " | " + value + " |\n";
  }
  return table;
}

std::string point_table() {
  std::string table = "| Setting | Kinds | Crossing | Operation |\n|---|---|---|---|\n";
  for (const PointRow& row : POINTS) {
    std::string kinds;
    for (const KindRow& kind : FAULT_KINDS) {
      if (kind.key != FaultKind::NONE && row.kinds.has(kind.key)) {
        kinds += (kinds.empty() ? "`" : ", `") + std::string(kind.name) + "`";
      }
    }
    if (!kinds.empty()) {
      table += "| `faults." + std::string(row.name) + "` | " + kinds + " | " + std::string(row_of(row.crossing).name) +
               " | " + std::string(row.doc) + " |\n";
    }
  }
  return table;
}

/// The page with its tables replaced by the given ones; each table is found by the first cell of its header.
std::string with_table(const std::string& page, const std::string& table) {
  const std::size_t begin = page.find(table.substr(0, table.find('|', 1)));
  if (begin == std::string::npos) {
    return page + "\n" + table;
  }
  const std::size_t end = page.find("\n\n", begin);
  return page.substr(0, begin) + table + (end == std::string::npos ? "" : page.substr(end + 1));
}

TEST(FaultPageTest, HoldsTheTablesOfKindsAndPoints) {
  const std::string page = doubles::text_of(FAULTS_PAGE);
  const std::string expected = with_table(with_table(with_table(page, kind_table()), crossing_table()), point_table());
  if (std::getenv("UPDATE_PAGES") != nullptr) {
    doubles::write_text(FAULTS_PAGE, expected);
  } else {
    EXPECT_EQ(page, expected) << "UPDATE_PAGES=1 makes this test write the page";
  }
}

}  // namespace
