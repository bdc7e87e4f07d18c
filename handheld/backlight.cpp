#include <fstream>
#include <iostream>

#include "handheld/driver_link.h"
#include "handheld/handheld_hardware.h"

// A missing file shows as brightness 0, in both directions; only an exception counts as a failure.

namespace {

const char MAX_BRIGHTNESS_FILE[] = "/sys/class/backlight/omap-bl/max_brightness";
const char BRIGHTNESS_FILE[] = "/sys/class/backlight/omap-bl/brightness";

}  // namespace

void Handheld_Hardware::setMaxBacklight() {
  try {
    int max = 0;
    std::ifstream maximum(MAX_BRIGHTNESS_FILE);
    std::ofstream brightness(BRIGHTNESS_FILE, std::ios::out | std::ios::trunc);
    maximum >> max;
    brightness << max;
  } catch (...) {
    std::cerr << "Handheld_Hardware::setMaxBacklight err" << std::endl;
    handheld::report_failure("Handheld_Hardware::setMaxBacklight()",
                             "/sys/class/backlight/omap-bl/max_brightness or brightness missing");
  }
}

int Handheld_Hardware::GetBacklight(int& level) {
  try {
    int steps = 0;
    std::ifstream brightness(BRIGHTNESS_FILE);
    brightness >> steps;
    level = steps;
    return 1;
  } catch (...) {
    std::cerr << "Handheld_Hardware::GetBacklight err" << std::endl;
    handheld::report_failure("Handheld_Hardware::GetBacklight()", "/sys/class/backlight/omap-bl/brightness missing");
    return 0;
  }
}
