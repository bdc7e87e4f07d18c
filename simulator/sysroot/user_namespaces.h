#pragma once

#include <optional>
#include <string>

namespace simulator::sysroot {

/// Why no private root can be made on this machine: what is missing and how to enable it, ready for standard error;
/// none where everything is there. Tries it out in a child process, which takes about a millisecond.
/// Any thread; not while another thread holds locks that a forked child would need.
std::optional<std::string> missing_for_private_root();

/// The user that the unit's programs are outside, where whoever starts them is root: one that owns nothing of this
/// machine, so that root inside is nobody outside.
constexpr unsigned UNIT_USER_OF_ROOT = 65534;

}  // namespace simulator::sysroot
