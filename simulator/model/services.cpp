#include "simulator/model/services.h"

namespace simulator::model {
namespace {

constexpr memory::Table<Service> SERVICES{{
    {Service::GUI_MANAGER, "gui_manager"},
    {Service::EVERYBODY_ENGINE, "everybody_engine"},
    {Service::HW_ENUMERATE, "hw_enumerate"},
}};
static_assert(memory::is_complete(SERVICES));

constexpr memory::Table<ServiceBehaviour> BEHAVIOURS{{
    {ServiceBehaviour::PRESENT, "present"},
    {ServiceBehaviour::ABSENT, "absent"},
    {ServiceBehaviour::WRONG_TYPE, "wrong_type"},
    {ServiceBehaviour::SLOW, "slow"},
    {ServiceBehaviour::DIES_IN_CALL, "dies_in_call"},
    {ServiceBehaviour::THROWS, "throws"},
}};
static_assert(memory::is_complete(BEHAVIOURS));

}  // namespace

std::string_view name_of(Service service) noexcept {
  return memory::row_of(SERVICES, service).name;
}

std::optional<Service> service_named(std::string_view name) noexcept {
  return memory::named_in(SERVICES, name);
}

std::string_view name_of(ServiceBehaviour behaviour) noexcept {
  return memory::row_of(BEHAVIOURS, behaviour).name;
}

const memory::Table<ServiceBehaviour>& service_behaviours() noexcept {
  return BEHAVIOURS;
}

std::optional<ServiceBehaviour> behaviour_named(std::string_view name) noexcept {
  return memory::named_in(BEHAVIOURS, name);
}

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
