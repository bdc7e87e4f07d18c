#include <semaphore.h>
#include <climits>

#include <boost/interprocess/exceptions.hpp>

#include "tests/unit/handheld/handheld_under_test.h"

namespace {

using boost::interprocess::interprocess_semaphore;

/// A reply function that stores its argument as it comes.
struct PlainReply {
  const char* name;
  void (*reply)(int);
  const std::int32_t* store;
  interprocess_semaphore* semaphore;
};

void PrintTo(const PlainReply& plain_reply, std::ostream* stream) {
  *stream << plain_reply.name;
}

class PlainReplyTest : public HandheldSurroundings, public testing::WithParamInterface<PlainReply> {};

TEST_P(PlainReplyTest, StoresItsArgumentAndPostsItsSemaphoreOnce) {
  for (const int value : {253, -40, 0, INT_MIN, INT_MAX}) {
    GetParam().reply(value);
    EXPECT_EQ(*GetParam().store, value);
    EXPECT_TRUE(GetParam().semaphore->try_wait());
    EXPECT_FALSE(GetParam().semaphore->try_wait());
  }
}

TEST_P(PlainReplyTest, PostsNoOtherSemaphore) {
  GetParam().reply(1);
  EXPECT_TRUE(GetParam().semaphore->try_wait());
  for (interprocess_semaphore* other :
       {&semBatteryStatusIrq, &semBatteryTimeIrq, &semBatteryRunTimeIrq, &semExtVoltStatusIrq, &semPowerSupplyVerIrq,
        &semPowerSupplyTempIrq, &semBatteryTempIrq}) {
    EXPECT_FALSE(other->try_wait());
  }
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, PlainReplyTest,
    testing::Values(
        PlainReply{"PowerSupplyTemperature", &PowerSupplyTemperatureValueResponse, &ps_temp, &semPowerSupplyTempIrq},
        PlainReply{"BatteryTemperature", &BatteryTemperatureResponse, &battery_temp, &semBatteryTempIrq},
        PlainReply{"AverageTimeToEmpty", &BatteryAverageTimeToEmptyResponse, &battery_time, &semBatteryTimeIrq},
        PlainReply{"RunTimeToEmpty", &BatteryRunTimeToEmptyResponse, &batteryRun_time, &semBatteryRunTimeIrq},
        PlainReply{"RelativeStateOfCharge", &BatteryRelativeStateOfChargeResponse, &battery_charge,
                   &semBatteryStatusIrq}),
    [](const auto& reply) { return reply.param.name; });

/// A charge as the driver reports it, the charger status at that moment, and the charge that is stored.
struct Charge {
  std::int32_t status;
  int reported;
  int stored;
};

void PrintTo(const Charge& charge, std::ostream* stream) {
  *stream << charge.reported << " with charger status " << charge.status << " is " << charge.stored;
}

class ChargeTest : public HandheldSurroundings, public testing::WithParamInterface<Charge> {};

TEST_P(ChargeTest, IsCorrectedByTheLastChargerStatus) {
  charge_status = GetParam().status;
  BatteryRelativeStateOfChargeResponse(GetParam().reported);
  EXPECT_EQ(battery_charge, GetParam().stored);
  EXPECT_EQ(charge_status, GetParam().status);
  EXPECT_TRUE(semBatteryStatusIrq.try_wait());
  EXPECT_FALSE(semBatteryStatusIrq.try_wait());
}

INSTANTIATE_TEST_SUITE_P(Statuses, ChargeTest,
                         testing::Values(Charge{0x09, 57, 100}, Charge{0x19, 57, 0}, Charge{0x01, 57, 57},
                                         Charge{0x08, 57, 57}, Charge{0x10, 57, 0}, Charge{0x00, 57, 57},
                                         Charge{0x0B, 57, 100}, Charge{0x6E, 57, 57}, Charge{-1, 57, 0},
                                         Charge{0x09, 0, 100}, Charge{0x00, -5, -5}));

class VersionReplyTest : public HandheldSurroundings {};

TEST_F(VersionReplyTest, LeavesTheDecimalText) {
  SoftwareVersionNumberResponse(10203);
  EXPECT_EQ(ps_ver.str(), "10203");
  EXPECT_TRUE(semPowerSupplyVerIrq.try_wait());
  EXPECT_FALSE(semPowerSupplyVerIrq.try_wait());
}

TEST_F(VersionReplyTest, ReplacesTheTextOfAnEarlierReply) {
  SoftwareVersionNumberResponse(10203);
  SoftwareVersionNumberResponse(7);
  EXPECT_EQ(ps_ver.str(), "7");
}

TEST_F(VersionReplyTest, IsDecimalWhateverBaseTheStreamWasLeftIn) {
  ps_ver << std::hex;
  SoftwareVersionNumberResponse(255);
  EXPECT_EQ(ps_ver.str(), "255");
}

TEST_F(VersionReplyTest, KeepsTheSign) {
  SoftwareVersionNumberResponse(-5);
  EXPECT_EQ(ps_ver.str(), "-5");
}

TEST_F(VersionReplyTest, ReadsTheSameWithTheStreamReadToItsEnd) {
  SoftwareVersionNumberResponse(10203);
  int number = 0;
  ps_ver >> number;
  ps_ver.clear();
  SoftwareVersionNumberResponse(7);
  EXPECT_EQ(ps_ver.str(), "7");
}

TEST_F(VersionReplyTest, APostThatTheSystemRefusesThrowsToTheDriversThread) {
  static_assert(sizeof(interprocess_semaphore) == sizeof(sem_t));
  auto* const full = reinterpret_cast<sem_t*>(&semPowerSupplyVerIrq);
  sem_init(full, 1, SEM_VALUE_MAX);
  try {
    SoftwareVersionNumberResponse(1);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const boost::interprocess::interprocess_exception& error) {
    EXPECT_EQ(error.get_native_error(), EOVERFLOW);
  }
  sem_init(full, 1, 0);
}

}  // namespace
