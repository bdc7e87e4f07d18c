#include "tool/tables.h"

#include <gtest/gtest.h>

namespace {

TEST(TablesTest, ColumnsAreAsWideAsTheirWidestCell) {
  tool::Table table({"NAME", "VALUE"});
  table.add({"temperature", "31 °C"});
  table.add({"x", ""});
  EXPECT_EQ(table.text(), "NAME         VALUE\ntemperature  31 °C\nx\n");
  EXPECT_EQ(table.text(1), " NAME         VALUE\n temperature  31 °C\n x\n");
}

TEST(TablesTest, CellsCannotControlTheTerminal) {
  tool::Table table({"NAME"});
  table.add({"a\x1b[2J\nb"});
  EXPECT_EQ(table.text(), "NAME\na\\x1b[2J\\nb\n");
}

}  // namespace
