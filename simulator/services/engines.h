#pragma once

#include "everybody_engineS.h"
#include "hw_enumerateS.h"
#include "simulator/services/conduct.h"

namespace simulator::services {

/// The everybody engine's shutdown interface. There are no engines to stop: the call is recorded.
class EverybodyShutdown : public POA_Varnok::EverybodyEng::Shutdown {
public:
  explicit EverybodyShutdown(Conduct& conduct) : conduct_(conduct) {}

  void ShutdownAll(const Varnok::Locker_Core& core) override;

private:
  Conduct& conduct_;
};

/// The everybody engine.
class EverybodyEngine : public POA_Varnok::EverybodyEng::Interfaces {
public:
  EverybodyEngine(model::UnitModel& model, Ending& ending)
      : conduct_(model, model::Service::EVERYBODY_ENGINE, ending), shutdown_(new EverybodyShutdown(conduct_)) {}

  /// The same object for every caller. GARBAGE: nil.
  Varnok::EverybodyEng::Shutdown_ptr GetShutdown() override;

private:
  Conduct conduct_;
  PortableServer::Servant_var<EverybodyShutdown> shutdown_;
};

/// The hardware enumeration engine. There are no engines to stop: the call is recorded.
class HwEnumerate : public POA_Varnok::HwEnumerate_Able {
public:
  HwEnumerate(model::UnitModel& model, Ending& ending) : conduct_(model, model::Service::HW_ENUMERATE, ending) {}

  void ShutdownEngine(const char* engine) override;

private:
  Conduct conduct_;
};

}  // namespace simulator::services
