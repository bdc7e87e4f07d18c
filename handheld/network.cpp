#include "handheld/handheld_hardware.h"
#include "handheld/shell.h"

// Interface names are put into the command lines unquoted.

using handheld::run;

namespace {

void interface_down(const std::string& interface) {
  run("ifconfig " + interface + " down");
}

}  // namespace

void Handheld_Hardware::NetworkOff(std::string interface) {
  interface_down(interface);
}

void Handheld_Hardware::SetupStaticIP(std::string interface) {
  interface_down(interface);
  run("ifconfig " + interface + " up");
}

// The root file system is read-only; the DHCP client needs it writable while it starts.
void Handheld_Hardware::StartDHCP(std::string interface) {
  interface_down(interface);
  run("mount -o remount,rw /");
  run("udhcpc -i " + interface + " -b -T 3 -t 3");
  run("mount -o remount,ro /");
}

int Handheld_Hardware::GetMaxInterfaces() {
  return max_interfaces;
}
