// Power, battery, single temperatures and network.

#include "host/operation.h"

namespace host {
namespace {

using nlohmann::json;

json shutdown(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(0);
  hardware.shutdown();
  return json::object();
}

json get_battery_charge_status(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  int charge = arguments.count() > 0 ? arguments.number(0, "charge before the call") : 0;
  const bool result = hardware.GetBatteryChargeStatus(charge);
  return {{"result", result}, {"charge", charge}};
}

json get_charger_status(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(0);
  return {{"result", hardware.GetChargerStatus()}};
}

template <void (BASE_HARDWARE::*Operation)(std::string)>
json on_interface(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  (hardware.*Operation)(arguments.text(0, "interface"));
  return json::object();
}

template <int (BASE_HARDWARE::*Operation)()>
json number(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(0);
  return {{"result", (hardware.*Operation)()}};
}

}  // namespace

const std::vector<Operation>& power_operations() {
  static const std::vector<Operation> operations = {
      {"shutdown", "", shutdown},
      {"GetBatteryChargeStatus", "[charge before the call: number]", get_battery_charge_status},
      {"GetChargerStatus", "", get_charger_status},
      {"StartDHCP", "interface: text", on_interface<&BASE_HARDWARE::StartDHCP>},
      {"SetupStaticIP", "interface: text", on_interface<&BASE_HARDWARE::SetupStaticIP>},
      {"NetworkOff", "interface: text", on_interface<&BASE_HARDWARE::NetworkOff>},
      {"GetMaxInterfaces", "", number<&BASE_HARDWARE::GetMaxInterfaces>},
      {"PsTemperature", "", number<&BASE_HARDWARE::PsTemperature>},
      {"BatteryTemperature", "", number<&BASE_HARDWARE::BatteryTemperature>},
      {"Slot1MIC284Temperature", "", number<&BASE_HARDWARE::Slot1MIC284Temperature>},
      {"BatteryPresent", "", number<&BASE_HARDWARE::BatteryPresent>},
  };
  return operations;
}

}  // namespace host
