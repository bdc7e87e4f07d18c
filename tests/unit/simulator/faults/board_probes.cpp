#include <radalt.h>

#include "tests/unit/simulator/faults/pairs_unit.h"
#include "tests/unit/simulator/faults/probe.h"

namespace fault_pairs {
namespace {

using simulator::model::FaultKind;
using simulator::model::Point;

constexpr unsigned SPACE = 1;
constexpr unsigned ADDRESS = 40;

class BoardProbe : public Probe {
public:
  explicit BoardProbe(PairsUnit& unit) : unit_(unit) {}

  void set_value(int value) override {
    unit_.model().board().set_register(SPACE, ADDRESS, static_cast<unsigned>(value));
  }

protected:
  PairsUnit& unit_;
  const int handle_ = Radalt_Init();
};

class OpeningProbe final : public BoardProbe {
public:
  using BoardProbe::BoardProbe;
  Outcome call(FaultKind) override {
    const int result = Radalt_Init();
    return {result < 0, {std::to_string(result)}};
  }
};

class ReadProbe final : public BoardProbe {
public:
  using BoardProbe::BoardProbe;
  Outcome call(FaultKind) override {
    unsigned value = 0;
    const bool failed = Radalt_Read(handle_, SPACE, ADDRESS, &value) != 0;
    return {failed, {std::to_string(value)}};
  }
};

class WriteProbe final : public BoardProbe {
public:
  using BoardProbe::BoardProbe;
  Outcome call(FaultKind) override {
    set_value(1);
    const bool failed = Radalt_Write(handle_, SPACE, ADDRESS, 2) != 0;
    return {failed, {std::to_string(unit_.model().board().register_value(SPACE, ADDRESS))}};
  }
};

class LockProbe final : public BoardProbe {
public:
  using BoardProbe::BoardProbe;
  Outcome call(FaultKind) override {
    const bool taken = Radalt_LockGet(handle_) == 0;
    bool failed = !taken;
    while (taken && Radalt_LockPut(handle_) != 0) {
      failed = true;
    }
    return {failed, {}};
  }
};

}  // namespace

std::unique_ptr<Probe> make_board_probe(PairsUnit& unit, Point point) {
  switch (point) {
    case Point::RADALT_INIT:
      return std::make_unique<OpeningProbe>(unit);
    case Point::RADALT_READ:
      return std::make_unique<ReadProbe>(unit);
    case Point::RADALT_WRITE:
      return std::make_unique<WriteProbe>(unit);
    case Point::RADALT_LOCK_GET:
    case Point::RADALT_LOCK_PUT:
      return std::make_unique<LockProbe>(unit);
    default:
      return nullptr;
  }
}

}  // namespace fault_pairs
