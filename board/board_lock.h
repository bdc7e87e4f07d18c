#pragma once

#include "board/hardware.h"

namespace board {

/// Holds the board lock during its lifetime, for one sequence of register accesses; gives it back even if the sequence
/// throws.
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
