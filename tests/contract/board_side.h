#pragma once

#include <memory>

namespace contract {

/// The far side of one board driver: the board itself, as the contract tests set and see it. Each implementation of the
/// driver brings its own, and stands for one board that starts with no register set, no fault and transfers that are
/// finished at once.
class BoardSide {
public:
  virtual ~BoardSide() = default;

  virtual void set_register(unsigned space, unsigned address, unsigned value) = 0;
  virtual unsigned register_value(unsigned space, unsigned address) = 0;
  /// Transfers of RF registers that start from now on never end.
  virtual void never_end_transfers() = 0;

  /// Every call of the operation from now on fails with that error number (above 0).
  virtual void fail_opening(int error) = 0;
  virtual void fail_reads(int error) = 0;
  virtual void fail_writes(int error) = 0;
  virtual void fail_lock(int error) = 0;
  virtual void fail_unlock(int error) = 0;
};

/// The board behind the driver that this program is linked with; one at a time.
std::unique_ptr<BoardSide> make_board_side();

}  // namespace contract
