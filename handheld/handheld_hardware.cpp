#include "handheld/handheld_hardware.h"

#include <boost/bind/bind.hpp>

#include "handheld/driver_link.h"
#include "messaging/failure_event.h"

using boost::interprocess::interprocess_semaphore;

// The hardware object is made by another source file's initialiser while the library loads. These objects must be alive
// by then in whatever order the files are linked, so they are constructed ahead of all ordinary file-scope objects.
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
AHEAD_OF_THE_HARDWARE_OBJECT Varnok::HwEnumerate_Able_var EnumEngPtr;
AHEAD_OF_THE_HARDWARE_OBJECT Halcyra::gui::GUIManager_var GuiManagerPtr;

psdriver* PSdriver = nullptr;
std::int32_t ps_temp = 0;
std::int32_t battery_temp = 0;
std::int32_t charge_status = 0;
std::int32_t batteryRun_time = 0;
std::int32_t battery_time = 0;
std::int32_t battery_charge = 0;
bool cover_closed = false;
std::int32_t CommunicationStatusInterruptValue = 0;
Varnok::EverybodyEng::Interfaces_ptr EverBdyPtr = nullptr;
Handheld_Hardware* SwitchOwner = nullptr;

void BatteryRelativeStateOfChargeResponse(int charge) {
  if (charge_status & BATTERY_ABSENT) {
    battery_charge = 0;
  } else if ((charge_status & FULLY_CHARGED) == FULLY_CHARGED) {
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

Handheld_Hardware::Handheld_Hardware(const int& n)
    : BASE_HARDWARE(n),
      kelvin_offset_(273.15F),
      board_handle_(0),
      external_voltage_(false),
      ui_done_loading_("Halcyra/local/UIDoneLoading",
                       boost::bind(&Handheld_Hardware::UIDoneLoadingDDS_SubCallback, this, boost::placeholders::_1)),
      external_voltage_publisher_("Halcyra/local/ExternalVoltage"),
      max_interfaces(1),
      digital_board_scale_(0.25F),
      mic284_celsius_(0),
      ps_temperature_valid_(false),
      battery_temperature_valid_(false),
      mic284_temperature_valid_(false) {
  // The subscription may be ready before the driver is: its early messages are caught up with here.
  for (unsigned int early = AdoptDriver(new psdriver("/dev/i2c-3")); early > 0; --early) {
    UIDoneLoadingDDS_SubCallback(nullptr);
  }
}

Handheld_Hardware::~Handheld_Hardware() = default;

void Handheld_Hardware::InitHardware() {
  SwitchOwner = this;
  try {
    PSdriver->SetBatteryRelativeStateOfChargeCallback(&BatteryRelativeStateOfChargeResponse);
    PSdriver->SetCharger_BatteryStatusCallback(&Charger_BatteryStatusResponse);
    PSdriver->SetSoftwareVersionNumberCallback(&SoftwareVersionNumberResponse);
    PSdriver->SetPowerSupplyTemperatureValueCallback(&PowerSupplyTemperatureValueResponse);
    PSdriver->SetBatteryTemperatureCallback(&BatteryTemperatureResponse);
    PSdriver->SetBatteryAverageTimeToEmptyCallback(&BatteryAverageTimeToEmptyResponse);
    PSdriver->SetBatteryRunTimeToEmptyCallback(&BatteryRunTimeToEmptyResponse);
    PSdriver->SetSwitchInterruptCallback(&Handheld_Hardware::PowerSwitch);
  } catch (const psdriverError&) {
    SendFailureEvent(Attr_EventMessage, "Handheld_Hardware::InitHandheld_Hardware()",
                     "Power Supply Driver Failure: Initialize Handheld_Hardware");
  }
}

void Handheld_Hardware::AdjustFanSpeeds(std::vector<FANDATA>&) {}

void Handheld_Hardware::ReadBusVoltages() {}
