#include "simulator/settings/settings_table.h"

#include <limits>

namespace simulator::settings {
namespace {

using model::Board;
using model::Reply;
using model::Service;
using model::ServiceBehaviour;
using model::SysfsFile;
using model::UnitModel;
using nlohmann::json;

constexpr std::int64_t LOWEST = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t HIGHEST = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t MINUTE_US = 60'000'000;
constexpr std::int64_t HOUR_MS = 3'600'000;
constexpr std::int64_t LONGEST_TEXT = 4095;

std::uint32_t word_of(const json& value) {
  return value.is_string() ? static_cast<std::uint32_t>(std::stoul(value.get<std::string>(), nullptr, 16))
                           : value.get<std::uint32_t>();
}

Setting number(std::string name, std::string unit, std::int64_t minimum, std::int64_t maximum, std::string doc) {
  return {std::move(name), SettingType::NUMBER, std::move(unit), minimum, maximum, {}, std::move(doc), {}, {}};
}

Setting flag(std::string name, std::string doc) {
  return {std::move(name), SettingType::FLAG, "", 0, 1, {}, std::move(doc), {}, {}};
}

void add_board(std::vector<Setting>& all) {
  Setting handle = number("board.handle", "", 0, HIGHEST, "what opening the board returns; older handles stop working");
  handle.get = [](UnitModel& unit) -> json { return unit.board().handle(); };
  handle.set = [](UnitModel& unit, const json& value) { unit.board().set_handle(value.get<std::int32_t>()); };
  all.push_back(handle);
  all.push_back(register_setting("board.digital.card_id", 1, 0, "digital board card identifier"));
  all.push_back(register_setting("board.digital.card_revision", 1, 4, "digital board card revision"));
  all.push_back(register_setting("board.digital.firmware", 1, 8, "digital board firmware word"));
  all.push_back(
      register_setting("board.digital.temperature_count", 1, 40, "digital board temperature, 0.25 degC a step"));
}

void add_rf_adc(std::vector<Setting>& all) {
  Setting fitted = flag("board.rf.adc_fitted", "whether the RF ADC converts (bit 0 of RF register 248)");
  fitted.get = [](UnitModel& unit) -> json { return (unit.board().register_value(1, Board::RF_LAST) & 1) != 0; };
  fitted.set = [](UnitModel& unit, const json& value) {
    const std::uint32_t others = unit.board().register_value(1, Board::RF_LAST) & ~1u;
    unit.board().set_register(1, Board::RF_LAST, others | (value.get<bool>() ? 1u : 0u));
  };
  all.push_back(fitted);
  for (std::uint32_t channel = 0; channel < Board::ADC_CHANNELS; ++channel) {
    Setting count = register_setting("board.rf.adc_count." + std::to_string(channel), 1, Board::RF_ADC,
                                     "RF ADC count on channel " + std::to_string(channel));
    count.get = [channel](UnitModel& unit) -> json { return unit.board().adc_count(channel); };
    count.set = [channel](UnitModel& unit, const json& value) { unit.board().set_adc_count(channel, word_of(value)); };
    all.push_back(count);
  }
}

void add_rf_board(std::vector<Setting>& all) {
  Setting present = flag("board.rf.present", "whether the RF board is fitted and answers");
  present.get = [](UnitModel& unit) -> json { return unit.board().rf_present(); };
  present.set = [](UnitModel& unit, const json& value) { unit.board().set_rf_present(value.get<bool>()); };
  all.push_back(present);
  Setting transfer = number("board.rf.transfer_time", "us", 0, MINUTE_US, "how long one RF register transfer takes");
  transfer.type = SettingType::DURATION;
  transfer.choices = {"never"};
  transfer.get = [](UnitModel& unit) -> json {
    const std::uint32_t time = unit.board().rf_transfer_time();
    return time == Board::NEVER ? json("never") : json(time);
  };
  transfer.set = [](UnitModel& unit, const json& value) {
    unit.board().set_rf_transfer_time(value.is_string() ? Board::NEVER : value.get<std::uint32_t>());
  };
  all.push_back(transfer);
  all.push_back(register_setting("board.rf.card_id", 1, 128, "RF board card identifier"));
  all.push_back(register_setting("board.rf.card_revision", 1, 132, "RF board card revision"));
  all.push_back(register_setting("board.rf.firmware", 1, 136, "RF board firmware word"));
  all.push_back(register_setting("board.rf.control", 1, Board::RF_CONTROL, "RF control; bit 0 hides the RF ADC"));
  add_rf_adc(all);
}

void add_reply(std::vector<Setting>& all, Reply reply, const std::string& name, std::string unit, std::string doc) {
  Setting setting = number("power_supply." + name, std::move(unit), LOWEST, HIGHEST, std::move(doc));
  setting.get = [reply](UnitModel& target) -> json { return target.power_supply().reply(reply); };
  setting.set = [reply](UnitModel& target, const json& value) {
    target.power_supply().set_reply(reply, value.get<std::int32_t>());
  };
  all.push_back(setting);
}

void add_power_supply(std::vector<Setting>& all) {
  add_reply(all, Reply::BATTERY_RELATIVE_STATE_OF_CHARGE, "state_of_charge", "%", "battery charge");
  add_reply(all, Reply::CHARGER_BATTERY_STATUS, "charger_status", "",
            "status bits: 1 external voltage, 8 charged, 16 no battery");
  add_reply(all, Reply::SOFTWARE_VERSION_NUMBER, "software_version", "", "controller software, 10203 for 1.02.03");
  add_reply(all, Reply::POWER_SUPPLY_TEMPERATURE, "temperature", "0.1 degC", "power-supply temperature");
  add_reply(all, Reply::BATTERY_TEMPERATURE, "battery_temperature", "degC", "battery temperature");
  add_reply(all, Reply::BATTERY_AVERAGE_TIME_TO_EMPTY, "average_time_to_empty", "",
            "time to empty at the average load");
  add_reply(all, Reply::BATTERY_RUN_TIME_TO_EMPTY, "run_time_to_empty", "", "time to empty at the present load");
  Setting delay = number("power_supply.reply_delay", "us", 0, MINUTE_US, "from a request to its reply");
  delay.get = [](UnitModel& unit) -> json { return unit.power_supply().reply_delay().count(); };
  delay.set = [](UnitModel& unit, const json& value) {
    unit.power_supply().set_reply_delay(value.get<std::uint32_t>());
  };
  all.push_back(delay);
  Setting led = number("power_supply.led_status", "", LOWEST, HIGHEST, "system LED status last set; -1 none yet");
  led.get = [](UnitModel& unit) -> json { return unit.power_supply().led_status(); };
  led.set = [](UnitModel& unit, const json& value) { unit.power_supply().set_led_status(value.get<std::int32_t>()); };
  all.push_back(led);
  Setting communication = number("power_supply.communication_status", "", LOWEST, HIGHEST,
                                 "user-interface communication status last set; -1 none yet");
  communication.get = [](UnitModel& unit) -> json { return unit.power_supply().communication_status(); };
  communication.set = [](UnitModel& unit, const json& value) {
    unit.power_supply().set_communication_status(value.get<std::int32_t>());
  };
  all.push_back(communication);
}

void add_sensors(std::vector<Setting>& all) {
  Setting mic284 = register_setting("sensors.mic284", 0, 0, "MIC284 temperature register, degrees Celsius");
  mic284.get = [](UnitModel& unit) -> json { return unit.sensors().mic284(); };
  mic284.set = [](UnitModel& unit, const json& value) { unit.sensors().set_mic284(word_of(value)); };
  all.push_back(mic284);
  Setting status = number("sensors.i2c_read_status", "", 0, 255, "status with which i2c_read ends");
  status.get = [](UnitModel& unit) -> json { return unit.sensors().i2c_read_status(); };
  status.set = [](UnitModel& unit, const json& value) {
    unit.sensors().set_i2c_read_status(value.get<std::int32_t>());
  };
  all.push_back(status);
  Setting prints = flag("sensors.i2c_read_prints", "whether i2c_read prints the register");
  prints.get = [](UnitModel& unit) -> json { return unit.sensors().i2c_read_prints(); };
  prints.set = [](UnitModel& unit, const json& value) { unit.sensors().set_i2c_read_prints(value.get<bool>()); };
  all.push_back(prints);
}

std::vector<std::string> behaviour_names() {
  std::vector<std::string> names;
  for (std::uint32_t each = 0; each < static_cast<std::uint32_t>(ServiceBehaviour::COUNT); ++each) {
    names.emplace_back(name_of(static_cast<ServiceBehaviour>(each)));
  }
  return names;
}

void add_service(std::vector<Setting>& all, Service service) {
  const std::string prefix = "services." + std::string(name_of(service));
  Setting behaviour{prefix + ".behaviour", SettingType::CHOICE, "", 0, 0, behaviour_names(), "how it behaves", {}, {}};
  behaviour.get = [service](UnitModel& unit) -> json {
    return std::string(name_of(unit.services().behaviour(service)));
  };
  behaviour.set = [service](UnitModel& unit, const json& value) {
    unit.services().set_behaviour(service, model::behaviour_named(value.get<std::string>()).value());
  };
  all.push_back(behaviour);
  Setting slow = number(prefix + ".slow_ms", "ms", 0, HOUR_MS, "how much longer a call of it takes while slow");
  slow.get = [service](UnitModel& unit) -> json { return unit.services().slow_ms(service); };
  slow.set = [service](UnitModel& unit, const json& value) {
    unit.services().set_slow_ms(service, value.get<std::uint32_t>());
  };
  all.push_back(slow);
}

void add_sysfs(std::vector<Setting>& all, const SysfsFile& file) {
  Setting text{"sysfs." + std::string(file.name), SettingType::OPTIONAL_TEXT, "", 0, LONGEST_TEXT, {}, "", {}, {}};
  text.doc = "/sys/" + std::string(file.path) + ": " + std::string(file.doc);
  text.get = [&file](UnitModel& unit) -> json {
    const auto held = unit.sysfs().text(file);
    return held ? json(*held) : json(nullptr);
  };
  text.set = [&file](UnitModel& unit, const json& value) {
    unit.sysfs().set_text(file, value.is_null() ? std::nullopt : std::optional(value.get<std::string>()));
  };
  all.push_back(text);
}

}  // namespace

Setting register_setting(const std::string& name, std::uint32_t space, std::uint32_t address, const std::string& doc) {
  Setting setting{name, SettingType::WORD, "", 0, std::numeric_limits<std::uint32_t>::max(), {}, doc, {}, {}};
  setting.get = [=](UnitModel& unit) -> json { return unit.board().register_value(space, address); };
  setting.set = [=](UnitModel& unit, const json& value) {
    if (!unit.board().set_register(space, address, word_of(value))) {
      throw SettingError(name, "the board has no room for one more register");
    }
  };
  return setting;
}

std::vector<Setting> settings_table() {
  std::vector<Setting> all;
  add_board(all);
  add_rf_board(all);
  add_power_supply(all);
  add_sensors(all);
  for (const Service service : {Service::GUI_MANAGER, Service::EVERYBODY_ENGINE, Service::HW_ENUMERATE}) {
    add_service(all, service);
  }
  for (const SysfsFile& file : model::sysfs_files()) {
    add_sysfs(all, file);
  }
  return all;
}

}  // namespace simulator::settings
