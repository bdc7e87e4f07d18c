#include "tests/doubles/fake_time.h"
#include "tests/doubles/hexadecimal_streams.h"
#include "tests/unit/board/unit_under_test.h"
#include "varnok_errors.h"

namespace {

using doubles::calls;
using doubles::Calls;
using doubles::CapturedOutput;
using testing::ElementsAre;
using testing::IsEmpty;
using Varnok::Operation_errors::DataOutOfRangeException;
using Varnok::Operation_errors::RangeValue;

class BoardRegistersTest : public UnitTest {};

TEST_F(BoardRegistersTest, TheToolsStandInTheirFixedDirectory) {
  EXPECT_EQ(unit_->i2c_command_str(), "/home/radalt/bin/");
}

TEST_F(BoardRegistersTest, WriteHwHandsAllFourNumbersOnAndReturnsTheDriversStatus) {
  EXPECT_EQ(unit_->write_hw(3, 2, 0xFFFFFFFC, 0x80000001), 0);
  EXPECT_THAT(calls().all(), ElementsAre("write 2 4294967292 2147483649"));
  EXPECT_THAT(board_.handles(), ElementsAre(3));
  board_.write_fails(-19);
  EXPECT_EQ(unit_->write_hw(3, 2, 4, 5), -19);
}

TEST_F(BoardRegistersTest, ReadHwLeavesTheRegisterInTheWordAndReturnsTheDriversStatus) {
  board_.holds(2, 12, 0xCAFE);
  unsigned int value = 1;
  EXPECT_EQ(unit_->read_hw(5, 2, 12, &value), 0);
  EXPECT_EQ(value, 0xCAFEU);
  EXPECT_THAT(calls().all(), ElementsAre("read 2 12"));
  EXPECT_THAT(board_.handles(), ElementsAre(5));
  board_.read_fails(42);
  EXPECT_EQ(unit_->read_hw(5, 2, 12, &value), 42);
}

TEST_F(BoardRegistersTest, LockAndUnLockPassTheHandleAndPrintNothingWhenTheySucceed) {
  const CapturedOutput output;
  unit_->Lock();
  unit_->UnLock();
  EXPECT_THAT(calls().all(), ElementsAre("lock", "unlock"));
  EXPECT_THAT(board_.handles(), ElementsAre(7));
  EXPECT_EQ(output.out(), "");
  EXPECT_EQ(output.err(), "");
}

TEST_F(BoardRegistersTest, ALockThatFailsIsReportedOnStandardOutputOnce) {
  board_.lock_fails(-35);
  const CapturedOutput output;
  unit_->Lock();
  EXPECT_EQ(output.out(), "SysLockfail -35\n");
  EXPECT_EQ(output.err(), "");
  EXPECT_THAT(calls().all(), ElementsAre("lock"));
}

TEST_F(BoardRegistersTest, APositiveLockErrorIsReportedToo) {
  board_.lock_fails(16);
  const CapturedOutput output;
  unit_->Lock();
  EXPECT_EQ(output.out(), "SysLockfail 16\n");
}

TEST_F(BoardRegistersTest, AnUnLockThatFailsIsReportedOnStandardOutputOnce) {
  board_.unlock_fails(-1);
  const CapturedOutput output;
  unit_->UnLock();
  EXPECT_EQ(output.out(), "SysUnlockfail -1\n");
  EXPECT_EQ(output.err(), "");
  EXPECT_THAT(calls().all(), ElementsAre("unlock"));
}

TEST_F(BoardRegistersTest, LockErrorsAreDecimalWhateverTheHostHasLeftOnTheStream) {
  board_.lock_fails(-35).unlock_fails(16);
  const CapturedOutput output;
  const doubles::HexadecimalStreams left;
  unit_->Lock();
  unit_->UnLock();
  EXPECT_EQ(output.out(), "SysLockfail -35\nSysUnlockfail 16\n");
}

TEST_F(BoardRegistersTest, PeekOfOneNumberReadsSpaceOne) {
  board_.holds(1, 8, 0x01020300).holds(0, 8, 1);
  EXPECT_EQ(unit_->Peek(8), 0x01020300U);
  EXPECT_THAT(calls().all(), ElementsAre("read 1 8"));
  EXPECT_THAT(board_.handles(), ElementsAre(7));
}

TEST_F(BoardRegistersTest, PeekOfTwoNumbersReadsTheSpaceGiven) {
  board_.holds(3, 8, 0xFFFFFFFF);
  EXPECT_EQ(unit_->Peek(3, 8), 0xFFFFFFFFU);
  EXPECT_THAT(calls().all(), ElementsAre("read 3 8"));
}

TEST_F(BoardRegistersTest, PokeOfTwoNumbersWritesSpaceOne) {
  unit_->Poke(196, 0x2000);
  EXPECT_THAT(calls().all(), ElementsAre("write 1 196 8192"));
  EXPECT_THAT(board_.handles(), ElementsAre(7));
}

TEST_F(BoardRegistersTest, PokeOfThreeNumbersWritesTheSpaceGiven) {
  unit_->Poke(4, 196, 0x2000);
  EXPECT_THAT(calls().all(), ElementsAre("write 4 196 8192"));
}

TEST_F(BoardRegistersTest, PokePassesTheDriversResultBack) {
  board_.write_fails(-5);
  EXPECT_EQ(unit_->Poke(196, 1), -5);
  EXPECT_EQ(unit_->Poke(2, 196, 1), -5);
}

TEST_F(BoardRegistersTest, AFailedPeekYieldsThePresetZero) {
  board_.holds(1, 40, 70).read_fails(-5);
  EXPECT_EQ(unit_->Peek(40), 0U);
  EXPECT_EQ(unit_->Peek(1, 40), 0U);
}

TEST_F(BoardRegistersTest, AFailedPeekYieldsWhatTheDriverLeft) {
  board_.read_fails(-5, 0xDEAD);
  EXPECT_EQ(unit_->Peek(40), 0xDEADU);
}

TEST_F(BoardRegistersTest, RegisterAccessesTakeNoLock) {
  unit_->Peek(40);
  unit_->Poke(40, 1);
  unit_->Peek_RFregister(128);
  EXPECT_EQ(calls().count("lock"), 0U);
  EXPECT_EQ(calls().count("unlock"), 0U);
}

/// An RF register and the bit of the request register that is set while its transfer is pending.
struct PendingBit {
  unsigned int address;
  unsigned int bit;
};

void PrintTo(const PendingBit& pending_bit, std::ostream* stream) {
  *stream << "address " << pending_bit.address << " is bit " << pending_bit.bit;
}

class PendingBitTest : public BoardRegistersTest, public testing::WithParamInterface<PendingBit> {};

TEST_P(PendingBitTest, TheTransferIsOverAsSoonAsItsOwnBitIsClear) {
  const auto [address, bit] = GetParam();
  board_.holds(1, address, 0x1234).reads_next(1, 252, {~(1U << bit)});
  EXPECT_EQ(unit_->Peek_RFregister(address), 0x1234U);
  const std::string number = std::to_string(address);
  EXPECT_THAT(calls().all(), ElementsAre("write 1 252 " + number, "read 1 252", "read 1 " + number));
}

TEST_P(PendingBitTest, TheTransferIsPendingWhileItsOwnBitIsSet) {
  const auto [address, bit] = GetParam();
  board_.reads_next(1, 252, {1U << bit, 0});
  unit_->Peek_RFregister(address);
  EXPECT_EQ(calls().count("read 1 252"), 2U);
}

INSTANTIATE_TEST_SUITE_P(RfRegisters, PendingBitTest,
                         testing::Values(PendingBit{128, 0}, PendingBit{132, 1}, PendingBit{196, 17},
                                         PendingBit{248, 30}),
                         [](const auto& pending) { return "Address" + std::to_string(pending.param.address); });

class NoRfRegisterTest : public BoardRegistersTest, public testing::WithParamInterface<unsigned int> {};

TEST_P(NoRfRegisterTest, ThrowsTheRangeErrorWithoutAnyBoardAccess) {
  const unsigned int address = GetParam();
  try {
    unit_->Peek_RFregister(address);
    FAIL() << "nothing was thrown";
  } catch (const DataOutOfRangeException& error) {
    EXPECT_STREQ(error.what(), "Attribute : Invalid RF board address");
    EXPECT_EQ(error.range.description, "Attribute : Invalid RF board address");
    EXPECT_EQ(error.range.minimum.kind, RangeValue::INTEGER);
    EXPECT_EQ(error.range.minimum.integer, 128);
    EXPECT_EQ(error.range.maximum.kind, RangeValue::INTEGER);
    EXPECT_EQ(error.range.maximum.integer, 248);
    EXPECT_EQ(error.range.value.kind, RangeValue::INTEGER);
    EXPECT_EQ(error.range.value.integer, static_cast<std::int32_t>(address));
  }
  EXPECT_THAT(calls().all(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Addresses, NoRfRegisterTest,
                         testing::Values(0U, 124U, 127U, 129U, 130U, 131U, 247U, 249U, 252U, 0x80000080U, 0xFFFFFFFCU));

TEST_F(BoardRegistersTest, APendingBitThatNeverClearsEndsAfterAHundredReadsWithZero) {
  board_.holds(1, 196, 8191).transfer_never_ends();
  const CapturedOutput output;
  EXPECT_EQ(unit_->Peek_RFregister(196), 0U);
  Calls expected{"write 1 252 196"};
  expected.insert(expected.end(), 100, "read 1 252");
  EXPECT_EQ(calls().all(), expected);
  EXPECT_EQ(output.out(), "");
  EXPECT_EQ(output.err(), "");
}

TEST_F(BoardRegistersTest, NoTimePassesBetweenTheReadsOfTheRequestRegister) {
  board_.transfer_never_ends();
  const doubles::PlayedTime time;
  unit_->Peek_RFregister(196);
  const auto times = board_.access_times();
  ASSERT_EQ(times.size(), 101U);
  // The fake clock advances with each reading; only the board reads it.
  for (std::size_t poll = 2; poll < times.size(); ++poll) {
    EXPECT_EQ(times[poll] - times[poll - 1], std::chrono::nanoseconds(1)) << "before read " << poll;
  }
}

TEST_F(BoardRegistersTest, AWriteThatFailsDoesNotEndTheTransfer) {
  board_.holds(1, 128, 42).write_fails(-5);
  EXPECT_EQ(unit_->Peek_RFregister(128), 42U);
  EXPECT_THAT(calls().all(), ElementsAre("write 1 252 128", "read 1 252", "read 1 128"));
}

TEST_F(BoardRegistersTest, APendingBitThatClearsAtTheHundredthReadStillGivesTheRegister) {
  board_.holds(1, 196, 8191).transfer_pending_for(99);
  EXPECT_EQ(unit_->Peek_RFregister(196), 8191U);
  EXPECT_EQ(calls().count("read 1 252"), 100U);
  EXPECT_EQ(calls().all().back(), "read 1 196");
}

TEST_F(BoardRegistersTest, APendingBitThatWouldClearAtTheReadAfterTheHundredthIsTooLate) {
  board_.holds(1, 196, 8191).transfer_pending_for(100);
  EXPECT_EQ(unit_->Peek_RFregister(196), 0U);
  EXPECT_EQ(calls().count("read 1 252"), 100U);
  EXPECT_EQ(calls().count("read 1 196"), 0U);
}

TEST_F(BoardRegistersTest, AClearPendingBitMeansOneWriteOneStatusReadAndOneRead) {
  board_.holds(1, 128, 42);
  EXPECT_EQ(unit_->Peek_RFregister(128), 42U);
  EXPECT_THAT(calls().all(), ElementsAre("write 1 252 128", "read 1 252", "read 1 128"));
}

TEST_F(BoardRegistersTest, AFailedStatusReadLooksLikeAFinishedTransfer) {
  board_.holds(1, 128, 42).transfer_never_ends().read_fails(-5);
  EXPECT_EQ(unit_->Peek_RFregister(128), 0U);
  EXPECT_THAT(calls().all(), ElementsAre("write 1 252 128", "read 1 252", "read 1 128"));
}

}  // namespace
