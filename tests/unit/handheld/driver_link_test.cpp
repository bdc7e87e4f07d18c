#include <dlfcn.h>
#include <semaphore.h>

#include <climits>
#include <functional>
#include <iterator>
#include <vector>

#include <boost/interprocess/exceptions.hpp>

#include "tests/unit/handheld/handheld_under_test.h"

namespace {

/// Runs in every post, before the semaphore counts.
std::function<void()> in_posts;

/// The semaphores made while the program was loaded. Plain arrays: they are filled before this file's own initialiser.
struct Made {
  const void* semaphore;
  int shared_between_processes;
  unsigned int count;
};
Made made[16];
unsigned int number_made;
bool loading = true;

template <typename Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

/// Monitored C library functions.
extern "C" int sem_post(sem_t* semaphore) noexcept {
  if (in_posts) {
    in_posts();
  }
  return real<int(sem_t*)>("sem_post")(semaphore);
}

extern "C" int sem_init(sem_t* semaphore, int shared, unsigned int count) noexcept {
  if (loading && number_made < std::size(made)) {
    made[number_made++] = {semaphore, shared, count};
  }
  return real<int(sem_t*, int, unsigned int)>("sem_init")(semaphore, shared, count);
}

namespace {

using boost::interprocess::interprocess_semaphore;
using testing::Each;
using testing::ElementsAre;

interprocess_semaphore* const ALL_SEMAPHORES[] = {&semBatteryStatusIrq, &semBatteryTimeIrq,    &semBatteryRunTimeIrq,
                                                  &semExtVoltStatusIrq, &semPowerSupplyVerIrq, &semPowerSupplyTempIrq,
                                                  &semBatteryTempIrq};

/// The link's state directly after the library has been loaded.
struct AfterLoading {
  AfterLoading() {
    loading = false;
    for (interprocess_semaphore* const semaphore : ALL_SEMAPHORES) {
      int count = -1;
      sem_getvalue(reinterpret_cast<sem_t*>(semaphore), &count);
      counts.push_back(count);
    }
    stores = {ps_temp, battery_temp, charge_status, batteryRun_time, battery_time, battery_charge};
    version = ps_ver.str();
    driver = PSdriver;
  }

  std::vector<int> counts;
  std::vector<std::int32_t> stores;
  std::string version;
  const psdriver* driver;
} const after_loading;

TEST(DriverLinkTest, EverySemaphoreCountsFromZeroAndEveryStoreIsZero) {
  EXPECT_THAT(after_loading.counts, ElementsAre(0, 0, 0, 0, 0, 0, 0));
  EXPECT_THAT(after_loading.stores, Each(0));
  EXPECT_EQ(after_loading.version, "");
  EXPECT_EQ(after_loading.driver, nullptr);
}

TEST(DriverLinkTest, TheSemaphoresAreMadeInTheirOrderSharedBetweenProcesses) {
  ASSERT_EQ(number_made, std::size(ALL_SEMAPHORES));
  for (unsigned int kind = 0; kind < number_made; ++kind) {
    EXPECT_EQ(made[kind].semaphore, ALL_SEMAPHORES[kind]) << kind;
    EXPECT_EQ(made[kind].shared_between_processes, 1) << kind;
    EXPECT_EQ(made[kind].count, 0U) << kind;
  }
}

class ReportTest : public HandheldSurroundings {};

TEST_F(ReportTest, AFailureGoesThroughTheLibrarysChannel) {
  handheld::report_failure("Class::operation()", "something failed");
  EXPECT_THAT(doubles::sent_events(), ElementsAre(failure_event("Class::operation()", "something failed")));
}

/// A reply function that stores its argument unchanged.
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

TEST_P(PlainReplyTest, StoresItsArgumentBeforeItPosts) {
  std::vector<std::int32_t> at_post;
  in_posts = [&] { at_post.push_back(*GetParam().store); };
  GetParam().reply(4711);
  in_posts = nullptr;
  EXPECT_THAT(at_post, ElementsAre(4711));
}

TEST_P(PlainReplyTest, PostsNoOtherSemaphore) {
  GetParam().reply(1);
  EXPECT_TRUE(GetParam().semaphore->try_wait());
  for (interprocess_semaphore* const other : ALL_SEMAPHORES) {
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

/// A charge reported by the driver, the charger status at that moment, and the stored charge.
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

TEST_F(HandheldTest, AChargerReplyIsStoredBeforeItIsPosted) {
  const psdriver::Callback reply = driver_.registered("SetCharger_BatteryStatusCallback");
  std::vector<std::int32_t> at_post;
  in_posts = [&] { at_post.push_back(charge_status); };
  reply(0x19);
  in_posts = nullptr;
  EXPECT_THAT(at_post, ElementsAre(0x19));
}

class VersionReplyTest : public HandheldSurroundings {};

TEST_F(VersionReplyTest, IsStoredBeforeItIsPosted) {
  std::vector<std::string> at_post;
  in_posts = [&] { at_post.push_back(ps_ver.str()); };
  SoftwareVersionNumberResponse(10203);
  in_posts = nullptr;
  EXPECT_THAT(at_post, ElementsAre("10203"));
}

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
