#include <stdexcept>

#include <boost/thread/thread.hpp>

#include "tests/unit/board/unit_under_test.h"

// A sequence that is interrupted or throws gives the board lock back; an RF ADC transfer also restores the control
// register.

namespace {

using doubles::calls;
using doubles::Calls;
using testing::ElementsAre;

constexpr unsigned int CONTROL = 131076;
constexpr unsigned int NOWHERE = 0xFFFFFFFF;

/// A unit whose sequences can be left at a register by an exception.
class UnitThatThrows : public HARDWARE {
public:
  unsigned int throws_at = NOWHERE;

  int write_hw(int handle, unsigned int space, unsigned int address, unsigned int value) override {
    throw_at(address);
    return HARDWARE::write_hw(handle, space, address, value);
  }
  int read_hw(int handle, unsigned int space, unsigned int address, unsigned int* value) override {
    throw_at(address);
    return HARDWARE::read_hw(handle, space, address, value);
  }

private:
  void throw_at(unsigned int address) const {
    if (address == throws_at) {
      throw std::out_of_range("register");
    }
  }
};

class InterruptionTest : public UnitTest {
protected:
  InterruptionTest() {
    const doubles::CapturedOutput unheard;
    throwing_ = std::make_unique<UnitThatThrows>();
    board_.holds(1, 248, 1).holds(1, CONTROL, 1);
    calls().clear();
  }
  static Calls last(std::ptrdiff_t number) {
    const Calls all = calls().all();
    return {all.end() - number, all.end()};
  }

  std::unique_ptr<UnitThatThrows> throwing_;
};

TEST_F(InterruptionTest, OfASelectionRestoresTheControlRegisterThenGivesTheLockBack) {
  throwing_->throws_at = 196;
  EXPECT_THROW(throwing_->get_RFAdc(2), std::out_of_range);
  EXPECT_THAT(calls().all(),
              ElementsAre("lock", "read 1 131076", "read 1 248", "write 1 131076 0", "write 1 131076 1", "unlock"));
}

TEST_F(InterruptionTest, OfTheTransferRestoresTheControlRegisterThenGivesTheLockBack) {
  throwing_->throws_at = 252;
  EXPECT_THROW(throwing_->get_RFAdc(2), std::out_of_range);
  EXPECT_THAT(last(3), ElementsAre("write 1 131076 0", "write 1 131076 1", "unlock"));
}

TEST_F(InterruptionTest, OfTheRfBoardsVersionsGivesTheLockBack) {
  throwing_->throws_at = 252;
  std::vector<VERSIONSDATA> list;
  EXPECT_THROW(throwing_->GetVersionList(list), std::out_of_range);
  EXPECT_THAT(calls().all(), ElementsAre("lock", "unlock"));
  EXPECT_TRUE(list.empty());
}

TEST_F(InterruptionTest, OfTheDigitalBoardsVersionsGivesTheLockBack) {
  throwing_->throws_at = 4;
  std::vector<VERSIONSDATA> list;
  EXPECT_THROW(throwing_->GetVersionList(list), std::out_of_range);
  EXPECT_THAT(last(3), ElementsAre("lock", "read 1 0", "unlock"));
}

TEST_F(InterruptionTest, OfTheDigitalTemperatureGivesTheLockBack) {
  throwing_->throws_at = 40;
  EXPECT_THROW(throwing_->getDigitalBoardTemp(1.0F), std::out_of_range);
  EXPECT_THAT(calls().all(), ElementsAre("lock", "unlock"));
}

// A thread of the host that boost interrupts leaves a conversion in one of its waits.
TEST_F(InterruptionTest, OfAThreadByBoostGivesTheLockBack) {
  boost::thread thread([this] {
    for (;;) {
      unit_->get_RFAdc(2);
    }
  });
  ASSERT_TRUE(calls().wait_for("lock"));
  thread.interrupt();
  thread.join();
  EXPECT_EQ(calls().all().back(), "unlock");
  EXPECT_EQ(calls().count("lock"), calls().count("unlock"));
  EXPECT_EQ(board_.contents(1, CONTROL), 1U);
}

}  // namespace
