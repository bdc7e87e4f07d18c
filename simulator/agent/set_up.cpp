#include "simulator/agent/set_up.h"

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "simulator/agent/arguments.h"
#include "simulator/agent/refusal.h"
#include "simulator/model/unit_model.h"
#include "simulator/settings/settings.h"
#include "simulator/settings/unit_file.h"

namespace simulator::agent {
namespace fs = std::filesystem;
namespace {

constexpr const char* RUN_FOLDER = "/run/unit";

/// Runs last in a shutdown; crosses its fault point, which also records the call, and creates a marker file.
constexpr const char* SHUTDOWN_SCRIPT =
    "#!/bin/sh\n"
    "/opt/unit/bin/unit-command shutdown || exit\n"
    "touch /run/unit/shutdown\n";

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

void write_file(const fs::path& path, const char* text, mode_t mode) {
  std::ofstream file(path);
  file << text;
  file.close();
  if (!file || ::chmod(path.c_str(), mode) != 0) {
    throw std::system_error(errno, std::generic_category(), path.string());
  }
}

void limit(int resource, long most) {
  const rlimit both{static_cast<rlim_t>(most), static_cast<rlim_t>(most)};
  if (::setrlimit(static_cast<__rlimit_resource>(resource), &both) != 0) {
    throw std::system_error(errno, std::generic_category(), "limits");
  }
}

}  // namespace

Orders orders_in(const Json& document) {
  constexpr long MOST = 1'000'000;
  const Arguments with(document);
  Orders orders;
  orders.unit_file_name = with.text("unit_file_name");
  orders.unit_file = with.text("unit_file");
  orders.services = with.flag("services");
  orders.without = with.texts("without");
  orders.network = with.flag("network");
  orders.dhcp_server = with.flag("dhcp_server");
  orders.record = with.flag("record");
  orders.host = with.texts("host");
  orders.host_serves = with.flag("host_serves");
  orders.processes = with.number("processes", 1, MOST);
  orders.open_files = with.number("open_files", 16, MOST);
  orders.root_mib = with.number("root_mib", 1, MOST);
  return orders;
}

void apply_limits(const Orders& orders) {
  limit(RLIMIT_NPROC, orders.processes);
  limit(RLIMIT_NOFILE, orders.open_files);
  limit(RLIMIT_CORE, 0);
}

void make_files(const Orders& orders) {
  const auto values = settings::UnitFile::parse(orders.unit_file, orders.unit_file_name);
  fs::create_directories(RUN_FOLDER);
  const auto fill = [&](model::UnitModel& unit) {
    values(unit);
    for (const std::string& service : orders.without) {
      settings::set_setting(unit, "services." + service + ".behaviour", "absent");
    }
  };
  auto unit = model::UnitModel::create(std::string(RUN_FOLDER) + "/model", fill);
  for (const char* name : {"events.jsonl", "calls.jsonl"}) {
    write_file(fs::path(RUN_FOLDER) / name, "", 0644);
  }
  if (orders.record) {
    unit.record().start();
  }
  write_file(fs::path(RUN_FOLDER) / "rtps.ini", OPENDDS_CONFIGURATION, 0644);
  write_file("/root/.shutdown", SHUTDOWN_SCRIPT, 0744);
}

void seal_root(const Orders& orders) {
  const std::string size = "size=" + std::to_string(orders.root_mib) + "m";
  if (::mount(nullptr, "/", nullptr, MS_REMOUNT | MS_RDONLY | MS_NOSUID | MS_NODEV, size.c_str()) != 0) {
    throw std::runtime_error(std::string("/ cannot be made read-only: ") + std::strerror(errno));
  }
}

}  // namespace simulator::agent
