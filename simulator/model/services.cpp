#include "simulator/model/services.h"

namespace simulator::model {
constexpr memory::Table<Service> SERVICES{{
    {Service::GUI_MANAGER, "gui_manager"},
    {Service::EVERYBODY_ENGINE, "everybody_engine"},
    {Service::HW_ENUMERATE, "hw_enumerate"},
}};
static_assert(memory::is_complete(SERVICES));

constexpr memory::Table<ServiceBehaviour> SERVICE_BEHAVIOURS{{
    {ServiceBehaviour::PRESENT, "present"},
    {ServiceBehaviour::ABSENT, "absent"},
    {ServiceBehaviour::WRONG_TYPE, "wrong_type"},
    {ServiceBehaviour::SLOW, "slow"},
    {ServiceBehaviour::DIES_IN_CALL, "dies_in_call"},
    {ServiceBehaviour::THROWS, "throws"},
}};
static_assert(memory::is_complete(SERVICE_BEHAVIOURS));

void Services::set_behaviour(Service service, ServiceBehaviour behaviour) noexcept {
  states_[static_cast<std::size_t>(service)].behaviour.store(behaviour);
  changed_.raise();
}

ServiceBehaviour Services::behaviour(Service service) const noexcept {
  return states_[static_cast<std::size_t>(service)].behaviour.load();
}

void Services::set_slow_ms(Service service, std::uint32_t milliseconds) noexcept {
  states_[static_cast<std::size_t>(service)].slow_ms.store(milliseconds);
}

std::uint32_t Services::slow_ms(Service service) const noexcept {
  return states_[static_cast<std::size_t>(service)].slow_ms.load();
}

void Services::mark_applied(std::uint32_t seen) noexcept {
  applied_count_.store(seen);
  applied_.raise();
}

bool Services::wait_applied(std::chrono::milliseconds limit) const {
  return applied_.wait_until([&] { return applied_count_.load() == changed_.count(); }, limit);
}

}  // namespace simulator::model
