#pragma once

#include <memory>

namespace contract {

/// The board behind the driver, as the contract tests set and observe it. Each driver implementation has its own. The
/// board starts with no register set and no fault; transfers finish at once.
class BoardSide {
public:
  virtual ~BoardSide() = default;

  virtual void set_register(unsigned space, unsigned address, unsigned value) = 0;
  virtual unsigned register_value(unsigned space, unsigned address) = 0;
  /// RF register transfers started from now on never finish.
  virtual void never_end_transfers() = 0;

  /// From now on every call of the operation fails with this error number (above 0).
  virtual void fail_opening(int error) = 0;
  virtual void fail_reads(int error) = 0;
  virtual void fail_writes(int error) = 0;
  virtual void fail_lock(int error) = 0;
  virtual void fail_unlock(int error) = 0;
};

/// The board behind the driver that this program is linked to; one at a time.
std::unique_ptr<BoardSide> make_board_side();

}  // namespace contract
