#include "handheld/driver_link.h"

#include "messaging/failure_event.h"

using boost::interprocess::interprocess_semaphore;

// The hardware object is made by another source file's initialiser while the library loads. These objects must exist by
// then regardless of the link order, so they are constructed before all ordinary file-scope objects.
#define AHEAD_OF_THE_HARDWARE_OBJECT [[gnu::init_priority(1001)]]

AHEAD_OF_THE_HARDWARE_OBJECT interprocess_semaphore semBatteryStatusIrq(0);
AHEAD_OF_THE_HARDWARE_OBJECT interprocess_semaphore semBatteryTimeIrq(0);
AHEAD_OF_THE_HARDWARE_OBJECT interprocess_semaphore semBatteryRunTimeIrq(0);
AHEAD_OF_THE_HARDWARE_OBJECT interprocess_semaphore semExtVoltStatusIrq(0);
AHEAD_OF_THE_HARDWARE_OBJECT interprocess_semaphore semPowerSupplyVerIrq(0);
AHEAD_OF_THE_HARDWARE_OBJECT interprocess_semaphore semPowerSupplyTempIrq(0);
AHEAD_OF_THE_HARDWARE_OBJECT interprocess_semaphore semBatteryTempIrq(0);
AHEAD_OF_THE_HARDWARE_OBJECT std::stringstream ps_ver("", std::ios::in | std::ios::out);
AHEAD_OF_THE_HARDWARE_OBJECT Varnok::EngineEventMessage_i Attr_EventMessage;

psdriver* PSdriver = nullptr;
std::int32_t ps_temp = 0;
std::int32_t battery_temp = 0;
std::int32_t charge_status = 0;
std::int32_t batteryRun_time = 0;
std::int32_t battery_time = 0;
std::int32_t battery_charge = 0;

void BatteryRelativeStateOfChargeResponse(int charge) {
  if ((charge_status & handheld::BATTERY_ABSENT) != 0) {
    battery_charge = 0;
  } else if ((charge_status & handheld::FULLY_CHARGED) == handheld::FULLY_CHARGED) {
    battery_charge = 100;
  } else {
    battery_charge = charge;
  }
  semBatteryStatusIrq.post();
}

static void Charger_BatteryStatusResponse(int status) {
  charge_status = status;
  semExtVoltStatusIrq.post();
}

void SoftwareVersionNumberResponse(int version) {
  ps_ver.str("");
  ps_ver << std::dec << version;
  semPowerSupplyVerIrq.post();
}

void PowerSupplyTemperatureValueResponse(int tenths) {
  ps_temp = tenths;
  semPowerSupplyTempIrq.post();
}

void BatteryTemperatureResponse(int degrees) {
  battery_temp = degrees;
  semBatteryTempIrq.post();
}

void BatteryAverageTimeToEmptyResponse(int time) {
  battery_time = time;
  semBatteryTimeIrq.post();
}

void BatteryRunTimeToEmptyResponse(int time) {
  batteryRun_time = time;
  semBatteryRunTimeIrq.post();
}

namespace handheld {

void register_reply_functions() {
  PSdriver->SetBatteryRelativeStateOfChargeCallback(&BatteryRelativeStateOfChargeResponse);
  PSdriver->SetCharger_BatteryStatusCallback(&Charger_BatteryStatusResponse);
  PSdriver->SetSoftwareVersionNumberCallback(&SoftwareVersionNumberResponse);
  PSdriver->SetPowerSupplyTemperatureValueCallback(&PowerSupplyTemperatureValueResponse);
  PSdriver->SetBatteryTemperatureCallback(&BatteryTemperatureResponse);
  PSdriver->SetBatteryAverageTimeToEmptyCallback(&BatteryAverageTimeToEmptyResponse);
  PSdriver->SetBatteryRunTimeToEmptyCallback(&BatteryRunTimeToEmptyResponse);
}

void report_failure(const char* source, const char* text) {
  messaging::send_failure_event(Attr_EventMessage, source, text);
}

}  // namespace handheld
