#include "simulator/framework/crossing.h"

#include <exception>

#include "simulator/model/unit_model.h"

namespace simulator::framework {

bool watched() noexcept {
  try {
    return model::UnitModel::of_this_unit().watched();
  } catch (const std::exception&) {
    return false;
  }
}

model::Fault cross(model::Point point, const std::string& args) noexcept {
  try {
    model::UnitModel& unit = model::UnitModel::of_this_unit();
    return unit.watched() ? unit.cross(point, args) : model::Fault{};
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace simulator::framework
