#include <algorithm>
#include <chrono>
#include <limits>
#include <type_traits>
#include <utility>

#include "simulator/settings/fault_text.h"
#include "simulator/settings/settings.h"
#include "simulator/settings/values.h"

namespace simulator::settings {
namespace {

using model::Board;
using model::PowerSupply;
using model::Reply;
using model::Sensors;
using model::Service;
using model::ServiceBehaviour;
using model::Services;
using model::SysfsFile;
using model::UnitFiles;
using model::UnitModel;
using nlohmann::json;

constexpr std::int64_t LOWEST = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t HIGHEST = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t HIGHEST_WORD = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t MINUTE_US = 60'000'000;
constexpr std::int64_t HOUR_MS = 3'600'000;
constexpr std::int64_t LONGEST_TEXT = 4095;

using Choices = std::vector<std::string>;

Setting number(std::string name, std::string unit, std::int64_t minimum, std::int64_t maximum, std::string doc) {
  return {std::move(name), SettingType::NUMBER, std::move(unit), minimum, maximum, {}, std::move(doc), {}, {}};
}

Setting word(std::string name, std::string doc) {
  return {std::move(name), SettingType::WORD, "", 0, HIGHEST_WORD, {}, std::move(doc), {}, {}};
}

Setting flag(std::string name, std::string doc) {
  return {std::move(name), SettingType::FLAG, "", 0, 1, {}, std::move(doc), {}, {}};
}

Setting named(std::string name, SettingType type, Choices choices, std::string doc) {
  return {std::move(name), type, "", 0, 0, std::move(choices), std::move(doc), {}, {}};
}

/// A value of the model as its setting shows it.
template <typename Value>
json shown(const Value& value) {
  if constexpr (std::is_same_v<Value, std::chrono::microseconds>) {
    return value.count();
  } else if constexpr (std::is_same_v<Value, ServiceBehaviour>) {
    return std::string(name_of(value));
  } else if constexpr (std::is_same_v<Value, std::optional<std::string>>) {
    return value ? json(*value) : json(nullptr);
  } else {
    return value;
  }
}

/// Converts a value that has passed check() to the model's type.
template <typename Value>
auto taken(const json& value) {
  if constexpr (std::is_same_v<Value, std::chrono::microseconds>) {
    return value.get<std::uint32_t>();
  } else if constexpr (std::is_same_v<Value, std::uint32_t>) {
    return value.is_string() ? static_cast<std::uint32_t>(std::stoul(value.get<std::string>(), nullptr, 16))
                             : value.get<std::uint32_t>();
  } else if constexpr (std::is_same_v<Value, ServiceBehaviour>) {
    return memory::named_in(model::SERVICE_BEHAVIOURS, value.get<std::string>()).value();
  } else if constexpr (std::is_same_v<Value, std::optional<std::string>>) {
    return value.is_null() ? std::nullopt : std::optional(value.get<std::string>());
  } else {
    return value.get<Value>();
  }
}

/// A setting that reads and writes a part of the model with `Get` and `Set`, under `key` if the part holds several
/// values.
template <auto Part, auto Get, auto Set, typename... Key>
Setting held(Setting setting, Key... key) {
  using Value = std::decay_t<decltype(((std::declval<UnitModel&>().*Part)().*Get)(key...))>;
  setting.get = [=](UnitModel& unit) { return shown<Value>(((unit.*Part)().*Get)(key...)); };
  setting.set = [=](UnitModel& unit, const json& value) { ((unit.*Part)().*Set)(key..., taken<Value>(value)); };
  return setting;
}

Setting register_setting(const std::string& name, std::uint32_t space, std::uint32_t address, const std::string& doc) {
  Setting setting = word(name, doc);
  setting.get = [=](UnitModel& unit) -> json { return unit.board().register_value(space, address); };
  setting.set = [=](UnitModel& unit, const json& value) {
    if (!unit.board().set_register(space, address, taken<std::uint32_t>(value))) {
      throw SettingError(name, "the board has no room for one more register");
    }
  };
  return setting;
}

/// A register with a setting of its own, in address space 1.
struct NamedRegister {
  std::uint32_t address;
  const char* name;
  const char* doc;
};

constexpr NamedRegister NAMED_REGISTERS[] = {
    {0, "board.digital.card_id", "digital board card identifier"},
    {4, "board.digital.card_revision", "digital board card revision"},
    {8, "board.digital.firmware", "digital board firmware word"},
    {40, "board.digital.temperature_count", "digital board temperature, 0.25 degC per step"},
    {128, "board.rf.card_id", "RF board card identifier"},
    {132, "board.rf.card_revision", "RF board card revision"},
    {136, "board.rf.firmware", "RF board firmware word"},
    {Board::RF_CONTROL, "board.rf.control", "RF control register; bit 0 hides the RF ADC"},
};

const NamedRegister* named_register(std::uint32_t space, std::uint32_t address) {
  const auto* const at = std::find_if(std::begin(NAMED_REGISTERS), std::end(NAMED_REGISTERS),
                                      [&](const NamedRegister& each) { return each.address == address; });
  return space == 1 && at != std::end(NAMED_REGISTERS) ? at : nullptr;
}

void add_registers(std::vector<Setting>& all, const std::string& board) {
  for (const NamedRegister& each : NAMED_REGISTERS) {
    if (std::string_view(each.name).substr(0, board.size()) == board) {
      all.push_back(register_setting(each.name, 1, each.address, each.doc));
    }
  }
}

Setting adc_fitted() {
  Setting fitted = flag("board.rf.adc_fitted", "whether the RF ADC converts (bit 0 of RF register 248)");
  fitted.get = [](UnitModel& unit) -> json { return (unit.board().register_value(1, Board::RF_LAST) & 1) != 0; };
  fitted.set = [](UnitModel& unit, const json& value) {
    const std::uint32_t others = unit.board().register_value(1, Board::RF_LAST) & ~1u;
    unit.board().set_register(1, Board::RF_LAST, others | (value.get<bool>() ? 1u : 0u));
  };
  return fitted;
}

Setting transfer_time() {
  Setting transfer = number("board.rf.transfer_time", "us", 0, MINUTE_US, "duration of one RF register transfer");
  transfer.type = SettingType::DURATION;
  transfer.choices = {"never"};
  transfer.get = [](UnitModel& unit) {
    const std::uint32_t time = unit.board().rf_transfer_time();
    return time == Board::NEVER ? json("never") : json(time);
  };
  transfer.set = [](UnitModel& unit, const json& value) {
    unit.board().set_rf_transfer_time(value.is_string() ? Board::NEVER : value.get<std::uint32_t>());
  };
  return transfer;
}

void add_board(std::vector<Setting>& all) {
  all.push_back(held<&UnitModel::board, &Board::handle, &Board::set_handle>(
      number("board.handle", "", 0, HIGHEST, "handle returned by opening the board; older handles become invalid")));
  add_registers(all, "board.digital.");
  all.push_back(held<&UnitModel::board, &Board::rf_present, &Board::set_rf_present>(
      flag("board.rf.present", "whether the RF board is fitted and answers")));
  all.push_back(transfer_time());
  add_registers(all, "board.rf.");
  all.push_back(adc_fitted());
  for (std::uint32_t channel = 0; channel < Board::ADC_CHANNELS; ++channel) {
    const std::string digit = std::to_string(channel);
    all.push_back(held<&UnitModel::board, &Board::adc_count, &Board::set_adc_count>(
        word("board.rf.adc_count." + digit, "RF ADC count on channel " + digit), channel));
  }
}

void add_power_supply(std::vector<Setting>& all) {
  const auto add_reply = [&all](Reply reply, const char* name, const char* unit, const char* doc) {
    all.push_back(held<&UnitModel::power_supply, &PowerSupply::reply, &PowerSupply::set_reply>(
        number(std::string("power_supply.") + name, unit, LOWEST, HIGHEST, doc), reply));
  };
  add_reply(Reply::BATTERY_RELATIVE_STATE_OF_CHARGE, "state_of_charge", "%", "battery charge");
  add_reply(Reply::CHARGER_BATTERY_STATUS, "charger_status", "",
            "status bits: 1 external voltage, 8 charged, 16 no battery");
  add_reply(Reply::SOFTWARE_VERSION_NUMBER, "software_version", "", "controller software version, 10203 for 1.02.03");
  add_reply(Reply::POWER_SUPPLY_TEMPERATURE, "temperature", "0.1 degC", "power-supply temperature");
  add_reply(Reply::BATTERY_TEMPERATURE, "battery_temperature", "degC", "battery temperature");
  add_reply(Reply::BATTERY_AVERAGE_TIME_TO_EMPTY, "average_time_to_empty", "", "time to empty at the average load");
  add_reply(Reply::BATTERY_RUN_TIME_TO_EMPTY, "run_time_to_empty", "", "time to empty at the present load");
  all.push_back(held<&UnitModel::power_supply, &PowerSupply::reply_delay, &PowerSupply::set_reply_delay>(
      number("power_supply.reply_delay", "us", 0, MINUTE_US, "delay between a request and its reply")));
  all.push_back(held<&UnitModel::power_supply, &PowerSupply::led_status, &PowerSupply::set_led_status>(
      number("power_supply.led_status", "", LOWEST, HIGHEST, "last system LED status; -1 if none was set")));
  all.push_back(
      held<&UnitModel::power_supply, &PowerSupply::communication_status, &PowerSupply::set_communication_status>(
          number("power_supply.communication_status", "", LOWEST, HIGHEST,
                 "last user-interface communication status; -1 if none was set")));
}

void add_sensors(std::vector<Setting>& all) {
  all.push_back(held<&UnitModel::sensors, &Sensors::mic284, &Sensors::set_mic284>(
      word("sensors.mic284", "MIC284 temperature register, degrees Celsius")));
  all.push_back(held<&UnitModel::sensors, &Sensors::i2c_read_status, &Sensors::set_i2c_read_status>(
      number("sensors.i2c_read_status", "", 0, 255, "exit status of i2c_read")));
  all.push_back(held<&UnitModel::sensors, &Sensors::i2c_read_prints, &Sensors::set_i2c_read_prints>(
      flag("sensors.i2c_read_prints", "whether i2c_read prints the register")));
}

void add_services(std::vector<Setting>& all) {
  Choices behaviours;
  for (const auto& each : model::SERVICE_BEHAVIOURS) {
    behaviours.emplace_back(each.name);
  }
  const std::pair<Service, std::string> services[] = {{Service::GUI_MANAGER, "GUI manager"},
                                                      {Service::EVERYBODY_ENGINE, "everybody engine"},
                                                      {Service::HW_ENUMERATE, "enumeration engine"}};
  for (const auto& [service, title] : services) {
    const std::string prefix = "services." + std::string(name_of(service));
    all.push_back(held<&UnitModel::services, &Services::behaviour, &Services::set_behaviour>(
        named(prefix + ".behaviour", SettingType::CHOICE, behaviours, "behaviour of the " + title), service));
    all.push_back(held<&UnitModel::services, &Services::slow_ms, &Services::set_slow_ms>(
        number(prefix + ".slow_ms", "ms", 0, HOUR_MS, "additional time per call if slow"), service));
  }
}

void add_sysfs(std::vector<Setting>& all) {
  for (const SysfsFile& file : model::sysfs_files()) {
    Setting text = named("sysfs." + std::string(file.name), SettingType::OPTIONAL_TEXT, {},
                         "/sys/" + std::string(file.path) + ": " + std::string(file.doc));
    text.maximum = LONGEST_TEXT;
    all.push_back(held<&UnitModel::files, &UnitFiles::text, &UnitFiles::set_text>(std::move(text), std::cref(file)));
  }
}

Setting fault_setting(const model::PointRow& row, const Choices& kinds) {
  Setting fault = named("faults." + std::string(row.name), SettingType::FAULT, kinds, std::string(row.doc));
  const model::Point point = row.key;
  fault.get = [point](UnitModel& unit) -> json { return text_of(unit.faults().armed_at(point)); };
  fault.set = [point](UnitModel& unit, const json& value) {
    unit.faults().arm(point, fault_of(point, value.get<std::string>()));
  };
  return fault;
}

void add_faults(std::vector<Setting>& all) {
  for (const model::PointRow& row : model::POINTS) {
    Choices kinds;
    for (const model::KindRow& each : model::FAULT_KINDS) {
      if (row.kinds.has(each.key)) {
        kinds.emplace_back(each.name);
      }
    }
    if (kinds.size() > 1) {
      all.push_back(fault_setting(row, kinds));
    }
  }
}

std::vector<Setting> settings_table() {
  std::vector<Setting> all;
  for (const auto add : {add_board, add_power_supply, add_sensors, add_services, add_sysfs, add_faults}) {
    add(all);
  }
  return all;
}

constexpr std::string_view REGISTER_PREFIX = "board.register.";

/// True if the board does not let anybody set the register.
bool is_out_of_reach(std::uint32_t space, std::uint32_t address) {
  const bool is_request = space == 1 && address == Board::RF_REQUEST;
  const bool is_last = space == 0xFFFFFFFF && address == 0xFFFFFFFF;
  return is_request || is_last;
}

/// The setting board.register.<space>.<address>; none if the name has another form or nobody can set the register.
std::optional<Setting> find_register(const std::string& name) {
  if (name.compare(0, REGISTER_PREFIX.size(), REGISTER_PREFIX) != 0) {
    return std::nullopt;
  }
  const std::string_view numbers = std::string_view(name).substr(REGISTER_PREFIX.size());
  const std::size_t dot = numbers.find('.');
  if (dot == std::string_view::npos) {
    return std::nullopt;
  }
  const auto space = decimal_in(numbers.substr(0, dot));
  const auto address = decimal_in(numbers.substr(dot + 1));
  if (!space || !address || is_out_of_reach(*space, *address)) {
    return std::nullopt;
  }
  if (const NamedRegister* own = named_register(*space, *address)) {
    return register_setting(own->name, *space, *address, own->doc);
  }
  return register_setting(name, *space, *address, "board register");
}

}  // namespace

const std::vector<Setting>& settings() {
  static const auto& all = *new std::vector<Setting>(settings_table());
  return all;
}

std::optional<Setting> find_setting(const std::string& name) {
  const auto& all = settings();
  const auto at = std::find_if(all.begin(), all.end(), [&](const Setting& each) { return each.name == name; });
  return at != all.end() ? std::optional(*at) : find_register(name);
}

}  // namespace simulator::settings
