#pragma once

#include <string>

namespace handheld {

/// Runs `command` in the system shell and waits until it exits. Its exit status is ignored.
void run(const std::string& command);

}  // namespace handheld
