#include <pthread.h>

#include <atomic>
#include <csignal>
#include <future>
#include <thread>

#include <boost/interprocess/exceptions.hpp>

#include "tests/doubles/fake_dds.h"
#include "tests/doubles/waiting_thread.h"
#include "tests/unit/handheld/handheld_under_test.h"
#include "varnok_errors.h"

namespace {

using doubles::calls;
using doubles::Calls;
using doubles::CapturedOutput;
using doubles::FakeDds;
using doubles::ParticipantInUse;
using doubles::sent_events;
using doubles::WaitingThread;
using testing::ElementsAre;
using testing::IsEmpty;

const char CHARGER_REPLY[] = "SetCharger_BatteryStatusCallback";

/// A handheld object whose publications are logged.
class PowerSupplyTest : public HandheldSurroundings {
protected:
  PowerSupplyTest() {
    unit_ = std::make_unique<PlainHandheld>();
    unit_->InitHardware();
    EXPECT_TRUE(calls().wait_for("dds create_datareader"));
    calls().clear();
    trace_ = output_.out();
  }

  bool charger_says(int status) {
    driver_.answers("GetCharger_BatteryStatus", status);
    return unit_->GetChargerStatus();
  }
  static Calls published() { return calls().starting_with("dds write"); }
  std::string version_of_reply(int reply) {
    driver_.answers("GetSoftwareVersionNumber", reply);
    const VERSIONSDATA row = unit_->GetPowerSupplyVersion();
    EXPECT_EQ(row.name, "Power Supply Version");
    return row.version;
  }
  void expect_silence() {
    EXPECT_EQ(output_.out(), trace_);
    EXPECT_EQ(output_.err(), "");
  }

