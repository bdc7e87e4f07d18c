#include "tests/contract/board_side.h"
#include "tests/contract/simulated_unit.h"

namespace contract {
namespace {

using simulator::model::FaultKind;
using simulator::model::Point;

class SimulatedBoard final : public BoardSide {
public:
  SimulatedBoard() {
    unit_.faults().disarm_all();
    unit_.board().set_rf_transfer_time(0);
    for (const unsigned address : {0U, 8U, 40U, 128U, 248U, 131076U}) {
      set_register(1, address, 0);
    }
    set_register(2, 40, 0);
  }

  void set_register(unsigned space, unsigned address, unsigned value) override {
    unit_.board().set_register(space, address, value);
  }
  unsigned register_value(unsigned space, unsigned address) override {
    return unit_.board().register_value(space, address);
  }
  void never_end_transfers() override { unit_.board().set_rf_transfer_time(simulator::model::Board::NEVER); }

  void fail_opening(int error) override { fail(Point::RADALT_INIT, error); }
  void fail_reads(int error) override { fail(Point::RADALT_READ, error); }
  void fail_writes(int error) override { fail(Point::RADALT_WRITE, error); }
  void fail_lock(int error) override { fail(Point::RADALT_LOCK_GET, error); }
  void fail_unlock(int error) override { fail(Point::RADALT_LOCK_PUT, error); }

private:
  void fail(Point point, int error) { unit_.faults().arm(point, {FaultKind::FAIL, error}); }

  simulator::model::UnitModel& unit_ = simulated_unit();
};

}  // namespace

std::unique_ptr<BoardSide> make_board_side() {
  return std::make_unique<SimulatedBoard>();
}

}  // namespace contract
