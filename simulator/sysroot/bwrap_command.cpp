#include "simulator/sysroot/bwrap_command.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "simulator/sysroot/user_namespaces.h"

namespace simulator::sysroot {
namespace {

using Words = std::vector<std::string>;

void append(Words& words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
}

/// The machine's programs and the files of /etc that they read, in both roots.
Words machine() {
  Words words{"--ro-bind", "/usr",    "/usr", "--symlink", "usr/bin",   "/bin",   "--symlink", "usr/sbin", "/sbin",
              "--symlink", "usr/lib", "/lib", "--symlink", "usr/lib64", "/lib64", "--dir",     "/etc"};
  for (const char* name : {"passwd", "group", "nsswitch.conf", "ld.so.cache", "ld.so.conf", "ld.so.conf.d",
                           "alternatives", "udhcpc", "services", "protocols", "localtime"}) {
    append(words, {"--ro-bind-try", std::string("/etc/") + name, std::string("/etc/") + name});
  }
  // Folders created implicitly, as parents, would be accessible only to their owner.
  append(words, {"--dir", "/opt", "--dir", "/home", "--dir", "/home/radalt"});
  return words;
}

/// Where the outer root shows the bound path of that number.
std::string bound(std::size_t number) {
  return "/bound/" + std::to_string(number);
}

/// An open memory file with the text, inherited by child processes.
int file_holding(const std::string& text) {
  const int descriptor = memfd_create("unit", 0);
  if (descriptor == -1 || write(descriptor, text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
      lseek(descriptor, 0, SEEK_SET) != 0) {
    throw std::system_error(errno, std::generic_category(), "memory file");
  }
  return descriptor;
}

}  // namespace

BwrapCommand::BwrapCommand(RootOptions options) : options_(std::move(options)) {
  // The unit's own fstab allows remounting "/"; the machine's would name missing devices.
  files_.push_back({"/etc/fstab", "0644", file_holding("tmpfs / tmpfs rw 0 0\n")});
  files_.push_back({"/etc/resolv.conf", "0644", file_holding("")});
  files_.push_back({"/etc/hosts", "0644", file_holding("127.0.0.1 localhost unit\n")});
  // Device nodes cannot be created here; the drivers' stand-ins only need the name to exist.
  files_.push_back({"/dev/i2c-3", "0600", file_holding("")});
}

BwrapCommand::~BwrapCommand() {
  for (const OwnFile& file : files_) {
    close(file.descriptor);
  }
}

Words BwrapCommand::line(const std::vector<std::pair<std::string, std::string>>& environment,
                         const Words& command) const {
  Words words = outer();
  append(words, inner());
  words.push_back("--clearenv");
  for (const auto& [name, value] : environment) {
    append(words, {"--setenv", name, value});
  }
  words.push_back("--");
  append(words, command);
  return words;
}

Words BwrapCommand::outer() const {
  Words words{"/usr/bin/bwrap", "--die-with-parent"};
  append(words, machine());
  append(words, {"--bind", "/proc", "/proc", "--dev-bind", "/dev", "/dev", "--dir", "/tmp"});
  append(words, {"--ro-bind", options_.build, "/opt/unit"});
  // The unit's user must find what is below.
  append(words, {"--perms", "0755", "--dir", "/bound"});
  for (std::size_t i = 0; i < options_.binds.size(); ++i) {
    append(words, {"--ro-bind", options_.binds[i], bound(i)});
  }
  for (std::size_t i = 0; i < options_.files.size(); ++i) {
    append(words, {"--ro-bind", options_.files[i].first, bound(options_.binds.size() + i)});
  }
  if (geteuid() == 0) {
    const std::string user = std::to_string(UNIT_USER_OF_ROOT);
    append(words,
           {"--", "/usr/bin/setpriv", "--reuid", user, "--regid", user, "--clear-groups", "--pdeathsig", "KILL", "--"});
  } else {
    append(words, {"--unshare-user", "--"});
  }
  return words;
}

Words BwrapCommand::inner() const {
  Words words{"/usr/bin/bwrap", "--unshare-user", "--uid", "0", "--gid", "0", "--cap-add", "ALL"};
  append(words,
         {"--unshare-pid", "--as-pid-1", "--unshare-ipc", "--unshare-net", "--unshare-uts", "--hostname", "unit"});
  append(words, {"--die-with-parent", "--new-session"});
  append(words, machine());
  append(words, {"--symlink", "/proc/self/mounts", "/etc/mtab", "--proc", "/proc", "--dev", "/dev"});
  const std::string size = std::to_string(static_cast<std::int64_t>(options_.disk_mib) << 20);
  for (const char* folder : {"/sys", "/run", "/root", "/dev/shm"}) {
    append(words, {"--size", size, "--tmpfs", folder});
  }
  // As on the unit: anybody may write, and files belong to their creator.
  append(words, {"--perms", "1777", "--size", size, "--tmpfs", "/tmp"});
  for (const OwnFile& file : files_) {
    append(words, {"--perms", file.permissions, "--file", std::to_string(file.descriptor), file.path});
  }
  append(words, {"--ro-bind", "/opt/unit", "/opt/unit", "--dir", "/home/radalt/bin", "--symlink",
                 "/opt/unit/bin/i2c_read", "/home/radalt/bin/i2c_read"});
  for (std::size_t i = 0; i < options_.binds.size(); ++i) {
    append(words, {"--ro-bind", bound(i), options_.binds[i]});
  }
  for (std::size_t i = 0; i < options_.files.size(); ++i) {
    append(words, {"--ro-bind", bound(options_.binds.size() + i), options_.files[i].second});
  }
  append(words, {"--chdir", "/"});
  return words;
}

}  // namespace simulator::sysroot
