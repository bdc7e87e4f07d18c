#pragma once

#include <functional>

#include <boost/thread/thread.hpp>

#include "tests/unit/board/unit_under_test.h"

/// A unit whose sequences are left by an exception in the middle.
class InterruptedUnit : public HARDWARE {
public:
  /// Runs `sequence` on a new thread, which is interrupted once it has written to register `address`. True if the
  /// interruption ended the sequence.
  bool interrupted_at(unsigned int address, const std::function<void(HARDWARE&)>& sequence) {
    at_ = address;
    bool interrupted = false;
    boost::thread thread;
    boost::mutex starting;
    {
      const boost::lock_guard<boost::mutex> lock(starting);
      thread_ = &thread;
      thread = boost::thread([&] {
        { const boost::lock_guard<boost::mutex> started(starting); }
        try {
          sequence(*this);
        } catch (const boost::thread_interrupted&) {
          interrupted = true;
        }
      });
    }
    thread.join();
    return interrupted;
  }

  /// From now on reads of register `address` throw std::out_of_range.
  void throws_at(unsigned int address) { throws_at_ = address; }

  int write_hw(int handle, unsigned int space, unsigned int address, unsigned int value) override {
    const int status = HARDWARE::write_hw(handle, space, address, value);
    if (thread_ && address == at_) {
      thread_->interrupt();
    }
    return status;
  }
  int read_hw(int handle, unsigned int space, unsigned int address, unsigned int* value) override {
    if (address == throws_at_) {
      throw std::out_of_range("read");
    }
    return HARDWARE::read_hw(handle, space, address, value);
  }

private:
  boost::thread* thread_ = nullptr;
  unsigned int at_ = 0;
  unsigned int throws_at_ = 0xFFFFFFFF;
};

/// Such a unit on a fake board; the log begins after its construction.
class InterruptionTest : public UnitTest {
protected:
  InterruptionTest() {
    const doubles::CapturedOutput unheard;
    interrupted_ = std::make_unique<InterruptedUnit>();
    doubles::calls().clear();
  }

  std::unique_ptr<InterruptedUnit> interrupted_;
};
