#include "user_namespaces.h"

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

/// The child's part: enters namespaces as the unit's programs will. Returns an error number, 0 when all went well.
int try_namespaces() {
  if (geteuid() == 0 &&
      (setgroups(0, nullptr) != 0 || setresgid(unit_user_of_root, unit_user_of_root, unit_user_of_root) != 0 ||
       setresuid(unit_user_of_root, unit_user_of_root, unit_user_of_root) != 0)) {
    return errno;
  }
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS | CLONE_NEWPID | CLONE_NEWIPC | CLONE_NEWUTS | CLONE_NEWNET) != 0) {
    return errno;
  }
  // Some machines hand out namespaces without the rights that come with them.
  return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 ? 0 : errno;
}

/// The number that a kernel setting holds; none where the kernel has no such setting.
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
  return "where this is a container, its seccomp profile or its limits forbid them: start it so that unshare(2) with "
         "CLONE_NEWUSER is allowed (for example --security-opt seccomp=unconfined); else look at the settings "
         "kernel.unprivileged_userns_clone, user.max_user_namespaces and "
         "kernel.apparmor_restrict_unprivileged_userns of sysctl";
}

}  // namespace

std::optional<std::string> missing_for_private_root() {
  if (access("/usr/bin/bwrap", X_OK) != 0) {
    return "the simulated unit needs bubblewrap (/usr/bin/bwrap); install the package bubblewrap";
  }
  const pid_t child = fork();
  if (child == 0) {
    _exit(try_namespaces());
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) {
    return std::string("no child process can be started: ") + std::strerror(errno);
  }
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
    return std::nullopt;
  }
  const std::string reason = WIFEXITED(status) ? std::strerror(WEXITSTATUS(status)) : "the attempt was killed";
  return "the simulated unit needs user namespaces, which this machine refuses (" + reason + "); " + how_to_enable();
}

}  // namespace simulator::sysroot
