#include "simulator/model/services.h"

#include "simulator/memory/names.h"

namespace simulator::model {
namespace {

constexpr memory::Names<Service> SERVICE_NAMES{"gui_manager", "everybody_engine", "hw_enumerate"};
constexpr memory::Names<ServiceBehaviour> BEHAVIOUR_NAMES{"present", "absent",       "wrong_type",
                                                          "slow",    "dies_in_call", "throws"};

}  // namespace

std::string_view name_of(Service service) noexcept {
  return memory::name_in(SERVICE_NAMES, service);
}

std::string_view name_of(ServiceBehaviour behaviour) noexcept {
  return memory::name_in(BEHAVIOUR_NAMES, behaviour);
}

std::optional<ServiceBehaviour> behaviour_named(std::string_view name) noexcept {
  return memory::named_in<ServiceBehaviour>(BEHAVIOUR_NAMES, name);
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
