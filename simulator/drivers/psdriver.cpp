#include <psdriver.h>

#include "simulator/drivers/psdriver_link.h"

// Stand-in of the power-supply driver; the controller is in the model.

using simulator::model::Reply;

psdriver::psdriver(std::string device) : link_(new Link(device)) {}

psdriver::~psdriver() {
  delete link_;
}

void psdriver::SetBatteryRelativeStateOfChargeCallback(Callback reply) {
  link_->register_reply(Reply::BATTERY_RELATIVE_STATE_OF_CHARGE, reply);
}

void psdriver::SetCharger_BatteryStatusCallback(Callback reply) {
  link_->register_reply(Reply::CHARGER_BATTERY_STATUS, reply);
}

void psdriver::SetSoftwareVersionNumberCallback(Callback reply) {
  link_->register_reply(Reply::SOFTWARE_VERSION_NUMBER, reply);
}

void psdriver::SetPowerSupplyTemperatureValueCallback(Callback reply) {
  link_->register_reply(Reply::POWER_SUPPLY_TEMPERATURE, reply);
}

void psdriver::SetBatteryTemperatureCallback(Callback reply) {
  link_->register_reply(Reply::BATTERY_TEMPERATURE, reply);
}

void psdriver::SetBatteryAverageTimeToEmptyCallback(Callback reply) {
  link_->register_reply(Reply::BATTERY_AVERAGE_TIME_TO_EMPTY, reply);
}

void psdriver::SetBatteryRunTimeToEmptyCallback(Callback reply) {
  link_->register_reply(Reply::BATTERY_RUN_TIME_TO_EMPTY, reply);
}

void psdriver::SetSwitchInterruptCallback(Callback handler) {
  link_->register_interrupt(handler);
}

void psdriver::GetBatteryRelativeStateOfCharge() {
  link_->request(Reply::BATTERY_RELATIVE_STATE_OF_CHARGE);
}

void psdriver::GetCharger_BatteryStatus() {
  link_->request(Reply::CHARGER_BATTERY_STATUS);
}

void psdriver::GetSoftwareVersionNumber() {
  link_->request(Reply::SOFTWARE_VERSION_NUMBER);
}

void psdriver::GetPowerSupplyTemperatureValue() {
  link_->request(Reply::POWER_SUPPLY_TEMPERATURE);
}

void psdriver::GetBatteryTemperature() {
  link_->request(Reply::BATTERY_TEMPERATURE);
}

void psdriver::GetBatteryAverageTimeToEmpty() {
  link_->request(Reply::BATTERY_AVERAGE_TIME_TO_EMPTY);
}

void psdriver::GetBatteryRunTimeToEmpty() {
  link_->request(Reply::BATTERY_RUN_TIME_TO_EMPTY);
}

void psdriver::SetSystemLEDStatus(int& status, bool) {
  link_->set_led_status(status);
}

void psdriver::SetUserInterface_CommunicationStatus(int& status, bool) {
  link_->set_communication_status(status);
}
