// Lists, display and fans.

#include "host/operation.h"

namespace host {
namespace {

using nlohmann::json;

constexpr const char* OPTIONAL_LIST = "[list before the call: array]";

json get_version_list(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  std::vector<VERSIONSDATA> list = arguments.versions_before(0);
  const int result = hardware.GetVersionList(list);
  return {{"result", result}, {"versions", as_json(list)}};
}

json get_backlight(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  int level = arguments.count() > 0 ? arguments.number(0, "level before the call") : 0;
  const int result = hardware.GetBacklight(level);
  return {{"result", result}, {"level", level}};
}

json get_temperature(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  std::vector<TEMPERATUREDATA> list = arguments.temperatures_before(0);
  const int result = hardware.GetTemperature(list);
  return {{"result", result}, {"temperatures", as_json(list)}};
}

json get_power_down_home_button(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(2);
  std::string power_down = arguments.text_before(0, "power_down before the call");
  std::string home_button = arguments.text_before(1, "home_button before the call");
  hardware.Get_PowerDown_HomeButton(power_down, home_button);
  return {{"power_down", power_down}, {"home_button", home_button}};
}

template <int (BASE_HARDWARE::*Operation)(std::vector<FANDATA>&)>
json fan_list(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  std::vector<FANDATA> list = arguments.fans_before(0);
  const int result = (hardware.*Operation)(list);
  return {{"result", result}, {"fans", as_json(list)}};
}

json adjust_fan_speeds(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  std::vector<FANDATA> list = arguments.fans_before(0);
  hardware.AdjustFanSpeeds(list);
  return {{"fans", as_json(list)}};
}

json get_fan_state(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  return {{"result", static_cast<int>(hardware.GetFanState(arguments.word(0, "index")))}};
}

json set_fan_state(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(2);
  const unsigned int index = arguments.word(0, "index");
  const auto state = static_cast<BASE_HARDWARE::FAN_STATES>(arguments.number(1, "state"));
  return {{"result", hardware.SetFanState(index, state)}};
}

}  // namespace

const std::vector<Operation>& list_operations() {
  static const std::vector<Operation> operations = {
      {"GetVersionList", OPTIONAL_LIST, get_version_list},
      {"GetBacklight", "[level before the call: number]", get_backlight},
      {"GetTemperature", OPTIONAL_LIST, get_temperature},
      {"Get_PowerDown_HomeButton", "[power_down: text] [home_button: text]", get_power_down_home_button},
      {"GetFanStatesList", OPTIONAL_LIST, fan_list<&BASE_HARDWARE::GetFanStatesList>},
      {"GetFanState", "index: number", get_fan_state},
      {"SetFanState", "index: number, state: number", set_fan_state},
      {"AdjustFanSpeeds", OPTIONAL_LIST, adjust_fan_speeds},
      {"GetFansList", OPTIONAL_LIST, fan_list<&BASE_HARDWARE::GetFansList>},
  };
  return operations;
}

}  // namespace host
