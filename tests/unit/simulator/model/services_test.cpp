#include "simulator/model/services.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using simulator::memory::named_in;
using simulator::model::Service;
using simulator::model::SERVICE_BEHAVIOURS;
using simulator::model::ServiceBehaviour;
using simulator::model::Services;

constexpr std::chrono::milliseconds AT_ONCE{0};

class ServicesModelTest : public ::testing::Test {
protected:
  std::unique_ptr<Services> owner_ = std::make_unique<Services>();
  Services& services_ = *owner_;
};

TEST_F(ServicesModelTest, AllServicesArePresentAtFirst) {
  for (const Service service : {Service::GUI_MANAGER, Service::EVERYBODY_ENGINE, Service::HW_ENUMERATE}) {
    EXPECT_EQ(services_.behaviour(service), ServiceBehaviour::PRESENT);
    EXPECT_EQ(services_.slow_ms(service), 0U);
  }
}

TEST_F(ServicesModelTest, EachServiceHasABehaviourOfItsOwn) {
  services_.set_behaviour(Service::GUI_MANAGER, ServiceBehaviour::SLOW);
  services_.set_slow_ms(Service::GUI_MANAGER, 250);
  services_.set_behaviour(Service::HW_ENUMERATE, ServiceBehaviour::THROWS);
  EXPECT_EQ(services_.behaviour(Service::GUI_MANAGER), ServiceBehaviour::SLOW);
  EXPECT_EQ(services_.slow_ms(Service::GUI_MANAGER), 250U);
  EXPECT_EQ(services_.behaviour(Service::EVERYBODY_ENGINE), ServiceBehaviour::PRESENT);
  EXPECT_EQ(services_.behaviour(Service::HW_ENUMERATE), ServiceBehaviour::THROWS);
}

TEST_F(ServicesModelTest, NothingIsAppliedBeforeTheServicesHaveStarted) {
  EXPECT_FALSE(services_.wait_applied(AT_ONCE));
  services_.mark_applied(services_.changed().count());
  EXPECT_TRUE(services_.wait_applied(AT_ONCE));
}

TEST_F(ServicesModelTest, AChangeIsAppliedOnceItsReaderSaysSo) {
  services_.mark_applied(services_.changed().count());
  services_.set_behaviour(Service::GUI_MANAGER, ServiceBehaviour::ABSENT);
  EXPECT_FALSE(services_.wait_applied(AT_ONCE));
  const std::uint32_t seen = services_.changed().count();
  services_.set_behaviour(Service::GUI_MANAGER, ServiceBehaviour::WRONG_TYPE);
  services_.mark_applied(seen);
  EXPECT_FALSE(services_.wait_applied(AT_ONCE));
  services_.mark_applied(services_.changed().count());
  EXPECT_TRUE(services_.wait_applied(AT_ONCE));
}

TEST_F(ServicesModelTest, NamesArePaired) {
  EXPECT_EQ(name_of(Service::GUI_MANAGER), "gui_manager");
  EXPECT_EQ(name_of(Service::EVERYBODY_ENGINE), "everybody_engine");
  EXPECT_EQ(name_of(Service::HW_ENUMERATE), "hw_enumerate");
  EXPECT_EQ(named_in(SERVICE_BEHAVIOURS, "present"), ServiceBehaviour::PRESENT);
  EXPECT_EQ(named_in(SERVICE_BEHAVIOURS, "absent"), ServiceBehaviour::ABSENT);
  EXPECT_EQ(named_in(SERVICE_BEHAVIOURS, "wrong_type"), ServiceBehaviour::WRONG_TYPE);
  EXPECT_EQ(named_in(SERVICE_BEHAVIOURS, "slow"), ServiceBehaviour::SLOW);
  EXPECT_EQ(named_in(SERVICE_BEHAVIOURS, "dies_in_call"), ServiceBehaviour::DIES_IN_CALL);
  EXPECT_EQ(named_in(SERVICE_BEHAVIOURS, "throws"), ServiceBehaviour::THROWS);
  EXPECT_EQ(named_in(SERVICE_BEHAVIOURS, "Present"), std::nullopt);
}

}  // namespace
