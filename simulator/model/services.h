#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

#include "simulator/memory/names.h"
#include "simulator/memory/signal.h"

namespace simulator::model {

/// The services that other processes of the unit offer.
enum class Service : std::uint32_t { GUI_MANAGER, EVERYBODY_ENGINE, HW_ENUMERATE, COUNT };

/// The behaviour of a service.
enum class ServiceBehaviour : std::uint32_t {
  PRESENT,       ///< registered, answers
  ABSENT,        ///< not registered in the naming service
  WRONG_TYPE,    ///< an object of another interface is registered under its path
  SLOW,          ///< answers, `slow_ms` later
  DIES_IN_CALL,  ///< its process dies during a call
  THROWS,        ///< every call throws an exception
  COUNT
};

extern const memory::Table<Service> SERVICES;
extern const memory::Table<ServiceBehaviour> SERVICE_BEHAVIOURS;

inline std::string_view name_of(Service service) noexcept {
  return memory::row_of(SERVICES, service).name;
}
inline std::string_view name_of(ServiceBehaviour behaviour) noexcept {
  return memory::row_of(SERVICE_BEHAVIOURS, behaviour).name;
}

/// The behaviour of the unit's services, settable while they run. Part of the unit's model; any thread of any process.
class Services {
public:
  void set_behaviour(Service service, ServiceBehaviour behaviour) noexcept;
  ServiceBehaviour behaviour(Service service) const noexcept;

  /// Delay of each call of a SLOW service, in milliseconds.
  void set_slow_ms(Service service, std::uint32_t milliseconds) noexcept;
  std::uint32_t slow_ms(Service service) const noexcept;

  /// Raised when a behaviour is set.
  memory::Signal& changed() noexcept { return changed_; }

  /// Set by the services process when the naming service reflects all behaviours set up to count `seen` of `changed`.
  void mark_applied(std::uint32_t seen) noexcept;
  /// Waits until the current behaviours have been applied; false if `limit` passes first or the services have not been
  /// started.
  bool wait_applied(std::chrono::milliseconds limit) const;

private:
  struct State {
    std::atomic<ServiceBehaviour> behaviour{ServiceBehaviour::PRESENT};
    std::atomic<std::uint32_t> slow_ms{0};
  };

  std::array<State, static_cast<std::size_t>(Service::COUNT)> states_;
  memory::Signal changed_;
  std::atomic<std::uint32_t> applied_count_{UINT32_MAX};
  memory::Signal applied_;
};

}  // namespace simulator::model
