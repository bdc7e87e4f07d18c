// Start and exit of the program unit-services.

#include <signal.h>

#include <future>

#include "tests/unit/simulator/services/unit_with_services.h"

namespace services_test {
namespace {

class Program : public UnitWithServices {
protected:
  /// Runs unit-services until it exits and returns its exit status.
  int run(const std::vector<std::string>& arguments, const std::vector<std::string>& variables) {
    std::vector<std::string> command{UNIT_SERVICES};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return ChildProcess(command, variables, file("services.log")).wait();
  }
};

class ProgramEnd : public Program, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Signals, ProgramEnd, testing::Values(SIGTERM, SIGINT),
                         [](const auto& parameter) { return parameter.param == SIGTERM ? "SIGTERM" : "SIGINT"; });

TEST_P(ProgramEnd, TakesTheNamesAwayAndSaysNothing) {
  start_services();
  services_->send(GetParam());
  EXPECT_EQ(services_->wait(), 0);
  EXPECT_FALSE(bound(GUI_MANAGER_PATH));
  EXPECT_FALSE(bound(EVERYBODY_ENGINE_PATH));
  EXPECT_FALSE(bound(HW_ENUMERATE_PATH));
  EXPECT_EQ(services_output(), "");
}

TEST_F(Program, EndsAQuestionThatIsOpen) {
  start_services();
  auto answer = std::async(std::launch::async, [gui = gui_manager()]() mutable {
    return gui->ShowDialog("System Prompt", "Do you want to shutdown?", "Cancel,1|Ok,0", 1);
  });
  ASSERT_TRUE(model().gui().wait_shown("System Prompt", PATIENCE));
  services_->send(SIGTERM);
  EXPECT_EQ(services_->wait(), 0);
  EXPECT_THROW(answer.get(), CORBA::SystemException);
}

TEST_F(Program, EndsASlowCall) {
  start_services();
  model().services().set_slow_ms(Service::HW_ENUMERATE, 3600000);
  behave(Service::HW_ENUMERATE, ServiceBehaviour::SLOW);
  model().count_calls(true);
  auto call =
      std::async(std::launch::async, [engine = hw_enumerate()]() mutable { engine->ShutdownEngine("SYSTEM_ENGINE1"); });
  EXPECT_TRUE(comes_true([this] { return model().faults().calls(Point::HW_ENUMERATE_SHUTDOWN_ENGINE) == 1; }));
  services_->send(SIGTERM);
  EXPECT_EQ(services_->wait(), 0);
  EXPECT_THROW(call.get(), CORBA::SystemException);
}

TEST_F(Program, EndsCleanlyWithADeadService) {
  start_services();
  const Varnok::HwEnumerate_Able_var engine = hw_enumerate();
  behave(Service::HW_ENUMERATE, ServiceBehaviour::DIES_IN_CALL);
  EXPECT_THROW(engine->ShutdownEngine("SYSTEM_ENGINE1"), CORBA::COMM_FAILURE);
  services_->send(SIGTERM);
  EXPECT_EQ(services_->wait(), 0);
  EXPECT_EQ(services_output(), "");
}

TEST_F(Program, EndsCleanlyWhenTheNamingServiceHasGoneBefore) {
  start_services();
  naming_service_.reset();
  services_->send(SIGTERM);
  EXPECT_EQ(services_->wait(), 0);
  EXPECT_EQ(services_output(), "");
}

TEST_F(Program, TakesItsServicesWithItWhenItIsKilled) {
  start_services();
  const Varnok::HwEnumerate_Able_var engine = hw_enumerate();
  services_->send(SIGKILL);
  EXPECT_EQ(services_->wait(), -SIGKILL);
  EXPECT_TRUE(comes_true([this] { return !bound(HW_ENUMERATE_PATH); }));
  EXPECT_TRUE(comes_true([this] { return !bound(GUI_MANAGER_PATH); }));
  EXPECT_TRUE(comes_true([this] { return !bound(EVERYBODY_ENGINE_PATH); }));
  EXPECT_ANY_THROW(engine->ShutdownEngine("SYSTEM_ENGINE1"));
}

TEST_F(Program, StartsAgainOverTheNamesOfAnEarlierRun) {
  start_services();
  behave(Service::HW_ENUMERATE, ServiceBehaviour::DIES_IN_CALL);
  EXPECT_THROW(hw_enumerate()->ShutdownEngine(""), CORBA::COMM_FAILURE);
  services_->send(SIGTERM);
  services_->wait();
  ASSERT_TRUE(bound(HW_ENUMERATE_PATH));
  model().services().set_behaviour(Service::HW_ENUMERATE, ServiceBehaviour::PRESENT);
  start_services();
  EXPECT_NO_THROW(hw_enumerate()->ShutdownEngine(""));
}

TEST_F(Program, RefusesAServiceThatThereIsNot) {
  EXPECT_EQ(run({"--only", "toaster"}, variables()), 2);
  EXPECT_NE(services_output().find("unknown service toaster"), std::string::npos) << services_output();
}

TEST_F(Program, RefusesAnOptionThatThereIsNot) {
  EXPECT_EQ(run({"--all"}, variables()), 2);
}

TEST_F(Program, RefusesToRunWithoutTheNamingServicesPort) {
  EXPECT_EQ(run({}, {"UNIT_RUN=" + file("run/unit")}), 2);
  EXPECT_EQ(services_output(), "unit-services: UNIT_NAMING_PORT must be a port number\n");
}

TEST_F(Program, RefusesANamingServicesPortThatIsNone) {
  for (const char* port : {"", "0", "65536", "-1", "80x", "99999999999999"}) {
    EXPECT_EQ(run({}, {"UNIT_RUN=" + file("run/unit"), std::string("UNIT_NAMING_PORT=") + port}), 2) << port;
  }
}

TEST_F(Program, RefusesToRunWithoutAModel) {
  EXPECT_EQ(run({}, {"UNIT_RUN=" + file("nowhere"), "UNIT_NAMING_PORT=" + std::to_string(naming_port())}), 1);
  EXPECT_NE(services_output().find(file("nowhere/model")), std::string::npos) << services_output();
}

}  // namespace
}  // namespace services_test
