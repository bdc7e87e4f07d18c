// The names under which the services are registered.

#include "tests/unit/simulator/services/unit_with_services.h"

namespace services_test {
namespace {

class Naming : public UnitWithServices {};

TEST_F(Naming, EveryServiceIsFoundUnderItsPath) {
  start_services();
  EXPECT_FALSE(CORBA::is_nil(gui_manager().in()));
  EXPECT_FALSE(CORBA::is_nil(everybody_engine().in()));
  EXPECT_FALSE(CORBA::is_nil(hw_enumerate().in()));
}

TEST_F(Naming, TheGuiManagerHasNoInstanceAndTheEnginesHave) {
  start_services();
  EXPECT_THROW(resolve({"Halcyra", "local", "GUIManager", "1"}), CosNaming::NamingContext::NotFound);
  const CORBA::Object_var engine = resolve({"Halcyra", "local", "EVERYBODYENG"});
  EXPECT_FALSE(CORBA::is_nil(CosNaming::NamingContext::_narrow(engine.in())));
}

TEST_F(Naming, NothingIsFoundBeforeTheServicesAreStarted) {
  EXPECT_FALSE(bound({"Halcyra"}));
  EXPECT_FALSE(model().services().wait_applied(std::chrono::milliseconds(0)));
}

TEST_F(Naming, AnAbsentServiceIsNotFound) {
  start_services();
  behave(Service::GUI_MANAGER, ServiceBehaviour::ABSENT);
  behave(Service::EVERYBODY_ENGINE, ServiceBehaviour::ABSENT);
  behave(Service::HW_ENUMERATE, ServiceBehaviour::ABSENT);
  EXPECT_FALSE(bound(GUI_MANAGER_PATH));
  EXPECT_FALSE(bound(EVERYBODY_ENGINE_PATH));
  EXPECT_FALSE(bound(HW_ENUMERATE_PATH));
}

TEST_F(Naming, AServiceThatIsAbsentFromTheStartIsNotFoundAndTheOthersAre) {
  model().services().set_behaviour(Service::EVERYBODY_ENGINE, ServiceBehaviour::ABSENT);
  start_services();
  EXPECT_TRUE(bound(GUI_MANAGER_PATH));
  EXPECT_FALSE(bound(EVERYBODY_ENGINE_PATH));
  EXPECT_TRUE(bound(HW_ENUMERATE_PATH));
}

TEST_F(Naming, AnAbsentServiceComesBack) {
  start_services();
  behave(Service::HW_ENUMERATE, ServiceBehaviour::ABSENT);
  behave(Service::HW_ENUMERATE, ServiceBehaviour::PRESENT);
  model().record().start();
  hw_enumerate()->ShutdownEngine("SYSTEM_ENGINE1");
  EXPECT_EQ(call_texts(), std::vector<std::string>{R"(hw_enumerate.ShutdownEngine {"engine":"SYSTEM_ENGINE1"})"});
}

TEST_F(Naming, AServiceOfTheWrongTypeIsAnObjectThatNarrowsToNil) {
  start_services();
  behave(Service::GUI_MANAGER, ServiceBehaviour::WRONG_TYPE);
  behave(Service::EVERYBODY_ENGINE, ServiceBehaviour::WRONG_TYPE);
  behave(Service::HW_ENUMERATE, ServiceBehaviour::WRONG_TYPE);
  EXPECT_TRUE(bound(GUI_MANAGER_PATH));
  EXPECT_TRUE(CORBA::is_nil(gui_manager().in()));
  EXPECT_TRUE(bound(EVERYBODY_ENGINE_PATH));
  EXPECT_TRUE(CORBA::is_nil(everybody_engine().in()));
  EXPECT_TRUE(bound(HW_ENUMERATE_PATH));
  EXPECT_TRUE(CORBA::is_nil(hw_enumerate().in()));
}

TEST_F(Naming, AServiceOfTheWrongTypeGetsItsRightTypeBack) {
  start_services();
  behave(Service::GUI_MANAGER, ServiceBehaviour::WRONG_TYPE);
  behave(Service::GUI_MANAGER, ServiceBehaviour::PRESENT);
  EXPECT_FALSE(CORBA::is_nil(gui_manager().in()));
}

TEST_F(Naming, AReferenceFoundBeforeStaysGoodWhenTheNameGoes) {
  start_services();
  const Varnok::HwEnumerate_Able_var engine = hw_enumerate();
  behave(Service::HW_ENUMERATE, ServiceBehaviour::ABSENT);
  model().record().start();
  engine->ShutdownEngine("SYSTEM_ENGINE1");
  EXPECT_EQ(calls().size(), 1U);
}

TEST_F(Naming, OneServiceAloneRegistersOnlyItself) {
  services_ = std::make_unique<ChildProcess>(std::vector<std::string>{UNIT_SERVICES, "--only", "everybody_engine"},
                                             variables(), file("services.log"));
  ASSERT_TRUE(comes_true([this] { return bound(EVERYBODY_ENGINE_PATH); })) << services_output();
  EXPECT_FALSE(CORBA::is_nil(everybody_engine().in()));
  EXPECT_FALSE(bound(GUI_MANAGER_PATH));
  EXPECT_FALSE(bound(HW_ENUMERATE_PATH));
}

}  // namespace
}  // namespace services_test
