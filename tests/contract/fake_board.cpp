#include "tests/doubles/fake_radalt.h"

#include "tests/contract/board_side.h"

namespace contract {
namespace {

class FakeBoard final : public BoardSide {
public:
  void set_register(unsigned space, unsigned address, unsigned value) override { board_.holds(space, address, value); }
  unsigned register_value(unsigned space, unsigned address) override { return board_.contents(space, address); }
  void never_end_transfers() override { board_.transfer_never_ends(); }

  void fail_opening(int error) override { board_.opens_with(-error); }
  void fail_reads(int error) override { board_.read_fails(error); }
  void fail_writes(int error) override { board_.write_fails(error); }
  void fail_lock(int error) override { board_.lock_fails(error); }
  void fail_unlock(int error) override { board_.unlock_fails(error); }

private:
  doubles::FakeRadalt board_;
};

}  // namespace

std::unique_ptr<BoardSide> make_board_side() {
  return std::make_unique<FakeBoard>();
}

}  // namespace contract
