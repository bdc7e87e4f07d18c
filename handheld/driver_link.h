#pragma once

// The link to the power-supply driver. The driver calls plain functions without an object, so its replies are stored at
// file scope: one store per reply kind, written before its semaphore is posted and read after the wait.

#include <cstdint>
#include <sstream>

#include <boost/interprocess/sync/interprocess_semaphore.hpp>

#include "psdriver.h"
#include "varnok_events.h"

/// The one driver object; null until the constructor has made it.
extern psdriver* PSdriver;

/// @name Last replies
/// @{
extern std::int32_t ps_temp;          ///< tenths of a degree Celsius
extern std::int32_t battery_temp;     ///< whole degrees Celsius
extern std::int32_t charge_status;    ///< bit field, see handheld::ChargerBits
extern std::int32_t batteryRun_time;  ///< run time to empty, in the controller's own unit
extern std::int32_t battery_time;     ///< average time to empty, in the controller's own unit
extern std::int32_t battery_charge;   ///< per cent, corrected by the charger status
extern std::stringstream ps_ver;      ///< decimal text of the software version
/// @}

/// @name Reply arrived
/// One semaphore per reply kind, counting from 0. A post without a waiting thread satisfies the next wait of its kind.
/// @{
extern __attribute__((visibility("default"))) boost::interprocess::interprocess_semaphore semBatteryStatusIrq;
extern __attribute__((visibility("default"))) boost::interprocess::interprocess_semaphore semBatteryTimeIrq;
extern __attribute__((visibility("default"))) boost::interprocess::interprocess_semaphore semBatteryRunTimeIrq;
extern __attribute__((visibility("default"))) boost::interprocess::interprocess_semaphore semExtVoltStatusIrq;
extern __attribute__((visibility("default"))) boost::interprocess::interprocess_semaphore semPowerSupplyVerIrq;
extern __attribute__((visibility("default"))) boost::interprocess::interprocess_semaphore semPowerSupplyTempIrq;
extern __attribute__((visibility("default"))) boost::interprocess::interprocess_semaphore semBatteryTempIrq;
/// @}

/// @name Reply functions, called on the driver's thread
/// They throw boost::interprocess::interprocess_exception if the semaphore cannot be posted.
/// @{
__attribute__((visibility("default"))) void BatteryRelativeStateOfChargeResponse(int charge);
__attribute__((visibility("default"))) void SoftwareVersionNumberResponse(int version);
__attribute__((visibility("default"))) void PowerSupplyTemperatureValueResponse(int tenths);
__attribute__((visibility("default"))) void BatteryTemperatureResponse(int degrees);
__attribute__((visibility("default"))) void BatteryAverageTimeToEmptyResponse(int time);
__attribute__((visibility("default"))) void BatteryRunTimeToEmptyResponse(int time);
/// @}

/// The library's one event channel.
extern __attribute__((visibility("default"))) Varnok::EngineEventMessage_i Attr_EventMessage;

namespace handheld {

/// Bits of `charge_status` that the library uses.
enum ChargerBits : std::int32_t {
  EXTERNAL_VOLTAGE = 0x01,
  FULLY_CHARGED = 0x09,  ///< both bits set: reported as 100 per cent
  BATTERY_ABSENT = 0x10
};

/// Registers the reply functions with the driver. Throws psdriverError; the functions after the failing one are then
/// not registered.
void register_reply_functions();

/// Sends one failure event through `Attr_EventMessage`. `source` is the reporting function's full name, `text` says
/// what failed. Any thread. Throws what the channel throws.
void report_failure(const char* source, const char* text);

}  // namespace handheld
