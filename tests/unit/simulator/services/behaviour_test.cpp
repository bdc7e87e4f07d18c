// Services that are slow, die or throw; each of the three services separately.

#include <chrono>
#include <functional>
#include <future>

#include "tests/unit/simulator/services/unit_with_services.h"

namespace services_test {
namespace {

class Behaviour : public UnitWithServices {
protected:
  Behaviour() { start_services(); }

  /// Calls the service's own operation through a reference that has already been looked up.
  std::function<void()> call_of(Service service) {
    switch (service) {
      case Service::GUI_MANAGER:
        return [gui = gui_manager()]() mutable { gui->SetDialogSize("Shutdown", "Max"); };
      case Service::EVERYBODY_ENGINE:
        return [engine = everybody_engine()]() mutable { Varnok::EverybodyEng::Shutdown_var(engine->GetShutdown()); };
      default:
        return [engine = hw_enumerate()]() mutable { engine->ShutdownEngine("SYSTEM_ENGINE1"); };
    }
  }
};

Service other_than(Service service) {
  return service == Service::GUI_MANAGER ? Service::HW_ENUMERATE : Service::GUI_MANAGER;
}

class BehaviourOf : public Behaviour, public testing::WithParamInterface<Service> {};

INSTANTIATE_TEST_SUITE_P(Services, BehaviourOf,
                         testing::Values(Service::GUI_MANAGER, Service::EVERYBODY_ENGINE, Service::HW_ENUMERATE),
                         [](const auto& parameter) { return std::string(name_of(parameter.param)); });

TEST_P(BehaviourOf, ASlowServiceAnswersNotBeforeItsTime) {
  const auto call = call_of(GetParam());
  model().services().set_slow_ms(GetParam(), 150);
  behave(GetParam(), ServiceBehaviour::SLOW);
  const auto begin = std::chrono::steady_clock::now();
  call();
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(150));
}

TEST_P(BehaviourOf, AServiceThatThrowsAnswersWithAnException) {
  const auto call = call_of(GetParam());
  behave(GetParam(), ServiceBehaviour::THROWS);
  model().record().start();
  EXPECT_THROW(call(), CORBA::INTERNAL);
  EXPECT_THROW(call(), CORBA::INTERNAL);
  EXPECT_EQ(calls().size(), 2U);
  behave(GetParam(), ServiceBehaviour::PRESENT);
  EXPECT_NO_THROW(call());
}

TEST_P(BehaviourOf, AServiceThatDiesBreaksTheCallAndStaysDead) {
  const auto call = call_of(GetParam());
  behave(GetParam(), ServiceBehaviour::DIES_IN_CALL);
  model().record().start();
  EXPECT_THROW(call(), CORBA::COMM_FAILURE);
  EXPECT_THROW(call(), CORBA::SystemException);
  behave(other_than(GetParam()), ServiceBehaviour::THROWS);
  EXPECT_THROW(call_of(GetParam())(), CORBA::SystemException);
  EXPECT_EQ(calls().size(), 1U);
}

TEST_P(BehaviourOf, ADeadServiceKeepsItsName) {
  const auto call = call_of(GetParam());
  behave(GetParam(), ServiceBehaviour::DIES_IN_CALL);
  EXPECT_THROW(call(), CORBA::COMM_FAILURE);
  EXPECT_TRUE(bound(GUI_MANAGER_PATH));
  EXPECT_TRUE(bound(EVERYBODY_ENGINE_PATH));
  EXPECT_TRUE(bound(HW_ENUMERATE_PATH));
  EXPECT_THROW(call_of(GetParam())(), CORBA::SystemException);
}

TEST_P(BehaviourOf, TheDeathOfOneServiceLeavesTheOthersAlone) {
  const auto call = call_of(GetParam());
  behave(GetParam(), ServiceBehaviour::DIES_IN_CALL);
  EXPECT_THROW(call(), CORBA::COMM_FAILURE);
  for (const Service other : {Service::GUI_MANAGER, Service::EVERYBODY_ENGINE, Service::HW_ENUMERATE}) {
    if (other != GetParam()) {
      EXPECT_NO_THROW(call_of(other)());
    }
  }
  EXPECT_TRUE(services_->running());
}

TEST_P(BehaviourOf, ADeadServiceComesBackWhenItIsSetToBePresent) {
  const auto call = call_of(GetParam());
  behave(GetParam(), ServiceBehaviour::DIES_IN_CALL);
  EXPECT_THROW(call(), CORBA::COMM_FAILURE);
  behave(GetParam(), ServiceBehaviour::PRESENT);
  EXPECT_NO_THROW(call_of(GetParam())());
  EXPECT_ANY_THROW(call());
}

TEST_P(BehaviourOf, ADeadServiceThatIsSetToBeAbsentLosesItsName) {
  const auto call = call_of(GetParam());
  behave(GetParam(), ServiceBehaviour::DIES_IN_CALL);
  EXPECT_THROW(call(), CORBA::COMM_FAILURE);
  behave(GetParam(), ServiceBehaviour::ABSENT);
  EXPECT_THROW(call_of(GetParam()), CosNaming::NamingContext::NotFound);
}

TEST_P(BehaviourOf, AServiceCanDieTwice) {
  for (int i = 0; i < 2; ++i) {
    behave(GetParam(), ServiceBehaviour::PRESENT);
    const auto call = call_of(GetParam());
    behave(GetParam(), ServiceBehaviour::DIES_IN_CALL);
    EXPECT_THROW(call(), CORBA::COMM_FAILURE);
  }
}

class OpenQuestion : public Behaviour {
protected:
  OpenQuestion() {
    answer_ = std::async(std::launch::async, [gui = gui_manager()]() mutable {
      return gui->ShowDialog("System Prompt", "Do you want to shutdown?", "Cancel,1|Ok,0", 1);
    });
    EXPECT_TRUE(model().gui().wait_shown("System Prompt", PATIENCE));
  }

  std::future<CORBA::Long> answer_;
};

TEST_F(OpenQuestion, BreaksWhenTheGuiManagerDiesMeanwhile) {
  behave(Service::GUI_MANAGER, ServiceBehaviour::DIES_IN_CALL);
  EXPECT_THROW(answer_.get(), CORBA::COMM_FAILURE);
}

TEST_F(OpenQuestion, EndsInAnExceptionThatIsSetMeanwhile) {
  behave(Service::GUI_MANAGER, ServiceBehaviour::THROWS);
  EXPECT_THROW(answer_.get(), CORBA::INTERNAL);
}

TEST_F(OpenQuestion, OutlivesItsName) {
  behave(Service::GUI_MANAGER, ServiceBehaviour::ABSENT);
  EXPECT_TRUE(model().gui().answer("System Prompt", "Cancel"));
  EXPECT_EQ(answer_.get(), 1);
}

TEST_F(OpenQuestion, IsGoneFromTheScreenOnceANewGuiManagerHasStarted) {
  behave(Service::GUI_MANAGER, ServiceBehaviour::DIES_IN_CALL);
  EXPECT_THROW(answer_.get(), CORBA::COMM_FAILURE);
  EXPECT_EQ(model().gui().dialogs().size(), 1U);
  behave(Service::GUI_MANAGER, ServiceBehaviour::PRESENT);
  EXPECT_TRUE(model().gui().dialogs().empty());
  EXPECT_FALSE(model().gui().answer("System Prompt", "Ok"));
}

}  // namespace
}  // namespace services_test
