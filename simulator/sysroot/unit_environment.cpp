#include "simulator/sysroot/unit_environment.h"

#include <fstream>

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

/// OpenDDS discovers the other processes by multicast on the loopback interface and sends by unicast. With its default
/// heartbeat and repair times a late reader would wait seconds for a value published earlier.
constexpr const char* OPENDDS_CONFIGURATION =
    "[common]\n"
    "DCPSGlobalTransportConfig=$file\n"
    "DCPSDefaultDiscovery=unit_discovery\n"
    "DCPSRTISerialization=1\n"
    "[transport/unit_transport]\n"
    "transport_type=rtps_udp\n"
    "local_address=127.0.0.1:0\n"
    "use_multicast=0\n"
    "heartbeat_period=50\n"
    "heartbeat_response_delay=5\n"
    "nak_response_delay=5\n"
    "[rtps_discovery/unit_discovery]\n"
    "MulticastInterface=lo\n"
    "SedpMulticast=0\n"
    "SedpLocalAddress=127.0.0.1:0\n"
    "SpdpLocalAddress=127.0.0.1\n"
    "ResendPeriod=1\n";

}  // namespace

std::vector<std::pair<std::string, std::string>> unit_environment(const StateFolder& state, int naming_port) {
  std::ofstream(state.run() / "rtps.ini") << OPENDDS_CONFIGURATION;
  return {
      {"PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"},
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
