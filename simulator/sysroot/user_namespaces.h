#pragma once

#include <optional>
#include <string>

namespace simulator::sysroot {

/// Why this machine cannot create a private root, and how to enable it, as an error message; none if it can. Tries in a
/// child process, which takes about a millisecond. Any thread, unless another thread holds locks that a forked child
/// needs.
std::optional<std::string> missing_for_private_root();

/// The outside user of the unit's programs if root starts them. It owns nothing on this machine, so root inside is
/// nobody outside.
constexpr unsigned UNIT_USER_OF_ROOT = 65534;

}  // namespace simulator::sysroot
