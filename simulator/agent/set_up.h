#pragma once

#include <string>
#include <vector>

#include "simulator/agent/link.h"

namespace simulator::agent {

/// The orders of a unit's agent: everything that the unit consists of.
struct Orders {
  std::string unit_file_name;        ///< for error messages
  std::string unit_file;             ///< its text
  bool services = true;              ///< run the naming service and the unit's services
  std::vector<std::string> without;  ///< services that are left out: "gui_manager"
  bool network = true;               ///< create the interface eth0
  bool dhcp_server = false;          ///< run a DHCP server at eth0's far end; implies `network`
  bool record = false;               ///< record calls from the start
  std::vector<std::string> host;     ///< command line of the host; empty: none
  bool host_serves = true;           ///< the host serves requests; the unit is ready once it does
  long processes = 512;              ///< most processes and threads of the unit
  long open_files = 1024;            ///< most open files of one process
  long root_mib = 64;                ///< size of the root's own file system
};

/// Reads the orders in a document. Throws Refusal.
Orders orders_in(const Json& document);

/// Limits this process and all that it starts. Throws std::system_error.
void apply_limits(const Orders& orders);
/// Creates the unit's files: model, sysfs files, shutdown script, logs. Throws settings::UnitFileError and
/// std::system_error.
void make_files(const Orders& orders);
/// Makes the root read-only, as the unit's is. Throws std::runtime_error.
void seal_root(const Orders& orders);

}  // namespace simulator::agent
