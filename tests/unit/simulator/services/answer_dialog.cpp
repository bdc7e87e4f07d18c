// Presses a button of a dialog of the unit: answer_dialog TITLE LABEL. Exit status 0 if there is such a button.

#include "simulator/model/unit_model.h"

int main(int, char** argv) {
  return simulator::model::UnitModel::of_this_unit().gui().answer(argv[1], argv[2]) ? 0 : 1;
}