  CapturedOutput output_;
  FakeDds dds_;
  ParticipantInUse in_use_{dds_.participant()};
  std::unique_ptr<PlainHandheld> unit_;
  std::string trace_;
};

TEST_F(PowerSupplyTest, OnlyChangesOfTheExternalVoltageArePublished) {
  EXPECT_TRUE(charger_says(0x01));
  EXPECT_THAT(published(), ElementsAre("dds write true 0 0 0 0"));
  EXPECT_TRUE(charger_says(0x01));
  EXPECT_THAT(published(), ElementsAre("dds write true 0 0 0 0"));
  EXPECT_TRUE(charger_says(0x00));
  EXPECT_THAT(published(), ElementsAre("dds write true 0 0 0 0", "dds write false 0 0 0 0"));
  expect_silence();
}

TEST_F(PowerSupplyTest, TheFirstStatusWithoutExternalVoltageIsNotPublished) {
  EXPECT_TRUE(charger_says(0x00));
  EXPECT_THAT(calls().all(), ElementsAre("GetCharger_BatteryStatus"));
}

TEST_F(PowerSupplyTest, OnlyBitZeroIsTheExternalVoltage) {
  EXPECT_TRUE(charger_says(0x7FFFFFFE));
  EXPECT_THAT(published(), IsEmpty());
  EXPECT_TRUE(charger_says(-1));
  EXPECT_THAT(published(), ElementsAre("dds write true 0 0 0 0"));
}

TEST_F(PowerSupplyTest, ADriverFailureOfTheChargerStatusIsOneEventAndFalse) {
  driver_.fails("GetCharger_BatteryStatus");
  EXPECT_FALSE(charger_says(0x01));
  EXPECT_THAT(sent_events(), ElementsAre(failure_event("Handheld_Hardware::GetChargerStatus()",
                                                       "Power Supply Driver Failure: Battery Charger Status")));
  EXPECT_THAT(published(), IsEmpty());
  expect_silence();
  EXPECT_TRUE(charger_says(0x01));
  EXPECT_THAT(published(), ElementsAre("dds write true 0 0 0 0"));
}

TEST_F(PowerSupplyTest, ARefusedPublicationThrowsAndTheChangeIsNotPublishedAgain) {
  dds_.refuses("write");
  try {
    charger_says(0x01);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const Varnok::Connection_errors::Communications_failure& error) {
    EXPECT_STREQ(error.what(), "void Varnok::DDS_Publisher<T>::sendData(const T&) [with T = bool] error");
  }
  EXPECT_TRUE(charger_says(0x01));
  EXPECT_EQ(published().size(), 1U);
  EXPECT_THAT(sent_events(), IsEmpty());
}

TEST_F(PowerSupplyTest, AnotherExceptionPassesThroughGetChargerStatus) {
  driver_.runs_first("GetCharger_BatteryStatus", [] { throw std::out_of_range("request"); });
  EXPECT_THROW(charger_says(0), std::out_of_range);
  EXPECT_THAT(sent_events(), IsEmpty());
}

TEST_F(PowerSupplyTest, TheChargeIsAskedForFirstThenTheTwoTimes) {
  driver_.answers("GetBatteryRelativeStateOfCharge", 57);
  driver_.answers("GetBatteryAverageTimeToEmpty", 120).answers("GetBatteryRunTimeToEmpty", 90);
  int charge = -1;
  EXPECT_TRUE(unit_->GetBatteryChargeStatus(charge));
  EXPECT_EQ(charge, 57);
  EXPECT_EQ(battery_time, 120);
  EXPECT_EQ(batteryRun_time, 90);
  EXPECT_THAT(calls().all(), ElementsAre("GetBatteryRelativeStateOfCharge", "GetBatteryAverageTimeToEmpty",
                                         "GetBatteryRunTimeToEmpty"));
  expect_silence();
}

TEST_F(PowerSupplyTest, WithoutABatteryTheChargeIsZeroAndBatteryPresentFalse) {
  driver_.answers("GetBatteryRelativeStateOfCharge", 57);
  charger_says(0x19);
  int charge = -1;
  EXPECT_TRUE(unit_->GetBatteryChargeStatus(charge));
  EXPECT_EQ(charge, 0);
  EXPECT_EQ(unit_->BatteryPresent(), 0);
}

TEST_F(PowerSupplyTest, AFullBatteryOnExternalVoltageIsAHundredPerCent) {
  driver_.answers("GetBatteryRelativeStateOfCharge", 57);
  charger_says(0x09);
  int charge = -1;
  EXPECT_TRUE(unit_->GetBatteryChargeStatus(charge));
  EXPECT_EQ(charge, 100);
  EXPECT_EQ(unit_->BatteryPresent(), 1);
}

TEST_F(PowerSupplyTest, BatteryPresentLooksAtBitFourOfTheLastStatusAndAsksNobody) {
  EXPECT_EQ(unit_->BatteryPresent(), 1);
  charger_says(0x10);
  calls().clear();
  EXPECT_EQ(unit_->BatteryPresent(), 0);
  EXPECT_THAT(calls().all(), IsEmpty());
  charger_says(~0x10);
  EXPECT_EQ(unit_->BatteryPresent(), 1);
}

/// The one of the three requests that fails, and the resulting charge.
struct ChargeFailure {
  const char* request;
  int charge;
  std::size_t requests;
};

void PrintTo(const ChargeFailure& charge_failure, std::ostream* stream) {
  *stream << charge_failure.request << " leaves " << charge_failure.charge;
}

class ChargeFailureTest : public PowerSupplyTest, public testing::WithParamInterface<ChargeFailure> {};

TEST_P(ChargeFailureTest, IsOneEventAndFalse) {
  driver_.answers("GetBatteryRelativeStateOfCharge", 57).fails(GetParam().request);
  int charge = -1;
  EXPECT_FALSE(unit_->GetBatteryChargeStatus(charge));
  EXPECT_EQ(charge, GetParam().charge);
  EXPECT_EQ(calls().starting_with("GetBattery").size(), GetParam().requests);
  EXPECT_THAT(sent_events(), ElementsAre(failure_event("Handheld_Hardware::GetBatteryChargeStatus()",
                                                       "Power Supply Driver Failure: Battery Relative Charge")));
  expect_silence();
}

INSTANTIATE_TEST_SUITE_P(Requests, ChargeFailureTest,
                         testing::Values(ChargeFailure{"GetBatteryRelativeStateOfCharge", -1, 1},
                                         ChargeFailure{"GetBatteryAverageTimeToEmpty", 57, 2},
                                         ChargeFailure{"GetBatteryRunTimeToEmpty", 57, 3}),
                         [](const auto& failure) { return failure.param.request; });

TEST_F(PowerSupplyTest, AnotherExceptionPassesThroughGetBatteryChargeStatus) {
  driver_.runs_first("GetBatteryRunTimeToEmpty", [] { throw std::out_of_range("request"); });
  int charge = -1;
  EXPECT_THROW(unit_->GetBatteryChargeStatus(charge), std::out_of_range);
  EXPECT_THAT(sent_events(), IsEmpty());
}

/// A version reply that has a text, and the text.
struct Version {
  int reply;
  const char* text;
};

void PrintTo(const Version& version, std::ostream* stream) {
  *stream << version.reply << " reads \"" << version.text << '"';
}

class VersionTest : public PowerSupplyTest, public testing::WithParamInterface<Version> {};

TEST_P(VersionTest, IsCutIntoOneTwoAndUpToFiveCharacters) {
  EXPECT_EQ(version_of_reply(GetParam().reply), GetParam().text);
  EXPECT_THAT(sent_events(), IsEmpty());
  expect_silence();
}

INSTANTIATE_TEST_SUITE_P(Replies, VersionTest,
                         testing::Values(Version{10203, "1.02.03"}, Version{105, "1.05."},
                                         Version{123456789, "1.23.45678"}, Version{1234, "1.23.4"},
                                         Version{12345678, "1.23.45678"}, Version{2147483647, "2.14.74836"},
                                         Version{-50, "-.50."}));

class VersionMissingTest : public PowerSupplyTest, public testing::WithParamInterface<int> {};

TEST_P(VersionMissingTest, ShortRepliesGiveTheLineTheEventAndAnEmptyVersion) {
  EXPECT_EQ(version_of_reply(GetParam()), "");
  EXPECT_EQ(output_.err(), "HARDWARE::GetPowerSupplyVersion err\n");
  EXPECT_EQ(output_.out(), trace_);
  EXPECT_THAT(sent_events(),
              ElementsAre(failure_event("HARDWARE::GetVersionList()", "PSdriver Software Version is missing")));
}

INSTANTIATE_TEST_SUITE_P(Replies, VersionMissingTest, testing::Values(12, 0, -5, 7));

TEST_F(PowerSupplyTest, ADriverFailureOfTheVersionIsOneEventAndAnEmptyVersion) {
  driver_.fails("GetSoftwareVersionNumber");
  EXPECT_EQ(version_of_reply(10203), "");
  EXPECT_THAT(sent_events(), ElementsAre(failure_event("Handheld_Hardware::GetPowerSupplyVersion()",
                                                       "Power Supply Driver Failure: Power Supply Version")));
  expect_silence();
}

TEST_F(PowerSupplyTest, AnyOtherExceptionOfTheVersionRequestCountsAsAMissingVersion) {
  driver_.runs_first("GetSoftwareVersionNumber", [] { throw 42; });
  EXPECT_EQ(version_of_reply(10203), "");
  EXPECT_EQ(output_.err(), "HARDWARE::GetPowerSupplyVersion err\n");
  EXPECT_THAT(sent_events(),
              ElementsAre(failure_event("HARDWARE::GetVersionList()", "PSdriver Software Version is missing")));
}

TEST_F(PowerSupplyTest, TheLineOfAMissingVersionComesBeforeItsEvent) {
  std::string line_at_send;
  doubles::run_first_in_sends([&] { line_at_send = output_.err(); });
  version_of_reply(0);
  EXPECT_EQ(line_at_send, "HARDWARE::GetPowerSupplyVersion err\n");
}

TEST_F(PowerSupplyTest, TheGettersAskNobody) {
  EXPECT_EQ(unit_->PsTemperature(), 0);
  EXPECT_EQ(unit_->BatteryTemperature(), 0);
  EXPECT_EQ(unit_->Slot1MIC284Temperature(), 0);
  EXPECT_THAT(calls().all(), IsEmpty());
  expect_silence();
}

TEST_F(PowerSupplyTest, AReplyThatNobodyAwaitedSatisfiesTheNextRequestWithItsOlderValue) {
  driver_.deliver("SetSoftwareVersionNumberCallback", 10203);
  driver_.holds_replies().answers("GetSoftwareVersionNumber", 99999);
  EXPECT_EQ(unit_->GetPowerSupplyVersion().version, "1.02.03");
  driver_.release().settle();
  EXPECT_TRUE(semPowerSupplyVerIrq.try_wait()) << "the reply itself stays counted";
  EXPECT_FALSE(semPowerSupplyVerIrq.try_wait());
}

TEST_F(PowerSupplyTest, ARequestReturnsOnlyWhenItsReplyHasArrived) {
  driver_.stays_silent("GetCharger_BatteryStatus");
  bool result = false;
  WaitingThread request([&] { result = unit_->GetChargerStatus(); });
  EXPECT_TRUE(calls().wait_for("GetCharger_BatteryStatus"));
  EXPECT_TRUE(request.waits());
  driver_.deliver("SetBatteryTemperatureCallback", 20);
  EXPECT_TRUE(request.waits());
  driver_.deliver(CHARGER_REPLY, 0x01);
  request.join();
  EXPECT_TRUE(result);
  EXPECT_THAT(published(), ElementsAre("dds write true 0 0 0 0"));
}

void nothing_to_do(int) {}

TEST_F(PowerSupplyTest, AWaitThatTheSystemEndsThrowsToTheCaller) {
  struct sigaction interrupting {};
  struct sigaction kept {};
  interrupting.sa_handler = &nothing_to_do;
  sigaction(SIGUSR1, &interrupting, &kept);
  driver_.stays_silent("GetCharger_BatteryStatus");
  int error = 0;
  WaitingThread request([&] {
    try {
      unit_->GetChargerStatus();
    } catch (const boost::interprocess::interprocess_exception& exception) {
      error = exception.get_native_error();
    }
  });
  EXPECT_TRUE(calls().wait_for("GetCharger_BatteryStatus"));
  while (request.waits()) {
    pthread_kill(request.handle(), SIGUSR1);
  }
  request.join();
  sigaction(SIGUSR1, &kept, nullptr);
  EXPECT_EQ(error, EINTR);
  EXPECT_THAT(sent_events(), IsEmpty());
}

TEST_F(PowerSupplyTest, TwoThreadsThatAskAtOnceBothGetAnAnswer) {
  driver_.answers("GetBatteryRelativeStateOfCharge", 57).holds_replies();
  const auto ask = [this] {
    int charge = -1;
    return unit_->GetBatteryChargeStatus(charge) ? charge : -2;
  };
  std::future<int> one = std::async(std::launch::async, ask);
  std::future<int> other = std::async(std::launch::async, ask);
  EXPECT_TRUE(calls().wait_for("GetBatteryRelativeStateOfCharge", 2));
  driver_.release();
  EXPECT_EQ(one.get(), 57);
  EXPECT_EQ(other.get(), 57);
}

}  // namespace
