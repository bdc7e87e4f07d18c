#pragma once

#include <gmock/gmock.h>

#include <memory>

#include "board/hardware.h"
#include "tests/doubles/captured_output.h"
#include "tests/doubles/fake_psdriver.h"
#include "tests/doubles/fake_radalt.h"
#include "tests/doubles/fake_varnok.h"

/// The radar-altimeter unit with its protected members public.
class OpenHardware : public HARDWARE {
public:
  using BASE_HARDWARE::fan_states;
  using Handheld_Hardware::board_handle_;
  using Handheld_Hardware::kelvin_offset_;
};

/// A unit on a fake board and a fake power supply; the log begins after its construction.
class UnitTest : public testing::Test {
protected:
  UnitTest() {
    doubles::reset_framework();
    const doubles::CapturedOutput unheard;
    unit_ = std::make_unique<OpenHardware>();
    doubles::calls().clear();
  }

  doubles::FakeRadalt board_;
  doubles::FakePsdriver driver_;
  std::unique_ptr<OpenHardware> unit_;
};
