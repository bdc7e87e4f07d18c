#include <gtest/gtest.h>
#include <unistd.h>
#include <varnok_locker.h>

#include <atomic>
#include <optional>
#include <thread>

#include "tests/doubles/waiting_thread.h"
#include "tests/unit/simulator/model/this_unit.h"

namespace {

using doubles::lines_of;
using simulator_test::ThisUnit;
using Varnok::Locker;

TEST(FrameworkLockerTest, OneHolderAtATime) {
  int counted = 0;
  const auto count = [&] {
    for (int round = 0; round < 1000; ++round) {
      const Locker locker;
      ++counted;
    }
  };
  std::thread one(count);
  std::thread other(count);
  one.join();
  other.join();
  EXPECT_EQ(counted, 2000);
}

TEST(FrameworkLockerTest, AnotherThreadWaitsUntilTheHolderIsGone) {
  std::atomic<bool> taken{false};
  std::optional<Locker> holder(std::in_place);
  doubles::WaitingThread other([&] {
    const Locker locker;
    taken = true;
  });
  EXPECT_TRUE(other.waits());
  EXPECT_FALSE(taken);
  holder.reset();
  other.join();
  EXPECT_TRUE(taken);
}

TEST(FrameworkLockerTest, TheCoreIsMadeOnceWhenAskedFor) {
  const Locker locker;
  EXPECT_EQ(locker.core(), nullptr);
  locker.Init_core();
  ASSERT_NE(locker.core(), nullptr);
  EXPECT_EQ(locker.core()->process, static_cast<CORBA::ULong>(::getpid()));
  const auto* core = locker.core();
  const auto serial = core->serial;
  locker.Init_core();
  EXPECT_EQ(locker.core(), core);
  EXPECT_EQ(locker.core()->serial, serial);
}

TEST(FrameworkLockerTest, CoresAreNumbered) {
  CORBA::ULongLong first = 0;
  {
    const Locker locker;
    locker.Init_core();
    first = locker.core()->serial;
    EXPECT_GE(first, 1U);
  }
  const Locker locker;
  locker.Init_core();
  EXPECT_EQ(locker.core()->serial, first + 1);
}

TEST(FrameworkLockerTest, TakingItIsRecorded) {
  ThisUnit::get().model().record().start();
  {
    const Locker locker;
    locker.Init_core();
    locker.Init_core();
  }
  ThisUnit::get().reset();
  const auto lines = lines_of(ThisUnit::get().file("calls.jsonl"));
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_NE(lines[0].find(R"("at":"locker.take","args":{})"), std::string::npos);
  EXPECT_NE(lines[1].find(R"("at":"locker.Init_core","args":{})"), std::string::npos);
}

}  // namespace
