#pragma once

#include "board/hardware.h"

namespace board {

/// Holds the board lock while it lives: one sequence of register accesses, also one that is left by an exception.
class BoardLock {
public:
  explicit BoardLock(HARDWARE& hardware) : hardware_(hardware) { hardware_.Lock(); }
  ~BoardLock() { hardware_.UnLock(); }
  BoardLock(const BoardLock&) = delete;
  BoardLock& operator=(const BoardLock&) = delete;

private:
  HARDWARE& hardware_;
};

}  // namespace board
