#pragma once

#include <cstdint>
#include <vector>

#include "tool/arguments.h"
#include "tool/command.h"

namespace tool {

/// Communication statuses of the power-supply controller.
inline constexpr std::int64_t POWER_SWITCH = 0x100;
inline constexpr std::int64_t COVER_CLOSED = 0x40;
inline constexpr std::int64_t COVER_OPEN = 0;

/// The options of the commands that raise one interrupt.
std::vector<Option> interrupt_options();

/// Raises the interrupt on the chosen unit; with --wait, waits until it has been handled and shows the host's output
/// meanwhile; with --json, prints its number.
void raise_interrupt(const Arguments& arguments, std::int64_t value);

}  // namespace tool
