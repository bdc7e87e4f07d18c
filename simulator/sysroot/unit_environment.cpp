#include "simulator/sysroot/unit_environment.h"

namespace simulator::sysroot {
namespace {

/// Participants announce themselves by multicast on the loopback interface, so that engines that choose their own ports
/// (OpenDDS) are found; everything else is sent by unicast. Announcements are also answered by multicast: an engine may
/// ignore announcements at the port that it names for the rest of discovery.
constexpr const char* CYCLONE_CONFIGURATION =
    "<CycloneDDS><Domain id=\"any\"><General>"
    "<Interfaces><NetworkInterface name=\"lo\" multicast=\"true\"/></Interfaces>"
    "<AllowMulticast>spdp</AllowMulticast></General>"
    "<Discovery><ParticipantIndex>auto</ParticipantIndex><MaxAutoParticipantIndex>31</MaxAutoParticipantIndex>"
    "<Peers><Peer address=\"127.0.0.1\"/></Peers></Discovery>"
    "<Internal><UnicastResponseToSPDPMessages>false</UnicastResponseToSPDPMessages></Internal>"
    "</Domain></CycloneDDS>";

}  // namespace

std::vector<std::pair<std::string, std::string>> unit_environment(int naming_port) {
  return {
      {"PATH", "/opt/unit/bin/commands:/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"},
      {"HOME", "/root"},
      {"USER", "root"},
      {"SHELL", "/bin/sh"},
      {"LANG", "C.UTF-8"},
      {"UNIT_RUN", "/run/unit"},
      {"UNIT_NAMING_PORT", std::to_string(naming_port)},
      {"OMNIORB_CONFIG", "/dev/null"},
      {"CYCLONEDDS_URI", CYCLONE_CONFIGURATION},
      {"DCPSConfigFile", "/run/unit/rtps.ini"},
  };
}

}  // namespace simulator::sysroot
