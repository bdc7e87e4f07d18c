#include "tests/doubles/fake_psdriver.h"

#include "tests/contract/power_supply_side.h"

namespace contract {
namespace {

class FakePowerSupply final : public PowerSupplySide {
public:
  FakePowerSupply() { doubles::calls().clear(); }

  void answer(const std::string& request, int value) override { driver_.answers(request, value); }
  void fail_next(const std::string& operation) override { driver_.fails(operation); }
  void swallow_next(const std::string& request) override { driver_.stays_silent(request); }
  void raise_interrupt(int value) override { driver_.interrupt(value); }
  bool led_status_is(int status) override {
    return doubles::calls().count("SetSystemLEDStatus " + std::to_string(status) + " 0") == 1;
  }
  bool communication_status_is(int status) override {
    return doubles::calls().count("SetUserInterface_CommunicationStatus " + std::to_string(status) + " 0") == 1;
  }

private:
  doubles::FakePsdriver driver_;
};

}  // namespace

std::unique_ptr<PowerSupplySide> make_power_supply_side() {
  return std::make_unique<FakePowerSupply>();
}

}  // namespace contract
