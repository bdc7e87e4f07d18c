#include "simulator/model/board.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace {

using simulator::model::Board;

class BoardTest : public ::testing::Test {
protected:
  /// Reads one RF register by the board's protocol, with a transfer that finishes at once.
  std::uint32_t transferred(std::uint32_t address) {
    board_.set_rf_transfer_time(0);
    board_.write(1, Board::RF_REQUEST, address);
    EXPECT_EQ(board_.read(1, Board::RF_REQUEST), 0U);
    return board_.read(1, address);
  }

  std::unique_ptr<Board> owner_ = std::make_unique<Board>();
  Board& board_ = *owner_;
};

TEST_F(BoardTest, RegistersOfDifferentSpacesAndAddressesAreApart) {
  EXPECT_TRUE(board_.write(1, 40, 70));
  EXPECT_TRUE(board_.write(2, 40, 71));
  EXPECT_TRUE(board_.write(1, 44, 72));
  EXPECT_EQ(board_.read(1, 40), 70U);
  EXPECT_EQ(board_.read(2, 40), 71U);
  EXPECT_EQ(board_.read(1, 44), 72U);
}

TEST_F(BoardTest, ARegisterNeverWrittenHoldsZero) {
  EXPECT_EQ(board_.read(0, 0), 0U);
  EXPECT_EQ(board_.read(0xFFFFFFFF, 0xFFFFFFFF), 0U);
}

TEST_F(BoardTest, HoldsFourThousandAndNinetySixRegistersAndNoMore) {
  for (std::uint32_t address = 0; address < 4096; ++address) {
    ASSERT_TRUE(board_.write(7, address, address + 1));
  }
  EXPECT_FALSE(board_.write(7, 4096, 1));
  EXPECT_TRUE(board_.write(7, 4095, 5));
  EXPECT_EQ(board_.read(7, 0), 1U);
  EXPECT_EQ(board_.read(7, 4095), 5U);
  EXPECT_EQ(board_.read(7, 4096), 0U);
}

TEST_F(BoardTest, TheVeryLastAddressIsNoRegister) {
  EXPECT_FALSE(board_.write(0xFFFFFFFF, 0xFFFFFFFF, 1));
  EXPECT_TRUE(board_.write(0xFFFFFFFF, 0xFFFFFFFE, 1));
}

TEST_F(BoardTest, AnRfRegisterShowsWhatItsLastTransferBrought) {
  board_.set_register(1, 128, 88993);
  EXPECT_EQ(board_.read(1, 128), 0U);
  EXPECT_EQ(transferred(128), 88993U);
  board_.set_register(1, 128, 42);
  EXPECT_EQ(board_.read(1, 128), 88993U);
  EXPECT_EQ(transferred(128), 42U);
}

TEST_F(BoardTest, APendingTransferShowsAsItsBit) {
  board_.set_rf_transfer_time(Board::NEVER);
  board_.write(1, Board::RF_REQUEST, 128);
  EXPECT_EQ(board_.read(1, Board::RF_REQUEST), 1U << 0);
  board_.write(1, Board::RF_REQUEST, 196);
  EXPECT_EQ(board_.read(1, Board::RF_REQUEST), 1U << 0 | 1U << 17);
  board_.write(1, Board::RF_REQUEST, 248);
  EXPECT_EQ(board_.read(1, Board::RF_REQUEST), 1U << 0 | 1U << 17 | 1U << 30);
}

TEST_F(BoardTest, ARegisterKeepsItsOldValueWhileItsTransferIsPending) {
  board_.set_register(1, 132, 7);
  board_.set_rf_transfer_time(3'600'000'000);
  board_.write(1, Board::RF_REQUEST, 132);
  EXPECT_EQ(board_.read(1, Board::RF_REQUEST), 1U << 1);
  EXPECT_EQ(board_.read(1, 132), 0U);
}

TEST_F(BoardTest, ATransferTakesItsTime) {
  board_.set_register(1, 132, 7);
  board_.set_rf_transfer_time(2000);
  const auto begin = std::chrono::steady_clock::now();
  board_.write(1, Board::RF_REQUEST, 132);
  while (board_.read(1, Board::RF_REQUEST) != 0) {
    std::this_thread::yield();
  }
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::microseconds(2000));
  EXPECT_EQ(board_.read(1, 132), 7U);
}

TEST_F(BoardTest, ARequestOfNoRfRegisterStartsNothing) {
  board_.set_rf_transfer_time(Board::NEVER);
  for (const std::uint32_t address : {124U, 130U, 252U, 0xFFFFFFFFU}) {
    board_.write(1, Board::RF_REQUEST, address);
  }
  EXPECT_EQ(board_.read(1, Board::RF_REQUEST), 0U);
}

TEST_F(BoardTest, AnAbsentRfBoardFinishesNoTransferAndHidesItsLastRegister) {
  board_.set_register(1, 248, 1);
  EXPECT_EQ(board_.read(1, 248), 1U);
  board_.set_rf_present(false);
  board_.set_rf_transfer_time(0);
  board_.write(1, Board::RF_REQUEST, 128);
  EXPECT_EQ(board_.read(1, Board::RF_REQUEST), 1U);
  EXPECT_EQ(board_.read(1, 248), 0U);
}

TEST_F(BoardTest, TheAdcConvertsTheSelectedChannel) {
  board_.set_register(1, 248, 1);
  board_.set_adc_count(2, 3318);
  board_.set_adc_count(7, 99);
  board_.write(1, Board::RF_ADC, 0x2000);
  EXPECT_EQ(board_.selected_adc_channel(), 2U);
  EXPECT_EQ(transferred(196), 3318U);
  board_.write(1, Board::RF_ADC, 0x7000);
  EXPECT_EQ(transferred(196), 99U);
}

TEST_F(BoardTest, TheAdcIsOutOfReachWhileTheControlBitIsSet) {
  board_.set_register(1, 248, 1);
  board_.set_adc_count(0, 11);
  board_.set_adc_count(2, 3318);
  board_.write(1, Board::RF_CONTROL, 1);
  board_.write(1, Board::RF_ADC, 0x2000);
  EXPECT_EQ(board_.selected_adc_channel(), 0U);
  EXPECT_EQ(transferred(196), 0x2000U);
  board_.write(1, Board::RF_CONTROL, 0);
  EXPECT_EQ(transferred(196), 11U);
}

TEST_F(BoardTest, WithoutItsEnableBitTheAdcConvertsNothing) {
  board_.set_adc_count(0, 11);
  EXPECT_EQ(transferred(196), 0U);
}

TEST_F(BoardTest, TheRequestRegisterCannotBeSetFromTheWorkbench) {
  EXPECT_FALSE(board_.set_register(1, Board::RF_REQUEST, 1));
  EXPECT_EQ(board_.register_value(1, Board::RF_REQUEST), 0U);
}

TEST_F(BoardTest, ThreadsThatAddTheSameRegistersLoseNoValue) {
  const auto add = [this](std::uint32_t first) {
    for (std::uint32_t address = first; address < 2000; address += 2) {
      board_.write(3, address, address);
      board_.read(3, address ^ 1U);
    }
  };
  std::thread even(add, 0);
  std::thread odd(add, 1);
  even.join();
  odd.join();
  for (std::uint32_t address = 0; address < 2000; ++address) {
    ASSERT_EQ(board_.read(3, address), address);
  }
}

}  // namespace
