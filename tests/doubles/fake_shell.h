#pragma once

#include <functional>
#include <string>

#include "tests/doubles/call_log.h"

/// A fake of the C library's system(): it records "system <command>". Linking this double replaces the function for the
/// whole program.
namespace doubles {

/// During its lifetime, passes the commands of system() to `action`, whose result is the status that system() returns.
/// Without one, commands go to the real shell. One at a time.
class FakeShell {
public:
  explicit FakeShell(std::function<int(const std::string& command)> action);
  ~FakeShell();
  FakeShell(const FakeShell&) = delete;
  FakeShell& operator=(const FakeShell&) = delete;
};

}  // namespace doubles
