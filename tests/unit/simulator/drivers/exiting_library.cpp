#include <psdriver.h>

#include <cstdlib>

// A library whose initialiser opens the driver and then ends the process, with the driver's thread running.
namespace {

psdriver* open_and_end() {
  auto* driver = new psdriver("/dev/null");
  driver->SetBatteryTemperatureCallback([](int) {});
  driver->GetBatteryTemperature();
  std::exit(7);
  return driver;
}

[[maybe_unused]] psdriver* const driver = open_and_end();

}  // namespace
