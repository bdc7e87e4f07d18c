// The everybody engine and the hardware enumeration engine from their callers' point of view.

#include <set>

#include "tests/unit/simulator/services/unit_with_services.h"

namespace services_test {
namespace {

class Engines : public UnitWithServices {
protected:
  Engines() { start_services(); }
};

TEST_F(Engines, TheEverybodyEngineIsShutDownWithTheCoreOfItsCaller) {
  model().record().start();
  const Varnok::EverybodyEng::Shutdown_var shutdown = everybody_engine()->GetShutdown();
  ASSERT_FALSE(CORBA::is_nil(shutdown.in()));
  Varnok::Locker_Core core;
  core.process = 4294967295U;
  core.serial = 18446744073709551615U;
  shutdown->ShutdownAll(core);
  EXPECT_EQ(call_texts(), (std::vector<std::string>{
                              "everybody_engine.GetShutdown {}",
                              R"(everybody_engine.ShutdownAll {"process":4294967295,"serial":18446744073709551615})"}));
}

TEST_F(Engines, TheShutdownInterfaceIsTheSameObjectForEveryCaller) {
  const Varnok::EverybodyEng::Interfaces_var engine = everybody_engine();
  const Varnok::EverybodyEng::Shutdown_var first = engine->GetShutdown();
  const Varnok::EverybodyEng::Shutdown_var second = engine->GetShutdown();
  EXPECT_TRUE(first->_is_equivalent(second.in()));
}

TEST_F(Engines, TheEnumerationEngineIsToldTheNameExactly) {
  model().record().start();
  const Varnok::HwEnumerate_Able_var engine = hw_enumerate();
  engine->ShutdownEngine("SYSTEM_ENGINE1");
  engine->ShutdownEngine("");
  engine->ShutdownEngine("a \"b\"\n");
  EXPECT_EQ(call_texts(), (std::vector<std::string>{R"(hw_enumerate.ShutdownEngine {"engine":"SYSTEM_ENGINE1"})",
                                                    R"(hw_enumerate.ShutdownEngine {"engine":""})",
                                                    R"(hw_enumerate.ShutdownEngine {"engine":"a \"b\"\n"})"}));
}

TEST_F(Engines, NothingIsRecordedWhileTheRecordIsOff) {
  model().record().start();
  model().record().stop();
  hw_enumerate()->ShutdownEngine("SYSTEM_ENGINE1");
  EXPECT_TRUE(calls().empty());
}

TEST_F(Engines, TheRecordTellsTheServicesApartAndIsInOrder) {
  model().record().start();
  gui_manager()->SetDialogSize("Shutdown", "Max");
  const Varnok::EverybodyEng::Shutdown_var shutdown(everybody_engine()->GetShutdown());
  hw_enumerate()->ShutdownEngine("SYSTEM_ENGINE1");
  const std::vector<nlohmann::json> record = calls();
  ASSERT_EQ(record.size(), 3U);
  std::set<int> processes;
  for (const nlohmann::json& call : record) {
    processes.insert(call.at("pid").get<int>());
  }
  EXPECT_EQ(processes.size(), 3U);
  EXPECT_EQ(processes.count(static_cast<int>(services_->id())), 0U);
  EXPECT_LT(record[0].at("t_ns").get<std::uint64_t>(), record[1].at("t_ns").get<std::uint64_t>());
  EXPECT_LT(record[1].at("t_ns").get<std::uint64_t>(), record[2].at("t_ns").get<std::uint64_t>());
}

}  // namespace
}  // namespace services_test
