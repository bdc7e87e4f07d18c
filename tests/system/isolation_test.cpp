// A unit shares nothing with the machine and with other units except the folders that it was given.

#include <unistd.h>

#include <fstream>

#include "tests/system/command_line.h"

namespace {

using namespace system_test;
using testing::IsEmpty;
namespace fs = std::filesystem;

TEST(IsolationTest, TwoUnitsSideBySideDoNotMeet) {
  SimulatedUnit one;
  SimulatedUnit other;
  one.with_services().set("power_supply.state_of_charge", 11).start();
  other.with_services().set("power_supply.state_of_charge", 22).set("power_supply.charger_status", 0).start();
  const Host one_host = one.host();
  const Host other_host = other.host();
  const Program other_listener = other.run({"dds_peer", "listen"});
  other_listener.wait_for("listening\n");
  const Program one_listener = one.run({"dds_peer", "listen"});
  one_listener.wait_for("listening\n");

  EXPECT_EQ(one_host.call("GetBatteryChargeStatus")["charge"], 11);
  EXPECT_EQ(other_host.call("GetBatteryChargeStatus")["charge"], 22);
  one_host.call("GetChargerStatus");
  one_listener.wait_for("1\n");
  other_host.call("GetChargerStatus");
  EXPECT_EQ(other_listener.out(), "listening\n");

  const std::uint64_t interrupt = one.interrupt(0x100);
  ASSERT_TRUE(one.shows("System Prompt"));
  EXPECT_THAT(other.dialogs(), IsEmpty());
  one.answer("System Prompt", "Ok");
  EXPECT_TRUE(one.handled(interrupt));
  EXPECT_TRUE(one.text("/run/unit/shutdown"));
  EXPECT_FALSE(other.text("/run/unit/shutdown"));
  EXPECT_EQ(other.setting("power_supply.communication_status"), -1);
}

/// A folder of the machine with contents that must not change.
class Canary {
public:
  Canary() : folder_(fs::temp_directory_path() / ("canary-" + std::to_string(getpid()))) {
    fs::create_directories(folder_ / "deep");
    std::ofstream(folder_ / "bird") << "sings";
    std::ofstream(folder_ / "deep/seed") << "lies";
  }
  ~Canary() { fs::remove_all(folder_); }
  Canary(const Canary&) = delete;
  Canary& operator=(const Canary&) = delete;

  const fs::path& folder() const { return folder_; }

  /// Every path in it with the file's text.
  std::map<std::string, std::string> contents() const {
    std::map<std::string, std::string> contents;
    for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
      std::ifstream file(entry.path());
      contents[entry.path().lexically_relative(folder_)] =
          entry.is_directory() ? "/" : std::string(std::istreambuf_iterator<char>(file), {});
    }
    return contents;
  }

private:
  fs::path folder_;
};

// The name is put into a command line unquoted, so it can run other commands; here they try to reach outside.
TEST(IsolationTest, ANameThatWouldWriteOutsideChangesNothingThere) {
  const Canary canary;
  const auto before = canary.contents();
  const std::string target = canary.folder();
  SimulatedUnit unit;
  const Host host = unit.with_network().start().host();
  const std::string commands =
      "; mount -o remount,rw /usr; mount -o remount,rw /opt/unit; mount -o remount,rw /; mkdir -p " + target +
      "; echo gone > " + target + "/bird; rm -rf " + target +
      "/deep; touch /usr/canary /etc/canary /opt/unit/canary /proc/1/root/canary /canary; mknod /tmp/canary b 8 0; "
      "touch /tmp/reached #";
  host.call("NetworkOff", {commands});
  EXPECT_TRUE(unit.text("/tmp/reached"));
  EXPECT_EQ(canary.contents(), before);
  for (const char* path :
       {"/usr/canary", "/etc/canary", "/canary", "/tmp/canary", "/tmp/reached", BUILD_FOLDER "/canary"}) {
    EXPECT_FALSE(fs::exists(path)) << path;
  }
}

TEST(IsolationTest, EverythingOfAUnitGoesWithIt) {
  fs::path folder;
  {
    SimulatedUnit unit;
    unit.with_services().start();
    const Host host = unit.host();
    host.call("NetworkOff", {"; sleep 1000 & "});
    folder = unit.found().folder;
    EXPECT_TRUE(fs::exists(folder));
  }
  EXPECT_FALSE(fs::exists(folder));
}

}  // namespace
