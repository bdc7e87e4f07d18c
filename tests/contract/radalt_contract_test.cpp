#include <gtest/gtest.h>
#include <radalt.h>

#include "tests/contract/board_side.h"

// The board driver's contract, for every implementation.
namespace {

constexpr unsigned RF_REQUEST = 252;

class RadaltContract : public ::testing::Test {
protected:
  unsigned read(unsigned space, unsigned address) const {
    unsigned value = 0;
    EXPECT_EQ(Radalt_Read(handle_, space, address, &value), 0);
    return value;
  }

  std::unique_ptr<contract::BoardSide> board_ = contract::make_board_side();
  const int handle_ = Radalt_Init();
};

TEST_F(RadaltContract, OpeningReturnsAHandle) {
  EXPECT_GE(handle_, 0);
}

TEST_F(RadaltContract, AFailedOpeningReturnsTheNegativeErrorNumber) {
  board_->fail_opening(19);
  EXPECT_EQ(Radalt_Init(), -19);
}

TEST_F(RadaltContract, ReadsWhatTheBoardHolds) {
  board_->set_register(1, 40, 70);
  board_->set_register(1, 0, 0xFFFFFFFF);
  EXPECT_EQ(read(1, 40), 70U);
  EXPECT_EQ(read(1, 0), 0xFFFFFFFFU);
}

TEST_F(RadaltContract, ARegisterThatWasNeverSetReadsZero) {
  EXPECT_EQ(read(1, 8), 0U);
}

TEST_F(RadaltContract, AddressSpacesAreApart) {
  board_->set_register(1, 40, 70);
  board_->set_register(2, 40, 71);
  EXPECT_EQ(read(1, 40), 70U);
  EXPECT_EQ(read(2, 40), 71U);
}

TEST_F(RadaltContract, WritesReachTheBoard) {
  EXPECT_EQ(Radalt_Write(handle_, 1, 131076, 0x80000001), 0);
  EXPECT_EQ(board_->register_value(1, 131076), 0x80000001U);
  EXPECT_EQ(read(1, 131076), 0x80000001U);
}

TEST_F(RadaltContract, AFailedReadReturnsItsStatus) {
  board_->set_register(1, 40, 70);
  board_->fail_reads(5);
  unsigned value = 0;
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &value), 5);
}

TEST_F(RadaltContract, AFailedWriteLeavesTheRegister) {
  board_->set_register(1, 40, 70);
  board_->fail_writes(5);
  EXPECT_EQ(Radalt_Write(handle_, 1, 40, 71), 5);
  EXPECT_EQ(board_->register_value(1, 40), 70U);
}

TEST_F(RadaltContract, TheLockIsTakenAndGivenBack) {
  EXPECT_EQ(Radalt_LockGet(handle_), 0);
  EXPECT_EQ(Radalt_LockPut(handle_), 0);
  EXPECT_EQ(Radalt_LockGet(handle_), 0);
  EXPECT_EQ(Radalt_LockPut(handle_), 0);
}

TEST_F(RadaltContract, AFailedLockReturnsItsErrorNumber) {
  board_->fail_lock(16);
  EXPECT_EQ(Radalt_LockGet(handle_), 16);
}

TEST_F(RadaltContract, AFailedUnlockReturnsItsErrorNumber) {
  ASSERT_EQ(Radalt_LockGet(handle_), 0);
  board_->fail_unlock(1);
  EXPECT_EQ(Radalt_LockPut(handle_), 1);
  board_ = nullptr;
  board_ = contract::make_board_side();
  EXPECT_EQ(Radalt_LockPut(handle_), 0);
}

TEST_F(RadaltContract, AFinishedTransferShowsTheRfRegister) {
  board_->set_register(1, 128, 88993);
  EXPECT_EQ(Radalt_Write(handle_, 1, RF_REQUEST, 128), 0);
  EXPECT_EQ(read(1, RF_REQUEST) & 1U, 0U);
  EXPECT_EQ(read(1, 128), 88993U);
}

TEST_F(RadaltContract, APendingTransferShowsAsItsBit) {
  board_->never_end_transfers();
  for (const auto& [address, bit] : {std::pair(128U, 0), std::pair(196U, 17), std::pair(248U, 30)}) {
    EXPECT_EQ(Radalt_Write(handle_, 1, RF_REQUEST, address), 0);
    EXPECT_EQ(read(1, RF_REQUEST) >> bit & 1U, 1U) << address;
  }
}

TEST_F(RadaltContract, TheLastRfRegisterIsReadDirectly) {
  board_->set_register(1, 248, 1);
  EXPECT_EQ(read(1, 248), 1U);
}

}  // namespace
