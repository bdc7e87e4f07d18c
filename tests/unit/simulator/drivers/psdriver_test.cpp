#include <psdriver.h>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "tests/unit/simulator/drivers/driver_fixture.h"

namespace {

using simulator::model::Reply;
using simulator_test::hear;
using simulator_test::heard;
using simulator_test::Heard;
using simulator_test::ThisUnit;

constexpr char DEVICE[] = "/dev/null";

class PsdriverTest : public simulator_test::DriverTest {
protected:
  psdriver driver_{DEVICE};
};

TEST_F(PsdriverTest, EachRequestIsAnsweredThroughTheFunctionOfItsKind) {
  for (int kind = 0; kind < 7; ++kind) {
    power_supply_.set_reply(static_cast<Reply>(kind), 10 + kind);
  }
  driver_.SetBatteryRelativeStateOfChargeCallback(hear<'a'>);
  driver_.SetCharger_BatteryStatusCallback(hear<'b'>);
  driver_.SetSoftwareVersionNumberCallback(hear<'c'>);
  driver_.SetPowerSupplyTemperatureValueCallback(hear<'d'>);
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  driver_.SetBatteryAverageTimeToEmptyCallback(hear<'f'>);
  driver_.SetBatteryRunTimeToEmptyCallback(hear<'g'>);
  driver_.GetBatteryRunTimeToEmpty();
  driver_.GetBatteryAverageTimeToEmpty();
  driver_.GetBatteryTemperature();
  driver_.GetPowerSupplyTemperatureValue();
  driver_.GetSoftwareVersionNumber();
  driver_.GetCharger_BatteryStatus();
  driver_.GetBatteryRelativeStateOfCharge();
  EXPECT_EQ(heard.at_least(7),
            (Heard::Calls{{'g', 16}, {'f', 15}, {'e', 14}, {'d', 13}, {'c', 12}, {'b', 11}, {'a', 10}}));
}

TEST_F(PsdriverTest, RepliesKeepTheOrderOfTheRequestsWhileTheDelayShrinks) {
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  driver_.SetCharger_BatteryStatusCallback(hear<'b'>);
  power_supply_.set_reply_delay(20'000);
  driver_.GetBatteryTemperature();
  power_supply_.set_reply_delay(0);
  driver_.GetCharger_BatteryStatus();
  const Heard::Calls calls = heard.at_least(2);
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_EQ(calls[0].first, 'e');
  EXPECT_EQ(calls[1].first, 'b');
}

TEST_F(PsdriverTest, AReplyWaitsOutItsDelay) {
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  power_supply_.set_reply_delay(5'000);
  const auto asked = std::chrono::steady_clock::now();
  driver_.GetBatteryTemperature();
  heard.at_least(1);
  EXPECT_GE(std::chrono::steady_clock::now() - asked, std::chrono::microseconds(5'000));
}

TEST_F(PsdriverTest, CallBacksMayMakeRequestsThemselves) {
  static psdriver* driver = nullptr;
  driver = &driver_;
  driver_.SetCharger_BatteryStatusCallback(hear<'b'>);
  driver_.SetBatteryTemperatureCallback([](int value) {
    heard.add('e', value);
    driver->GetCharger_BatteryStatus();
  });
  driver_.GetBatteryTemperature();
  const Heard::Calls calls = heard.at_least(2);
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_EQ(calls[1].first, 'b');
}

TEST_F(PsdriverTest, AnInterruptWaitsForTheRunningCallBack) {
  static std::mutex running;
  std::unique_lock held(running);
  driver_.SetSwitchInterruptCallback(hear<'i'>);
  driver_.SetBatteryTemperatureCallback([](int value) {
    heard.add('<', value);
    const std::lock_guard wait(running);
    heard.add('>', value);
  });
  power_supply_.set_reply(Reply::BATTERY_TEMPERATURE, 27);
  driver_.GetBatteryTemperature();
  ASSERT_EQ(heard.at_least(1), (Heard::Calls{{'<', 27}}));
  power_supply_.raise_interrupt(0x41);
  held.unlock();
  EXPECT_EQ(heard.at_least(3), (Heard::Calls{{'<', 27}, {'>', 27}, {'i', 0x41}}));
}

TEST_F(PsdriverTest, InterruptsOfAnotherProcessArriveInOrder) {
  driver_.SetSwitchInterruptCallback(hear<'i'>);
  const std::string path = ThisUnit::get().file("model");
  const pid_t child = ::fork();
  if (child == 0) {
    auto unit = simulator::model::UnitModel::open(path);
    for (const int value : {0x40, 0, -1}) {
      unit.power_supply().raise_interrupt(value);
    }
    ::_exit(0);
  }
  EXPECT_EQ(heard.at_least(3), (Heard::Calls{{'i', 0x40}, {'i', 0}, {'i', -1}}));
  ::waitpid(child, nullptr, 0);
  EXPECT_TRUE(power_supply_.wait_interrupt_handled(power_supply_.interrupts_raised(), std::chrono::seconds(60)));
}

TEST_F(PsdriverTest, AnInterruptRaisedBeforeTheDriverWasOpenedIsNotForIt) {
  power_supply_.raise_interrupt(1);
  psdriver later(DEVICE);
  later.SetSwitchInterruptCallback(hear<'l'>);
  const std::uint64_t number = power_supply_.raise_interrupt(2);
  EXPECT_EQ(heard.at_least(1), (Heard::Calls{{'l', 2}}));
  EXPECT_TRUE(power_supply_.wait_interrupt_handled(number, std::chrono::seconds(60)));
}

TEST_F(PsdriverTest, AnInterruptWithoutHandlerIsDropped) {
  const std::uint64_t number = power_supply_.raise_interrupt(1);
  EXPECT_TRUE(power_supply_.wait_interrupt_handled(number, std::chrono::seconds(60)));
  driver_.SetSwitchInterruptCallback(hear<'i'>);
  power_supply_.raise_interrupt(2);
  EXPECT_EQ(heard.at_least(1), (Heard::Calls{{'i', 2}}));
}

TEST_F(PsdriverTest, ADriverFarBehindGetsEveryInterruptThatWasRaised) {
  static std::mutex running;
  std::unique_lock held(running);
  driver_.SetSwitchInterruptCallback([](int value) {
    heard.add('i', value);
    const std::lock_guard wait(running);
  });
  power_supply_.raise_interrupt(0);
  heard.at_least(1);
  for (int value = 1; value < 256; ++value) {
    power_supply_.raise_interrupt(value);
  }
  EXPECT_THROW(power_supply_.raise_interrupt(256), simulator::model::InterruptsFull);
  held.unlock();
  const Heard::Calls calls = heard.at_least(256);
  ASSERT_EQ(calls.size(), 256U);
  for (int value = 0; value < 256; ++value) {
    EXPECT_EQ(calls[static_cast<std::size_t>(value)], (std::pair<char, int>('i', value)));
  }
  ASSERT_TRUE(power_supply_.wait_interrupt_handled(power_supply_.interrupts_raised(), std::chrono::seconds(60)));
  power_supply_.raise_interrupt(300);
  EXPECT_EQ(heard.at_least(257)[256].second, 300);
}

TEST_F(PsdriverTest, TheSlowestOfTwoDriversLosesNothing) {
  static std::mutex running;
  std::unique_lock held(running);
  driver_.SetSwitchInterruptCallback([](int) { const std::lock_guard wait(running); });
  std::uint64_t last = 0;
  {
    psdriver other(DEVICE);
    for (int value = 0; value < 256; ++value) {
      last = power_supply_.raise_interrupt(value);
    }
    EXPECT_TRUE(power_supply_.wait_interrupt_handled(last, std::chrono::seconds(60)));
    EXPECT_THROW(power_supply_.raise_interrupt(256), simulator::model::InterruptsFull);
  }
  EXPECT_THROW(power_supply_.raise_interrupt(256), simulator::model::InterruptsFull);
  held.unlock();
}

TEST_F(PsdriverTest, ADriverTooManyIsRefused) {
  std::vector<std::unique_ptr<psdriver>> drivers;
  try {
    for (;;) {
      drivers.push_back(std::make_unique<psdriver>(DEVICE));
    }
  } catch (const psdriverError& error) {
    EXPECT_STREQ(error.what(), "psdriver.open: Too many open files");
  }
  EXPECT_EQ(drivers.size(), 63U);
  drivers.clear();
  EXPECT_NO_THROW(psdriver{DEVICE});
}

TEST_F(PsdriverTest, StatusesReachTheController) {
  int led = 12;
  int communication = 0x100;
  driver_.SetSystemLEDStatus(led, false);
  driver_.SetUserInterface_CommunicationStatus(communication, false);
  EXPECT_EQ(power_supply_.led_status(), 12);
  EXPECT_EQ(power_supply_.communication_status(), 0x100);
  EXPECT_EQ(led, 12);
  EXPECT_EQ(communication, 0x100);
}

TEST_F(PsdriverTest, EveryCrossingIsRecordedWithItsReply) {
  unit_.record().start();
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  power_supply_.set_reply(Reply::BATTERY_TEMPERATURE, 27);
  driver_.GetBatteryTemperature();
  heard.at_least(1);
  std::vector<std::string> crossings;
  for (const std::string& line : doubles::lines_of(ThisUnit::get().file("calls.jsonl"))) {
    crossings.push_back(line.substr(line.find("\"at\"")));
  }
  EXPECT_EQ(crossings, (std::vector<std::string>{
                           R"("at":"psdriver.SetBatteryTemperatureCallback","args":{}})",
                           R"("at":"psdriver.GetBatteryTemperature","args":{}})",
                           R"("at":"psdriver.reply","args":{"to":"psdriver.GetBatteryTemperature","value":27}})"}));
}

TEST_F(PsdriverTest, DestructionDropsWhatIsOutstanding) {
  {
    psdriver short_lived(DEVICE);
    short_lived.SetBatteryTemperatureCallback(hear<'s'>);
    power_supply_.set_reply_delay(50'000'000);
    short_lived.GetBatteryTemperature();
  }
  power_supply_.set_reply_delay(0);
  driver_.SetCharger_BatteryStatusCallback(hear<'b'>);
  driver_.GetCharger_BatteryStatus();
  EXPECT_EQ(heard.at_least(1)[0].first, 'b');
}

TEST_F(PsdriverTest, ThreadsMayAskAtTheSameTime) {
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  driver_.SetCharger_BatteryStatusCallback(hear<'b'>);
  std::thread one([&] {
    for (int request = 0; request < 200; ++request) {
      driver_.GetBatteryTemperature();
    }
  });
  std::thread other([&] {
    for (int request = 0; request < 200; ++request) {
      driver_.GetCharger_BatteryStatus();
    }
  });
  one.join();
  other.join();
  EXPECT_EQ(heard.at_least(400).size(), 400U);
  const auto threads = heard.threads();
  EXPECT_EQ(std::count(threads.begin(), threads.end(), threads.front()), 400);
}

}  // namespace
