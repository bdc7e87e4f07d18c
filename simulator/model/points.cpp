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
constexpr FaultKinds STUCK = FaultKind::STUCK;
constexpr FaultKinds REQUEST = FAIL | NO_REPLY | LATE | TWICE | SLOW | GARBAGE | STUCK;
constexpr FaultKinds COMMAND = FAIL | NO_REPLY | SLOW;

constexpr std::int64_t HOUR_MS = 3'600'000;
constexpr std::int64_t LOWEST = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t HIGHEST = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t HIGHEST_WORD = std::numeric_limits<std::uint32_t>::max();

}  // namespace

constexpr memory::Table<Point, PointRow> POINTS{{
    {Point::RADALT_INIT, "radalt.init", FAIL | SLOW, "opening the board"},
    {Point::RADALT_READ, "radalt.read", FAIL | SLOW | GARBAGE | STUCK, "reading a board register"},
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
    {Point::DDS_PARTICIPANT, "dds.participant", FAIL | SLOW, "creating the process's DDS participant", Crossing::DDS},
    {Point::DDS_WRITE, "dds.write", FAIL | NO_REPLY | TWICE | SLOW, "writing a DDS sample", Crossing::DDS},
    {Point::EVENTS_SEND, "events.send", FAIL | SLOW, "writing to the event log"},
    {Point::ORB_LOOKUP, "orb.lookup", FAIL | SLOW, "looking up a service", Crossing::CORBA},
    {Point::LOCKER_TAKE, "locker.take", SLOW, "taking the framework lock"},
    {Point::LOCKER_INIT_CORE, "locker.Init_core", SLOW, "creating a lock's core"},
    {Point::GUI_SHOW_DIALOG, "gui.ShowDialog", FAIL | NO_REPLY | SLOW | GARBAGE, "showing a dialog", Crossing::CORBA},
    {Point::GUI_SET_DIALOG_SIZE, "gui.SetDialogSize", FAIL | NO_REPLY | SLOW, "sizing a dialog", Crossing::CORBA},
    {Point::EVERYBODY_GET_SHUTDOWN, "everybody_engine.GetShutdown", FAIL | NO_REPLY | SLOW | GARBAGE,
     "asking for the shutdown interface", Crossing::CORBA},
    {Point::EVERYBODY_SHUTDOWN_ALL, "everybody_engine.ShutdownAll", FAIL | NO_REPLY | SLOW, "stopping all engines",
     Crossing::CORBA},
    {Point::HW_ENUMERATE_SHUTDOWN_ENGINE, "hw_enumerate.ShutdownEngine", FAIL | NO_REPLY | SLOW, "stopping one engine",
     Crossing::CORBA},
    {Point::I2C_READ, "i2c_read", FAIL | NO_REPLY | SLOW | GARBAGE | STUCK, "reading the MIC284 temperature sensor",
     Crossing::COMMAND},
    {Point::SHELL_IFCONFIG, "shell.ifconfig", COMMAND, "setting up a network interface", Crossing::COMMAND},
    {Point::SHELL_MOUNT, "shell.mount", COMMAND, "remounting the root file system", Crossing::COMMAND},
    {Point::SHELL_UDHCPC, "shell.udhcpc", COMMAND, "starting the DHCP client", Crossing::COMMAND},
    {Point::SHELL_SHUTDOWN, "shell.shutdown", COMMAND, "running /root/.shutdown", Crossing::COMMAND},
    {Point::FILE_FPGA_VER, "file.FPGA_ver", FAIL | GARBAGE | STUCK, "reading the PCI FPGA version", Crossing::FILE},
    {Point::FILE_BOARD_REV, "file.Board_rev", FAIL | GARBAGE | STUCK, "reading the control board revision",
     Crossing::FILE},
    {Point::FILE_CPLD_VER, "file.CPLD_ver", FAIL | GARBAGE | STUCK, "reading the JTAG CPLD version", Crossing::FILE},
    {Point::FILE_CELSIUS, "file.celsius", FAIL | GARBAGE | STUCK, "reading the processor temperature", Crossing::FILE},
    {Point::FILE_MAX_BRIGHTNESS, "file.max_brightness", FAIL | GARBAGE | STUCK, "reading the highest backlight step",
     Crossing::FILE},
    {Point::FILE_BRIGHTNESS, "file.brightness", FAIL | GARBAGE, "reading and writing the backlight step",
     Crossing::FILE},
    {Point::FILE_BL_POWER, "file.bl_power", FAIL, "writing the backlight power switch", Crossing::FILE},
    {Point::FILE_MIC284, "file.MIC284", FAIL, "writing and reading the output of i2c_read, /tmp/MIC284",
     Crossing::FILE},
}};
static_assert(memory::is_complete(POINTS));

constexpr memory::Table<Crossing, CrossingRow> CROSSINGS{{
    {Crossing::DRIVER, "library", "call of a driver or the framework", {"error number, 0 for EIO", 0, HIGHEST}},
    {Crossing::CORBA, "CORBA", "call of a service", {"minor code of the exception", 0, HIGHEST}},
    {Crossing::DDS, "DDS", "call of the DDS engine", {}},
    {Crossing::COMMAND, "command", "program that is run", {"exit status, 0 for 1", 0, 255}},
    {Crossing::FILE, "file", "file that is read or written", {}, false},
}};
static_assert(memory::is_complete(CROSSINGS));

constexpr memory::Table<FaultKind, KindRow> FAULT_KINDS{{
    {FaultKind::NONE, "none", "nothing goes wrong"},
    {FaultKind::FAIL, "fail", "the operation fails; a file cannot be opened"},
    {FaultKind::NO_REPLY, "no_reply", "the reply never comes, a call or program never returns, a DDS sample is lost"},
    {FaultKind::LATE, "late", "the reply is late", {"milliseconds", 0, HOUR_MS}},
    {FaultKind::TWICE, "twice", "the reply comes twice, a DDS sample is sent twice"},
    {FaultKind::SLOW, "slow", "the call takes longer", {"milliseconds", 0, HOUR_MS}},
    {FaultKind::GARBAGE,
     "garbage",
     "a wrong value is delivered; GetShutdown returns nil",
     {"the wrong value", LOWEST, HIGHEST_WORD}},
    {FaultKind::STUCK, "stuck", "the last value is delivered again and again"},
}};
static_assert(memory::is_complete(FAULT_KINDS));

std::string names_of(FaultKinds kinds) {
  std::string names;
  for (const KindRow& each : FAULT_KINDS) {
    if (kinds.has(each.key)) {
      names += (names.empty() ? "" : ", ") + std::string(each.name);
    }
  }
  return names;
}

}  // namespace simulator::model
