#pragma once

// File-scope state of the handheld layer. The power-supply driver calls plain functions that carry no object, so what
// it hands over lives here: a store a reply kind, written before its semaphore is posted and read after the wait.

#include <cstdint>
#include <sstream>

#include <boost/interprocess/sync/interprocess_semaphore.hpp>

#include "everybody_engine.h"
#include "gui_manager.h"
#include "hw_enumerate.h"
#include "psdriver.h"
#include "varnok_events.h"

class Handheld_Hardware;

#define RADALT_EXPORTED __attribute__((visibility("default")))

/// The one driver object; null until the constructor has made it.
extern psdriver* PSdriver;

/// @name Last replies
/// @{
extern std::int32_t ps_temp;          ///< tenths of a degree Celsius
extern std::int32_t battery_temp;     ///< whole degrees Celsius
extern std::int32_t charge_status;    ///< bit field, see ChargerBits
extern std::int32_t batteryRun_time;  ///< run time to empty, in the driver's unit
extern std::int32_t battery_time;     ///< average time to empty, in the driver's unit
extern std::int32_t battery_charge;   ///< per cent, corrected by the charger status
extern std::stringstream ps_ver;      ///< decimal text of the software version
/// @}

/// Bits of `charge_status` that have a meaning here.
enum ChargerBits : std::int32_t {
  EXTERNAL_VOLTAGE = 0x01,
  FULLY_CHARGED = 0x09,  ///< both bits set: reported as 100 per cent
  BATTERY_ABSENT = 0x10
};

/// @name Reply arrived
/// One semaphore a reply kind, counting from 0. A post that nobody awaits satisfies the next wait of its kind.
/// @{
extern RADALT_EXPORTED boost::interprocess::interprocess_semaphore semBatteryStatusIrq;
extern RADALT_EXPORTED boost::interprocess::interprocess_semaphore semBatteryTimeIrq;
extern RADALT_EXPORTED boost::interprocess::interprocess_semaphore semBatteryRunTimeIrq;
extern RADALT_EXPORTED boost::interprocess::interprocess_semaphore semExtVoltStatusIrq;
extern RADALT_EXPORTED boost::interprocess::interprocess_semaphore semPowerSupplyVerIrq;
extern RADALT_EXPORTED boost::interprocess::interprocess_semaphore semPowerSupplyTempIrq;
extern RADALT_EXPORTED boost::interprocess::interprocess_semaphore semBatteryTempIrq;
/// @}

/// @name Reply functions, called on the driver's thread
/// @{
RADALT_EXPORTED void BatteryRelativeStateOfChargeResponse(int charge);
RADALT_EXPORTED void SoftwareVersionNumberResponse(int version);
RADALT_EXPORTED void PowerSupplyTemperatureValueResponse(int tenths);
RADALT_EXPORTED void BatteryTemperatureResponse(int degrees);
RADALT_EXPORTED void BatteryAverageTimeToEmptyResponse(int time);
RADALT_EXPORTED void BatteryRunTimeToEmptyResponse(int time);
/// @}

/// The library's one event channel.
extern RADALT_EXPORTED Varnok::EngineEventMessage_i Attr_EventMessage;

/// Whether the cover is closed, as the last interrupts told.
extern RADALT_EXPORTED bool cover_closed;
/// The last power-switch interrupt's value.
extern std::int32_t CommunicationStatusInterruptValue;

/// The object that registered the power-switch handler; null until then.
extern Handheld_Hardware* SwitchOwner;

/// @name Remote services, nil until found; a lookup that fails keeps the last one
/// @{
extern Varnok::HwEnumerate_Able_var EnumEngPtr;
extern Halcyra::gui::GUIManager_var GuiManagerPtr;
extern Varnok::EverybodyEng::Interfaces_ptr EverBdyPtr;
/// @}

/// Makes `driver` the one driver object. Returns the number of done-loading messages that came before it.
unsigned int AdoptDriver(psdriver* driver);
