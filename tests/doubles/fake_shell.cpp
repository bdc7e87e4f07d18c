#include "tests/doubles/fake_shell.h"

#include <dlfcn.h>

#include <cstdlib>
#include <utility>

namespace doubles {

namespace {

std::function<int(const std::string&)>& current_action() {
  static auto& action = *new std::function<int(const std::string&)>;
  return action;
}

}  // namespace

FakeShell::FakeShell(std::function<int(const std::string&)> action) {
  current_action() = std::move(action);
}

FakeShell::~FakeShell() {
  current_action() = nullptr;
}

}  // namespace doubles

extern "C" int system(const char* command) {
  doubles::calls().record(std::string("system ") + command);
  if (doubles::current_action()) {
    return doubles::current_action()(command);
  }
  using System = int (*)(const char*);
  static const auto real = reinterpret_cast<System>(dlsym(RTLD_NEXT, "system"));
  return real(command);
}
