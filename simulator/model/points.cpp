#include "simulator/model/points.h"

#include <limits>

namespace simulator::model {
namespace {

constexpr FaultKinds NONE = FaultKind::NONE;
constexpr FaultKinds FAIL = FaultKind::FAIL;
constexpr FaultKinds NO_REPLY = FaultKind::NO_REPLY;
constexpr FaultKinds LATE = FaultKind::LATE;
constexpr FaultKinds TWICE = FaultKind::TWICE;
constexpr FaultKinds SLOW = FaultKind::SLOW;
constexpr FaultKinds GARBAGE = FaultKind::GARBAGE;
constexpr FaultKinds REQUEST = FAIL | NO_REPLY | LATE | TWICE | SLOW | GARBAGE;

constexpr std::int64_t HOUR_MS = 3'600'000;
constexpr std::int64_t LOWEST = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t HIGHEST = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t HIGHEST_WORD = std::numeric_limits<std::uint32_t>::max();

}  // namespace

constexpr memory::Table<Point, PointRow> POINTS{{
    {Point::RADALT_INIT, "radalt.init", FAIL | SLOW, "opening the board"},
    {Point::RADALT_READ, "radalt.read", FAIL | SLOW | GARBAGE, "reading a board register"},
    {Point::RADALT_WRITE, "radalt.write", FAIL | SLOW, "writing a board register"},
    {Point::RADALT_LOCK_GET, "radalt.lock_get", FAIL | SLOW, "taking the board lock"},
    {Point::RADALT_LOCK_PUT, "radalt.lock_put", FAIL | SLOW, "returning the board lock"},
    {Point::PSDRIVER_OPEN, "psdriver.open", FAIL | SLOW, "opening the power-supply controller"},
    {Point::SET_BATTERY_RELATIVE_STATE_OF_CHARGE_CALLBACK, "psdriver.SetBatteryRelativeStateOfChargeCallback",
     FAIL | SLOW, "registering the reply function"},
    {Point::SET_CHARGER_BATTERY_STATUS_CALLBACK, "psdriver.SetCharger_BatteryStatusCallback", FAIL | SLOW,
     "registering the reply function"},
    {Point::SET_SOFTWARE_VERSION_NUMBER_CALLBACK, "psdriver.SetSoftwareVersionNumberCallback", FAIL | SLOW,
     "registering the reply function"},
    {Point::SET_POWER_SUPPLY_TEMPERATURE_VALUE_CALLBACK, "psdriver.SetPowerSupplyTemperatureValueCallback", FAIL | SLOW,
     "registering the reply function"},
    {Point::SET_BATTERY_TEMPERATURE_CALLBACK, "psdriver.SetBatteryTemperatureCallback", FAIL | SLOW,
     "registering the reply function"},
    {Point::SET_BATTERY_AVERAGE_TIME_TO_EMPTY_CALLBACK, "psdriver.SetBatteryAverageTimeToEmptyCallback", FAIL | SLOW,
     "registering the reply function"},
    {Point::SET_BATTERY_RUN_TIME_TO_EMPTY_CALLBACK, "psdriver.SetBatteryRunTimeToEmptyCallback", FAIL | SLOW,
     "registering the reply function"},
    {Point::SET_SWITCH_INTERRUPT_CALLBACK, "psdriver.SetSwitchInterruptCallback", FAIL | SLOW,
     "registering the switch-interrupt handler"},
    {Point::GET_BATTERY_RELATIVE_STATE_OF_CHARGE, "psdriver.GetBatteryRelativeStateOfCharge", REQUEST,
     "requesting the battery charge"},
    {Point::GET_CHARGER_BATTERY_STATUS, "psdriver.GetCharger_BatteryStatus", REQUEST, "requesting the status bits"},
    {Point::GET_SOFTWARE_VERSION_NUMBER, "psdriver.GetSoftwareVersionNumber", REQUEST,
     "requesting the controller software's version"},
    {Point::GET_POWER_SUPPLY_TEMPERATURE_VALUE, "psdriver.GetPowerSupplyTemperatureValue", REQUEST,
     "requesting the power-supply temperature"},
    {Point::GET_BATTERY_TEMPERATURE, "psdriver.GetBatteryTemperature", REQUEST, "requesting the battery temperature"},
    {Point::GET_BATTERY_AVERAGE_TIME_TO_EMPTY, "psdriver.GetBatteryAverageTimeToEmpty", REQUEST,
     "requesting the time to empty at the average load"},
    {Point::GET_BATTERY_RUN_TIME_TO_EMPTY, "psdriver.GetBatteryRunTimeToEmpty", REQUEST,
     "requesting the time to empty at the present load"},
    {Point::SET_SYSTEM_LED_STATUS, "psdriver.SetSystemLEDStatus", FAIL | SLOW, "setting the system LED"},
    {Point::SET_USER_INTERFACE_COMMUNICATION_STATUS, "psdriver.SetUserInterface_CommunicationStatus", FAIL | SLOW,
     "setting the user-interface communication status"},
    {Point::PSDRIVER_REPLY, "psdriver.reply", NONE, "passing a reply to its function"},
    {Point::PSDRIVER_INTERRUPT, "psdriver.interrupt", NONE, "passing a switch interrupt to its handler"},
    {Point::DDS_PARTICIPANT, "dds.participant", FAIL | SLOW, "creating the process's DDS participant"},
    {Point::EVENTS_SEND, "events.send", FAIL | SLOW, "writing to the event log"},
    {Point::ORB_LOOKUP, "orb.lookup", FAIL | SLOW, "looking up a service"},
    {Point::LOCKER_TAKE, "locker.take", SLOW, "taking the framework lock"},
    {Point::LOCKER_INIT_CORE, "locker.Init_core", SLOW, "creating a lock's core"},
    {Point::GUI_SHOW_DIALOG, "gui.ShowDialog", FAIL | NO_REPLY | SLOW | GARBAGE, "showing a dialog"},
    {Point::GUI_SET_DIALOG_SIZE, "gui.SetDialogSize", FAIL | NO_REPLY | SLOW, "sizing a dialog"},
    {Point::EVERYBODY_GET_SHUTDOWN, "everybody_engine.GetShutdown", FAIL | NO_REPLY | SLOW | GARBAGE,
     "asking for the shutdown interface"},
    {Point::EVERYBODY_SHUTDOWN_ALL, "everybody_engine.ShutdownAll", FAIL | NO_REPLY | SLOW, "stopping all engines"},
    {Point::HW_ENUMERATE_SHUTDOWN_ENGINE, "hw_enumerate.ShutdownEngine", FAIL | NO_REPLY | SLOW, "stopping one engine"},
    {Point::I2C_READ, "i2c_read", FAIL | SLOW | GARBAGE, "reading the MIC284 temperature sensor"},
}};
static_assert(memory::is_complete(POINTS));

constexpr memory::Table<FaultKind, KindRow> FAULT_KINDS{{
    {FaultKind::NONE, "none", "nothing goes wrong"},
    {FaultKind::FAIL, "fail", "the operation fails", "its error number, 0 for EIO; of a service, the minor code", 0,
     HIGHEST},
    {FaultKind::NO_REPLY, "no_reply", "the reply never comes"},
    {FaultKind::LATE, "late", "the reply is late", "milliseconds", 0, HOUR_MS},
    {FaultKind::TWICE, "twice", "the reply comes twice"},
    {FaultKind::SLOW, "slow", "the call takes longer", "milliseconds", 0, HOUR_MS},
    {FaultKind::GARBAGE, "garbage", "a wrong value is delivered; GetShutdown returns nil", "the wrong value", LOWEST,
     HIGHEST_WORD},
}};
static_assert(memory::is_complete(FAULT_KINDS));

}  // namespace simulator::model
