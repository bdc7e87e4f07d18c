#include "simulator/sysroot/user_namespaces.h"

#include <fcntl.h>
#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace simulator::sysroot {
namespace {

/// The step that failed.
enum Step : int { NOTHING, NAMESPACES, RIGHTS, PROC };

/// Reports the failed step, if any, and the error through the pipe, then exits.
[[noreturn]] void report(int pipe, Step step) {
  const int failure[] = {step, step == NOTHING ? 0 : errno};
  [[maybe_unused]] const ssize_t written = write(pipe, failure, sizeof failure);
  _exit(0);
}

/// In the child: enters namespaces as the unit's programs will.
[[noreturn]] void try_namespaces(int pipe) {
  constexpr unsigned USER = UNIT_USER_OF_ROOT;
  if (geteuid() == 0 &&
      (setgroups(0, nullptr) != 0 || setresgid(USER, USER, USER) != 0 || setresuid(USER, USER, USER) != 0)) {
    report(pipe, NAMESPACES);
  }
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS | CLONE_NEWPID | CLONE_NEWIPC | CLONE_NEWUTS | CLONE_NEWNET) != 0) {
    report(pipe, NAMESPACES);
  }
  // Some machines grant namespaces without the privileges in them.
  if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
    report(pipe, RIGHTS);
  }
  // Mounting a new /proc requires a process of the new namespace and an outer /proc with nothing hidden.
  const pid_t first_inside = _Fork();
  if (first_inside == 0) {
    report(pipe, mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr) == 0 ? NOTHING : PROC);
  }
  waitpid(first_inside, nullptr, 0);
  _exit(0);
}

/// The value of a kernel setting; none if the kernel has no such setting.
std::optional<long> kernel_setting(const char* path) {
  std::ifstream file(path);
  long value = 0;
  return file >> value ? std::optional<long>(value) : std::nullopt;
}

std::string how_to_enable() {
  if (kernel_setting("/proc/sys/kernel/unprivileged_userns_clone") == 0) {
    return "enable them with: sysctl -w kernel.unprivileged_userns_clone=1";
  }
  if (kernel_setting("/proc/sys/user/max_user_namespaces") == 0) {
    return "enable them with: sysctl -w user.max_user_namespaces=10000";
  }
  if (kernel_setting("/proc/sys/kernel/apparmor_restrict_unprivileged_userns") == 1) {
    return "enable them with: sysctl -w kernel.apparmor_restrict_unprivileged_userns=0";
  }
  return "in a container, the seccomp profile or limits forbid them: allow unshare(2) with CLONE_NEWUSER (for example "
         "--security-opt seccomp=unconfined); otherwise check the sysctl settings "
         "kernel.unprivileged_userns_clone, user.max_user_namespaces and "
         "kernel.apparmor_restrict_unprivileged_userns";
}

}  // namespace

std::optional<std::string> missing_for_private_root() {
  if (access("/usr/bin/bwrap", X_OK) != 0) {
    return "the simulated unit needs bubblewrap (/usr/bin/bwrap); install the package bubblewrap";
  }
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    return std::string("cannot create a pipe: ") + std::strerror(errno);
  }
  // Only a single-threaded process may enter a user namespace; a sanitizer would start a thread after fork().
  const pid_t child = _Fork();
  if (child == 0) {
    try_namespaces(ends[1]);
  }
  close(ends[1]);
  int failure[] = {NAMESPACES, ECHILD};
  [[maybe_unused]] const ssize_t taken = read(ends[0], failure, sizeof failure);
  close(ends[0]);
  waitpid(child, nullptr, 0);
  const std::string reason = std::strerror(failure[1]);
  switch (failure[0]) {
    case NOTHING:
      return std::nullopt;
    case PROC:
      return "the simulated unit needs a /proc of its own, which this machine refuses (" + reason +
             "); in a container, parts of /proc are hidden: start it without that (for example "
             "--security-opt systempaths=unconfined)";
    default:
      return "the simulated unit needs user namespaces, which this machine refuses (" + reason + "); " +
             how_to_enable();
  }
}

}  // namespace simulator::sysroot
