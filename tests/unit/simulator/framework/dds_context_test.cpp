#include <gtest/gtest.h>
#include <varnok_dds.h>

#include <cstdlib>
#include <cstring>
#include <thread>

#include "tests/unit/simulator/model/this_unit.h"

namespace {

using simulator::model::FaultKind;
using simulator::model::Point;
using simulator_test::ThisUnit;

/// Exposes the base's protected context.
struct Entity : Varnok::DDS_BaseObj {
  const Varnok::DDS_Context& context() const { return DdsBase(); }
};

class FrameworkDdsTest : public ::testing::Test {
protected:
  FrameworkDdsTest() {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    ThisUnit::get().reset();
  }
};

TEST_F(FrameworkDdsTest, AllEntitiesOfTheProcessShareOneContext) {
  const Entity first;
  const Varnok::DDS_Context* seen = nullptr;
  std::thread other([&] {
    const Entity second;
    seen = &second.context();
  });
  other.join();
  EXPECT_EQ(seen, &first.context());
  ASSERT_NE(first.context().participant, nullptr);
  EXPECT_EQ(first.context().participant->get_domain_id(), 0);
  EXPECT_FALSE(CORBA::is_nil(first.context().factory));
}

TEST_F(FrameworkDdsTest, ThreadsThatComeFirstTogetherGetOneParticipant) {
  EXPECT_EXIT(
      {
        const Varnok::DDS_Context* seen[2] = {};
        std::thread one([&] { seen[0] = &Entity().context(); });
        std::thread other([&] { seen[1] = &Entity().context(); });
        one.join();
        other.join();
        std::exit(seen[0] == seen[1] && !CORBA::is_nil(seen[0]->participant) ? 3 : 1);
      },
      ::testing::ExitedWithCode(3), "");
}

TEST_F(FrameworkDdsTest, TheParticipantIsTheContextsSecondWord) {
  const Entity entity;
  void* words[2];
  static_assert(sizeof(words) == sizeof(Varnok::DDS_Context));
  std::memcpy(words, &entity.context(), sizeof(words));
  EXPECT_EQ(words[1], entity.context().participant);
}

TEST_F(FrameworkDdsTest, AParticipantThatCannotBeMadeIsNull) {
  EXPECT_EXIT(
      {
        ThisUnit::get().model().faults().arm(Point::DDS_PARTICIPANT, {FaultKind::FAIL, 0});
        const Entity entity;
        std::exit(CORBA::is_nil(entity.context().participant) ? 4 : 1);
      },
      ::testing::ExitedWithCode(4), "");
}

TEST_F(FrameworkDdsTest, AnEngineThatCannotStartLeavesTheParticipantNull) {
  EXPECT_EXIT(
      {
        ::setenv("CYCLONEDDS_URI", "<CycloneDDS><Domain><General><Nonsense/></General></Domain></CycloneDDS>", 1);
        ::setenv("DCPSConfigFile", "/nonexistent/dds.ini", 1);
        const Entity entity;
        std::exit(CORBA::is_nil(entity.context().participant) ? 5 : 1);
      },
      ::testing::ExitedWithCode(5), "");
}

TEST_F(FrameworkDdsTest, TheProcessEndsAsItSaysWithItsContextAlive) {
  EXPECT_EXIT(
      {
        const Entity entity;
        std::exit(CORBA::is_nil(entity.context().participant) ? 1 : 6);
      },
      ::testing::ExitedWithCode(6), "");
}

}  // namespace
