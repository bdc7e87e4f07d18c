#include "tests/unit/board/interrupted_unit.h"

// A sequence that is interrupted or throws gives the board lock back; an RF ADC transfer also restores the control
// register.

namespace {

using doubles::calls;
using doubles::Calls;
using testing::ElementsAre;

constexpr unsigned int CONTROL = 131076;

TEST_F(InterruptionTest, OfAChannelThatSettlesGivesTheLockBack) {
  board_.holds(1, 248, 1).holds(1, CONTROL, 1);
  EXPECT_TRUE(interrupted_->interrupted_at(196, [](HARDWARE& unit) { unit.get_RFAdc(2); }));
  EXPECT_THAT(calls().all(), ElementsAre("lock", "read 1 131076", "read 1 248", "write 1 131076 0", "write 1 196 8192",
                                         "write 1 131076 1", "unlock"));
}

TEST_F(InterruptionTest, OfTheRfAdcsTransferRestoresTheControlRegisterThenGivesTheLockBack) {
  board_.holds(1, 248, 1).holds(1, CONTROL, 1);
  EXPECT_TRUE(interrupted_->interrupted_at(252, [](HARDWARE& unit) { unit.get_RFAdc(2); }));
  const Calls all = calls().all();
  ASSERT_GE(all.size(), 4U);
  EXPECT_THAT(Calls(all.end() - 4, all.end()),
              ElementsAre("write 1 131076 0", "write 1 252 196", "write 1 131076 1", "unlock"));
  EXPECT_EQ(board_.contents(1, CONTROL), 1U);
}

TEST_F(InterruptionTest, OfTheRfTemperatureGivesTheLockBack) {
  board_.holds(1, 248, 1);
  EXPECT_TRUE(interrupted_->interrupted_at(196, [](HARDWARE& unit) { unit.rftemp(); }));
  EXPECT_EQ(calls().all().back(), "unlock");
}

TEST_F(InterruptionTest, OfTheRfBoardsVersionsGivesTheLockBack) {
  std::vector<VERSIONSDATA> list;
  EXPECT_TRUE(interrupted_->interrupted_at(252, [&](HARDWARE& unit) { unit.GetVersionList(list); }));
  EXPECT_THAT(calls().all(), ElementsAre("lock", "write 1 252 128", "unlock"));
  EXPECT_TRUE(list.empty());
}

TEST_F(InterruptionTest, AReadOfTheDigitalBoardsVersionsThatThrowsGivesTheLockBack) {
  interrupted_->throws_at(4);
  std::vector<VERSIONSDATA> list;
  EXPECT_THROW(interrupted_->GetVersionList(list), std::out_of_range);
  const Calls all = calls().all();
  EXPECT_THAT(Calls(all.end() - 3, all.end()), ElementsAre("lock", "read 1 0", "unlock"));
}

TEST_F(InterruptionTest, AReadOfTheDigitalTemperatureThatThrowsGivesTheLockBack) {
  interrupted_->throws_at(40);
  EXPECT_THROW(interrupted_->getDigitalBoardTemp(1.0F), std::out_of_range);
  EXPECT_THAT(calls().all(), ElementsAre("lock", "unlock"));
}

}  // namespace
