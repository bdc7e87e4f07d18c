#pragma once

#include <functional>
#include <string>

#include "tests/doubles/call_log.h"

/// The C library's system(), played: it records "system <command>". Linking this double replaces the function for the
/// whole program.
namespace doubles {

/// Runs the commands of system() with `action` while it lives; the action's result is the status that system() returns.
/// Without one, commands go to the real shell. One at a time.
class FakeShell {
public:
  explicit FakeShell(std::function<int(const std::string& command)> action);
  ~FakeShell();
  FakeShell(const FakeShell&) = delete;
  FakeShell& operator=(const FakeShell&) = delete;
};

}  // namespace doubles
