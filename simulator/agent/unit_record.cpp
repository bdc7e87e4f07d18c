// Appends one line to the unit's record of calls if it is on: unit-record WHERE

#include <cstdio>
#include <exception>

#include "simulator/model/unit_model.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: unit-record WHERE\n", stderr);
    return 2;
  }
  try {
    simulator::model::UnitModel::of_this_unit().record().append(argv[1], "{}");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "unit-record: %s\n", error.what());
    return 1;
  }
  return 0;
}
