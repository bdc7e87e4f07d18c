#pragma once

#include <vector>

#include "simulator/settings/settings.h"

namespace simulator::settings {

/// The settings with names of their own, in the order of the documentation.
std::vector<Setting> settings_table();
/// The setting of one board register, by its address space and address.
Setting register_setting(const std::string& name, std::uint32_t space, std::uint32_t address, const std::string& doc);

}  // namespace simulator::settings
