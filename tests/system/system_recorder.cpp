// Preloaded into a host: runs every command that the host passes to the shell and records it as a line of JSON in
// /run/unit/commands.jsonl, with the state of the root file system before and after it.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

namespace {

const char* root_is() {
  struct statvfs status {};
  statvfs("/", &status);
  return (status.f_flag & ST_RDONLY) != 0 ? "read-only" : "writable";
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int system(const char* command) {
  using System = int (*)(const char*);
  static const auto real = reinterpret_cast<System>(dlsym(RTLD_NEXT, "system"));
  nlohmann::json line = {{"command", command}, {"before", root_is()}};
  const int status = real(command);
  line["after"] = root_is();
  line["status"] = status;
  const std::string text = line.dump() + "\n";
  const int file = open("/run/unit/commands.jsonl", O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  [[maybe_unused]] const ssize_t written = write(file, text.data(), text.size());
  close(file);
  return status;
}
